#include "support/command_samples.h"

#include "accessory/power_profiles.h"
#include "device/ec_registers.h"
#include "device/monitor/accessory_table.h"

#include <QJsonDocument>
#include <QJsonObject>

#include <algorithm>

namespace tarnTest {

using namespace tarnAccessoryManager;
using namespace tarnDeviceInfos;
using tarn::CommandEntry;
using tarn::DataKind;

namespace {

using L = QLatin1StringView;

constexpr char version[] = R"(\d{1,3}\.\d{2,6})";
constexpr char byte[] = R"(\d{1,3})";
constexpr char nothing[] = "";
constexpr char byteOrNotRead[] = R"(-1|\d{1,3})";
constexpr char charging[] = "0|1|251";
constexpr char colour[] = "white|red|yellow|green|cyan|blue|purplishred";

QStringList profileNames()
{
    QStringList names;
    for (const PowerProfile &profile : powerProfiles)
        names << QLatin1String(profile.name);
    return names;
}

const char *anyProfile()
{
    static const QByteArray values = profileNames().join('|').toLatin1();
    return values.constData();
}

// What "first" is answered with: the number of a profile, or what went wrong.
const char *profileRestored()
{
    static const QByteArray values = [] {
        QByteArrayList all {"-2", "-10"};
        for (const PowerProfile &profile : powerProfiles)
            all << QByteArray::number(profile.number);
        return all.join('|');
    }();
    return values.constData();
}

struct FreeData
{
    DataKind kind;
    QStringList good;
    QStringList bad;
};

// The words of a choice stand in the catalogue.
const std::vector<FreeData> &freeData()
{
    static const QString firmware = QLatin1String(sampleFirmware);
    static const std::vector<FreeData> rows {
        {DataKind::None, {QString()}, {}},
        {DataKind::Byte, {"5", "0", "255"}, {"256", "-1", "x"}},
        {DataKind::McuFileName, {firmware}, {"missing.bin", "../" + firmware}},
        {DataKind::EcFileName, {firmware}, {"missing.rom", "c:evil.rom"}},
    };
    return rows;
}

const FreeData *freeDataOf(const CommandEntry &command)
{
    const auto &rows = freeData();
    const auto row = std::find_if(
        rows.begin(), rows.end(), [&](const FreeData &data) { return data.kind == command.data.kind; });
    return row == rows.end() ? nullptr : &*row;
}

// What is nearly a word of a choice, and what is none at all.
QStringList wordsBeside(const QList<QLatin1StringView> &choices)
{
    const QString word = choices.first();
    const QString upper = word.toUpper();
    return {upper == word ? word.toLower() : upper, word + ' ', "hide", "mauve"};
}

struct Concern
{
    QLatin1StringView words; // of the catalogue
    std::optional<std::uint8_t> accessory;
};
constexpr Concern concerns[] = {
    {L("any accessory"), std::nullopt},
    {L("this computer"), std::nullopt},
    {L("dock"), ACCESSORY_DOCK},
    {L("graphics box"), ACCESSORY_GRAPHICS},
    {L("KVane"), ACCESSORY_KVANE},
};

} // namespace

const char *accessoryNames()
{
    static const QByteArray values = [] {
        QByteArrayList all {noAccessoryName};
        for (const AccessoryKind &kind : accessoryTable)
            all << kind.name;
        return all.join('|');
    }();
    return values.constData();
}

const std::vector<CommandSample> &commandSamples()
{
    static const QByteArray accessoryOrUnknown = QByteArray("|") + accessoryNames();
    static const std::vector<CommandSample> rows {
        {.command = L("getAccessoryType"), .answers = {{L("data"), accessoryOrUnknown.constData()}}},
        {.command = L("getMcuVersion"),
            .answers = {{.key = L("data"), .values = version, .withoutEc = nothing}}},
        {.command = L("getHardwareVersion"),
            .answers = {{.key = L("data"), .values = byte, .withoutEc = nothing}}},
        {.command = L("getAccessoryCode"),
            .answers = {{.key = L("data"), .values = byte, .withoutEc = nothing}}},
        {.command = L("getMcuUpdateParameters"),
            .answers = {{.key = L("mcuVer"), .values = version, .withoutEc = nothing},
                {.key = L("hardwareVer"), .values = byte, .withoutEc = nothing},
                {.key = L("accessoryCode"), .values = byte, .withoutEc = nothing}}},
        {.command = L("powerModeControl"),
            .answers = {{L("result"), profileRestored(), L("first")}},
            .kinds = QStringList("first") + profileNames() + QStringList("last")},
        {.command = L("getDockLedStatus"),
            .answers = {{.key = L("data"), .values = "on|off", .withoutEc = "unknown"}}},
        {.command = L("getGraphicsRGB"),
            .answers = {{.key = L("data"), .values = colour, .withoutEc = "shutdown"}}},
        // Each colour is another than the last, so it has to be saved.
        {.command = L("setGraphicsRGB"),
            .answers = {{L("data"), colour, L("on")}},
            .kinds = {"red", "blue", "on"}},
        {.command = L("requestMcuUpdate"),
            .answers =
                {{.key = L("mcuVer"), .values = version, .onlyAfterSuccess = true, .withoutEc = nothing}}},
        {.command = L("requestEnterMcuUpdateMode"), .hold = EcHold::Begins},
        {.command = L("requestLeaveMcuUpdateMode"),
            .answers = {{.key = L("data"), .values = version, .withoutEc = nothing}},
            .hold = EcHold::Ends},
        {.command = L("requestStartEcUpdate"), .hold = EcHold::ForGood},
        {.command = L("requestEcUpdate"), .hold = EcHold::ForGood},
        // They stop and start the five days.
        {.command = L("setSmartChargingStatus"), .kinds = {"ON", "OFF"}},
        {.command = L("getSmartChargingStatus"),
            .answers = {{.key = L("data"), .values = "ON|OFF", .withoutEc = "failed"}}},
        {.command = L("getTarnPowerMode"),
            .answers = {{.key = L("data"), .values = anyProfile(), .withoutEc = "hide"}}},
        {.command = L("getTarnKvaneSnCode"),
            .answers = {{.key = L("data"), .values = "[0-9A-F]{14}", .withoutEc = "default"}}},
        {.command = L("getKVaneLedLight"), .answers = {{L("data"), byteOrNotRead}}},
        {.command = L("getKvaneChargingStatus"), .answers = {{L("data"), charging}}},
        {.command = L("getKvaneBatteryNum"), .answers = {{L("data"), byte}}},
        {.command = L("getTarnChargingStatus"), .answers = {{L("data"), charging}}},
        {.command = L("getTarnBatteryNum"), .answers = {{L("data"), byte}}},
    };
    return rows;
}

const CommandSample &sampleOf(const QString &command)
{
    static const CommandSample none;
    const auto &rows = commandSamples();
    const auto row = std::find_if(
        rows.begin(), rows.end(), [&](const CommandSample &sample) { return sample.command == command; });
    return row == rows.end() ? none : *row;
}

QStringList goodData(const CommandEntry &command)
{
    if (const FreeData *data = freeDataOf(command))
        return data->good;
    return {command.data.choices.begin(), command.data.choices.end()};
}

QStringList badData(const CommandEntry &command)
{
    const FreeData *data = freeDataOf(command);
    return data ? data->bad : wordsBeside(command.data.choices);
}

QStringList kindsOfData(const CommandEntry &command)
{
    const QStringList &kinds = sampleOf(command.name).kinds;
    return kinds.isEmpty() ? goodData(command).first(1) : kinds;
}

std::optional<std::uint8_t> accessoryFor(const CommandEntry &command)
{
    const auto *row = std::find_if(std::begin(concerns), std::end(concerns),
        [&command](const Concern &concern) { return concern.words == command.concerns; });
    if (row == std::end(concerns))
        qFatal("no accessory is known by the words \"%s\"", command.concerns.data());
    return row->accessory;
}

QByteArray requestOf(const CommandEntry &command, const QString &data)
{
    QJsonObject request {{QStringLiteral("cmd"), QString(command.name)}};
    if (!data.isNull())
        request.insert(QStringLiteral("data"), data);
    return QJsonDocument(request).toJson(QJsonDocument::Compact);
}

} // namespace tarnTest
