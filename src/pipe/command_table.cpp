#include "pipe/tarn_pipe_server.h"

namespace tarnPipeServer {

void TarnPipeServer::fillCommandTable()
{
    using Member = QString (TarnPipeServer::*)(QJsonObject &);
    struct Row
    {
        const char *command;
        Member handler;
    };
    static constexpr Row rows[] = {
        {"getAccessoryType", &TarnPipeServer::getAccessoryType},
        {"getMcuVersion", &TarnPipeServer::getMcuVersion},
        {"getHardwareVersion", &TarnPipeServer::getHardwareVersion},
        {"getAccessoryCode", &TarnPipeServer::getAccessoryCode},
        {"getMcuUpdateParameters", &TarnPipeServer::getMcuUpdateParameters},
        {"powerModeControl", &TarnPipeServer::powerModeControl},
        {"getDockLedStatus", &TarnPipeServer::getDockLedStatus},
        {"setDockLedStatus", &TarnPipeServer::setDockLedStatus},
        {"getGraphicsRGB", &TarnPipeServer::getGraphicsRGB},
        {"setGraphicsRGB", &TarnPipeServer::setGraphicsRGB},
        {"requestMcuUpdate", &TarnPipeServer::requestMcuUpdate},
        {"requestEnterMcuUpdateMode", &TarnPipeServer::requestEnterMcuUpdateMode},
        {"requestLeaveMcuUpdateMode", &TarnPipeServer::requestLeaveMcuUpdateMode},
        {"requestStartEcUpdate", &TarnPipeServer::requestStartEcUpdate},
        {"requestEcUpdate", &TarnPipeServer::requestEcUpdate},
        {"setSmartChargingStatus", &TarnPipeServer::setSmartChargingStatus},
        {"getSmartChargingStatus", &TarnPipeServer::getSmartChargingStatus},
        {"getTarnPowerMode", &TarnPipeServer::getTarnPowerMode},
        {"setTarnPowerMode", &TarnPipeServer::setTarnPowerMode},
        {"requestBeginGraphicsMcuUpdate", &TarnPipeServer::requestBeginGraphicsMcuUpdate},
        {"getTarnKvaneSnCode", &TarnPipeServer::getTarnKvaneSnCode},
        {"setKVaneLedLight", &TarnPipeServer::setKVaneLedLight},
        {"getKVaneLedLight", &TarnPipeServer::getKVaneLedLight},
        {"getKvaneChargingStatus", &TarnPipeServer::getKvaneChargingStatus},
        {"getKvaneBatteryNum", &TarnPipeServer::getKvaneBatteryNum},
        {"getTarnChargingStatus", &TarnPipeServer::getTarnChargingStatus},
        {"getTarnBatteryNum", &TarnPipeServer::getTarnBatteryNum},
    };
    for (const Row &row : rows) {
        const Member handler = row.handler;
        commandTable.insert(QString::fromLatin1(row.command),
            [this, handler](QJsonObject &request) { return (this->*handler)(request); });
    }
}

} // namespace tarnPipeServer
