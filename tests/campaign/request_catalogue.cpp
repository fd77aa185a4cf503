#include "request_catalogue.h"

#include <QStringList>

#include <vector>

namespace tarnCampaign {
namespace {

struct RequestRow
{
    const char *command;
    std::vector<const char *> data; // one of them
    bool withoutEc = false;
};

const std::vector<RequestRow> &catalogue()
{
    static const std::vector<RequestRow> rows {
        {"getAccessoryType", {""}, true},
        {"getMcuVersion", {""}},
        {"getHardwareVersion", {""}},
        {"getAccessoryCode", {""}},
        {"getMcuUpdateParameters", {""}},
        {"powerModeControl", {"first", "last", "high", "balance", "low", "HIGH", "first "}},
        {"getDockLedStatus", {""}},
        {"setDockLedStatus", {"on", "off", "ON"}},
        {"getGraphicsRGB", {""}},
        {"setGraphicsRGB", {"on", "shutdown", "white", "red", "cyan", "mauve"}},
        {"requestMcuUpdate", {"missing.bin", "../firmware.bin", "firmware.bin"}},
        {"requestEnterMcuUpdateMode", {""}, true},
        {"requestLeaveMcuUpdateMode", {""}, true},
        {"requestEcUpdate", {"missing.rom", "c:evil.rom"}},
        {"setSmartChargingStatus", {"ON", "OFF", "on"}},
        {"getSmartChargingStatus", {""}},
        {"getTarnPowerMode", {""}},
        {"setTarnPowerMode", {"high", "balance", "low", "hide"}},
        {"requestBeginGraphicsMcuUpdate", {""}, true},
        {"getTarnKvaneSnCode", {""}},
        {"setKVaneLedLight", {"0", "255", "256", "-1", "x"}},
        {"getKVaneLedLight", {""}, true},
        {"getKvaneChargingStatus", {""}, true},
        {"getKvaneBatteryNum", {""}, true},
        {"getTarnChargingStatus", {""}, true},
        {"getTarnBatteryNum", {""}, true},
        {"noSuchCommand", {""}, true},
    };
    return rows;
}

} // namespace

QJsonObject randomRequest(RandomSource &random, bool withoutEc)
{
    const RequestRow *row = &random.oneOf(catalogue());
    while (withoutEc && !row->withoutEc)
        row = &random.oneOf(catalogue());
    QJsonObject request {{"cmd", row->command}, {"id", random.below(1000)}};
    const QString data = random.oneOf(row->data);
    if (!data.isEmpty())
        request.insert("data", data);
    return request;
}

} // namespace tarnCampaign
