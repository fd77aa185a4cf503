#include "pipe/tarn_pipe_server.h"

namespace tarnPipeServer {

void TarnPipeServer::fillCommandTable()
{
    struct Row
    {
        const char *name;
        Handler handler;
        Lane lane;
        Handler answer = nullptr;
    };
    static constexpr Row rows[] = {
        {"getAccessoryType", &TarnPipeServer::getAccessoryType, Lane::NeverWaits},
        {"getMcuVersion", &TarnPipeServer::getMcuVersion, Lane::WaitsForEc},
        {"getHardwareVersion", &TarnPipeServer::getHardwareVersion, Lane::WaitsForEc},
        {"getAccessoryCode", &TarnPipeServer::getAccessoryCode, Lane::WaitsForEc},
        {"getMcuUpdateParameters", &TarnPipeServer::getMcuUpdateParameters, Lane::WaitsForEc},
        {"powerModeControl", &TarnPipeServer::powerModeControl, Lane::WaitsForEc},
        {"getDockLedStatus", &TarnPipeServer::getDockLedStatus, Lane::WaitsForEc},
        {"setDockLedStatus", &TarnPipeServer::setDockLedStatus, Lane::WaitsForEc},
        {"getGraphicsRGB", &TarnPipeServer::getGraphicsRGB, Lane::WaitsForEc},
        {"setGraphicsRGB", &TarnPipeServer::setGraphicsRGB, Lane::WaitsForEc},
        {"requestMcuUpdate", &TarnPipeServer::requestMcuUpdate, Lane::WaitsForEc},
        {"requestEnterMcuUpdateMode", &TarnPipeServer::requestEnterMcuUpdateMode, Lane::WaitsForEc},
        {"requestLeaveMcuUpdateMode", &TarnPipeServer::requestLeaveMcuUpdateMode, Lane::LeavesMcuUpdateMode,
            &TarnPipeServer::answerLeaveMcuUpdateMode},
        {"requestStartEcUpdate", &TarnPipeServer::requestStartEcUpdate, Lane::WaitsForEc},
        {"requestEcUpdate", &TarnPipeServer::requestEcUpdate, Lane::UpdatesEc},
        {"setSmartChargingStatus", &TarnPipeServer::setSmartChargingStatus, Lane::WaitsForEc},
        {"getSmartChargingStatus", &TarnPipeServer::getSmartChargingStatus, Lane::WaitsForEc},
        {"getTarnPowerMode", &TarnPipeServer::getTarnPowerMode, Lane::WaitsForEc},
        {"setTarnPowerMode", &TarnPipeServer::setTarnPowerMode, Lane::WaitsForEc},
        {"requestBeginGraphicsMcuUpdate", &TarnPipeServer::requestBeginGraphicsMcuUpdate, Lane::NeverWaits},
        {"getTarnKvaneSnCode", &TarnPipeServer::getTarnKvaneSnCode, Lane::WaitsForEc},
        {"setKVaneLedLight", &TarnPipeServer::setKVaneLedLight, Lane::WaitsForEc},
        {"getKVaneLedLight", &TarnPipeServer::getKVaneLedLight, Lane::NeverWaits},
        {"getKvaneChargingStatus", &TarnPipeServer::getKvaneChargingStatus, Lane::NeverWaits},
        {"getKvaneBatteryNum", &TarnPipeServer::getKvaneBatteryNum, Lane::NeverWaits},
        {"getTarnChargingStatus", &TarnPipeServer::getTarnChargingStatus, Lane::NeverWaits},
        {"getTarnBatteryNum", &TarnPipeServer::getTarnBatteryNum, Lane::NeverWaits},
    };
    for (const Row &row : rows)
        commandTable.insert(QString::fromLatin1(row.name), {row.handler, row.lane, row.answer});
}

} // namespace tarnPipeServer
