#include "recovery.h"

#include "device/monitor/accessory_table.h"
#include "pipe/tarn_pipe_server.h"

#include <vector>

namespace tarnCampaign {
namespace {

using namespace tarnDeviceInfos;

constexpr std::uint8_t anyAccessory = ACCESSORY_NONE;

struct Exchange
{
    std::uint8_t accessory; // with which it is tried
    const char *request;
    const char *reply;
};
constexpr Exchange exchanges[] = {
    {anyAccessory, R"({"cmd":"powerModeControl","data":"low"})",
        R"({"cmd":"powerModeControl","data":"low","result":"successed"})"},
    {anyAccessory, R"({"cmd":"powerModeControl","data":"balance"})",
        R"({"cmd":"powerModeControl","data":"balance","result":"successed"})"},
    {anyAccessory, R"({"cmd":"setSmartChargingStatus","data":"OFF"})",
        R"({"cmd":"setSmartChargingStatus","data":"OFF","result":"successed"})"},
    {anyAccessory, R"({"cmd":"setTarnPowerMode","data":"high"})",
        R"({"cmd":"setTarnPowerMode","data":"high","result":"successed"})"},
    {ACCESSORY_DOCK, R"({"cmd":"getMcuVersion"})", R"({"cmd":"getMcuVersion","data":"1.23"})"},
    {ACCESSORY_DOCK, R"({"cmd":"setDockLedStatus","data":"on"})",
        R"({"cmd":"setDockLedStatus","data":"on","result":"successed"})"},
    {ACCESSORY_GRAPHICS, R"({"cmd":"getHardwareVersion"})", R"({"cmd":"getHardwareVersion","data":"5"})"},
    {ACCESSORY_GRAPHICS, R"({"cmd":"setGraphicsRGB","data":"red"})",
        R"({"cmd":"setGraphicsRGB","data":"red","result":"successed"})"},
    {ACCESSORY_GRAPHICS_16G, R"({"cmd":"getAccessoryCode"})", R"({"cmd":"getAccessoryCode","data":"3"})"},
    {ACCESSORY_KVANE, R"({"cmd":"getTarnKvaneSnCode"})",
        R"({"cmd":"getTarnKvaneSnCode","data":"CDAB8967452301"})"},
};

} // namespace

QString faultOfRecovery(CampaignMachine &machine, RandomSource &random, std::uint8_t *accessoryCode)
{
    machine.heal();
    const Exchange &exchange = random.oneOf(exchanges);
    *accessoryCode =
        exchange.accessory == anyAccessory ? random.oneOf(accessoryTable).code : exchange.accessory;
    machine.attach(*accessoryCode);
    const QString reply = tarnPipeServer::TarnPipeServer::instance()->dispatch(exchange.request);
    if (reply == QLatin1String(exchange.reply))
        return {};
    return QStringLiteral("with all faults cleared: %1 -> %2").arg(QLatin1String(exchange.request), reply);
}

} // namespace tarnCampaign
