#include "update/ec_settings.h"

#include <QByteArray>
#include <QDebug>
#include <QString>

#include <algorithm>

namespace tarnFirmwareUpdate {
namespace {

struct Setting
{
    std::string_view key;
    std::string_view line; // empty: the line of the firmware file
};

// The order counts: a key is looked for anywhere in a line, so "FW VERSION SHOW" has to come before "IO". Any
// other line with these two letters becomes "IO=1", section headers too, because the tool knows no sections.
constexpr Setting settings[] = {
    {"ACPI PORT", "ACPI PORT=0x68"},
    {"FW VERSION SHOW", "FW VERSION SHOW=0"},
    {"HEX DISPLAY", "HEX DISPLAY=0"},
    {"Read Method", "Read Method=0"},
    {"IO", "IO=1"},
    {"BRAM BANK", "BRAM BANK=0"},
    {"Read BYTES", "Read BYTES=3"},
    {"BRAM Start index", "BRAM Start index=0x7"},
    {"FlashEnd CMD", "FlashEnd CMD=0xFC"},
    {"AutoFlash", "AutoFlash=1"},
    {"Warring Show", "Warring Show=0"}, // spelled so by the tool
    {"SilentRun", "SilentRun=1"},
    {"BinName", {}},
    {"Shutdown", "Shutdown=1"},
};

constexpr std::string_view binNameStart = "BinName=";

// Without quotes, as the tool reads it. Converted, because the log takes bytes for UTF-8 and the line is in
// the system's code page.
QByteArray logText(const std::string &line)
{
    return QString::fromLocal8Bit(line.data(), static_cast<qsizetype>(line.size())).toUtf8();
}

// Null for a line that stays as it is.
const Setting *settingOf(std::string_view line)
{
    const auto *const found = std::find_if(std::begin(settings), std::end(settings),
        [line](const Setting &setting) { return line.find(setting.key) != std::string_view::npos; });
    return found == std::end(settings) ? nullptr : found;
}

} // namespace

std::string settingsLine(std::string_view line, const std::function<std::string()> &binNameLine)
{
    const Setting *setting = settingOf(line);
    if (!setting)
        return std::string(line);
    return setting->line.empty() ? binNameLine() : std::string(setting->line);
}

std::string_view keyMistakenFor(std::string_view binName)
{
    const Setting *setting = settingOf(std::string(binNameStart).append(binName));
    return setting && !setting->line.empty() ? setting->key : std::string_view();
}

std::string loggedBinNameLine(const std::function<std::string()> &build)
{
    std::string line = build();
    qDebug() << "ecFileName line is: " << logText(line).constData();
    if (!line.starts_with(binNameStart)) {
        qDebug() << "write BinName failed! try again!";
        line = build();
        qDebug() << "again ecFileName line is: " << logText(line).constData();
    }
    qDebug() << "write BinName successful!";
    return line;
}

} // namespace tarnFirmwareUpdate
