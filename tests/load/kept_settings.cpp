#include "load/kept_settings.h"

#include "accessory/graphics_colours.h"
#include "accessory/power_profiles.h"
#include "device/ec_registers.h"

#include <QDir>
#include <QFile>

#include <algorithm>
#include <array>

namespace tarnLoad {

using namespace tarnAccessoryManager;
using namespace tarnDeviceInfos;
using tarnTest::ServiceProcess;

namespace {

constexpr auto profiles = [] {
    std::array<const char *, std::size(powerProfiles)> names = {};
    std::transform(std::begin(powerProfiles), std::end(powerProfiles), names.begin(),
        [](const PowerProfile &profile) { return profile.name; });
    return names;
}();
// By their numbers in the file.
constexpr auto colours = [] {
    std::array<const char *, graphicsOff> names = {};
    std::transform(std::begin(graphicsColours), std::begin(graphicsColours) + graphicsOff, names.begin(),
        [](const GraphicsColour &colour) { return colour.wireName; });
    return names;
}();
constexpr const char *onOff[] = {"ON", "OFF"};
constexpr const char *lightOnOff[] = {"on", "off"};
constexpr const char *firmwares[] = {"ec-1.bin", "ec-22.bin", "ec-333.bin"};
constexpr const char *shippedFirmware = "none.bin";
const QByteArray firmwareContent(100000, 'f'); // more than one call copies

QString quoted(const QByteArray &content)
{
    return QLatin1Char('<') + QString::fromLatin1(content.toPercentEncoding()) + QLatin1Char('>');
}

QString profileInFile(ServiceProcess &service)
{
    if (!QFile::exists(service.path(QStringLiteral("powermodeconfig.xml"))))
        return {};
    const QByteArray content = service.read(QStringLiteral("powermodeconfig.xml"));
    for (const PowerProfile &profile : powerProfiles) {
        if (content == QByteArray::number(profile.number))
            return QLatin1String(profile.name);
    }
    return quoted(content);
}

QString smartCharging(ServiceProcess &service)
{
    const int value = service.computer().peekEeprom(EEP_SMART_CHARGING);
    if (value == SMART_CHARGING_ON || value == SMART_CHARGING_OFF)
        return QLatin1String(value == SMART_CHARGING_ON ? "ON" : "OFF");
    return quoted(QByteArray::number(value));
}

QString userProfile(ServiceProcess &service)
{
    const int flag = service.computer().peek(EC_TARN_POWER_MODE);
    for (const PowerProfile &profile : powerProfiles) {
        if (flag == profile.ecFlag)
            return QLatin1String(profile.name);
    }
    return quoted(QByteArray::number(flag));
}

QString limitsText(std::initializer_list<int> values)
{
    QStringList texts;
    for (const int value : values)
        texts << QString::number(value);
    return texts.join(QLatin1Char('/'));
}

QByteArray text(tarnSimulator::Colour colour)
{
    return QByteArray::number(colour.red) + '/' + QByteArray::number(colour.green) + '/'
        + QByteArray::number(colour.blue);
}

QString dockLight(ServiceProcess &service)
{
    const tarnSimulator::Colour light = service.computer().dockLight();
    if (light.red <= 1 && light.green == 0 && light.blue == 0)
        return QLatin1String(light.red == 1 ? "on" : "off");
    return quoted(text(light));
}

QString boxLight(ServiceProcess &service)
{
    const tarnSimulator::Colour light = service.computer().graphicsLight();
    for (const auto &colour : graphicsColours) {
        if (light.red == colour.red && light.green == colour.green && light.blue == colour.blue)
            return QLatin1String(colour.wireName);
    }
    return quoted(text(light));
}

QString savedColour(ServiceProcess &service)
{
    if (!QFile::exists(service.path(QStringLiteral("graphicsRGB_config.ini"))))
        return {};
    // Each system ends the lines in its own way.
    const QByteArray content = service.read(QStringLiteral("graphicsRGB_config.ini")).replace("\r\n", "\n");
    for (std::size_t number = 0; number < std::size(colours); ++number) {
        if (content == "[General]\ngraphicsColor=" + QByteArray::number(static_cast<int>(number)) + '\n')
            return QLatin1String(colours[number]);
    }
    return quoted(content);
}

const QByteArray shippedSettings = "[OPTION]\nACPI PORT=0x60\nFW VERSION SHOW=1\nHEX DISPLAY=1\nRead "
                                   "Method=1\nIO=0\nBRAM BANK=1\nRead BYTES=1\n"
                                   "BRAM Start index=0x0\nFlashEnd CMD=0x00\nAutoFlash=0\nWarring "
                                   "Show=1\nSilentRun=0\nBinName=none.bin\nShutdown=0\n"
                                   "Speed=3\n";

QString firmwareInSettings(ServiceProcess &service)
{
    const QByteArray content = service.read(QStringLiteral("function/EC/uiset.ini"));
    if (content == shippedSettings)
        return QLatin1String(shippedFirmware);
    for (const char *firmware : firmwares) {
        if (content == ecToolSettings(QLatin1String(firmware)))
            return QLatin1String(firmware);
    }
    return quoted(content);
}

constexpr KeptSetting settings[] = {
    {"power profile", "powerModeControl", nullptr, true, profiles, profileInFile},
    {"smart charging", "setSmartChargingStatus", nullptr, false, onOff, smartCharging},
    {"user's profile", "setTarnPowerMode", nullptr, false, profiles, userProfile},
    {"dock light", "setDockLedStatus", "dock", false, lightOnOff, dockLight},
    {"light of the box", "setGraphicsRGB", "graphics", false, colours, boxLight},
    {"saved colour", "setGraphicsRGB", "graphics", true, colours, savedColour},
    {"EC tool settings", "requestEcUpdate", nullptr, true, firmwares, firmwareInSettings},
};

} // namespace

std::span<const KeptSetting> keptSettings()
{
    return settings;
}

QByteArray ecToolSettings(const QString &firmware)
{
    return "IO=1\nACPI PORT=0x68\nFW VERSION SHOW=0\nHEX DISPLAY=0\nRead Method=0\nIO=1\nBRAM BANK=0\nRead "
           "BYTES=3\n"
           "BRAM Start index=0x7\nFlashEnd CMD=0xFC\nAutoFlash=1\nWarring Show=0\nSilentRun=1\nBinName="
        + firmware.toLatin1() + "\nShutdown=1\nSpeed=3\n";
}

void offerFirmware(ServiceProcess &service)
{
    for (const char *firmware : firmwares) {
        QFile file(QDir(service.downloads()).filePath(QLatin1String(firmware)));
        if (!file.open(QIODevice::WriteOnly) || file.write(firmwareContent) != firmwareContent.size())
            qFatal("cannot write %s", qPrintable(file.fileName()));
    }
}

bool isFirmwareSafe(ServiceProcess &service)
{
    return std::all_of(std::begin(firmwares), std::end(firmwares), [&service](const char *name) {
        const QString firmware = QLatin1String(name);
        return QFile::exists(QDir(service.downloads()).filePath(firmware))
            || service.read(QStringLiteral("function/EC/") + firmware) == firmwareContent;
    });
}

QString limitsInForce(ServiceProcess &service)
{
    const tarnSimulator::ComputerControl &computer = service.computer();
    return limitsText({computer.peek(EC_POWERMODE_PL1), computer.peek(EC_POWERMODE_PL2),
        computer.peek(EC_POWERMODE_PL4), computer.peek(EC_FAN_MODE)});
}

QString limitsOfProfile(const QString &name)
{
    const PowerProfile *profile = profileOfName(name.toStdString());
    if (!profile)
        return {};
    const PowerLimits &watts = profile->fullSupply;
    return limitsText({watts.pl1, watts.pl2, watts.pl4, profile->fanMode});
}

} // namespace tarnLoad
