#include "update/firmware_file_name.h"

#include <algorithm>

namespace tarnFirmwareUpdate {
namespace {

constexpr int longestName = 255; // of a file on the usual file systems

// Separators, the marks of drives and streams, and characters that Windows does not allow in a name.
const QString forbiddenCharacters = QStringLiteral("/\\:*?\"<>|");

// The service runs the tools in these folders with its own rights, so nothing that could take the place of a
// tool, its libraries or its settings may arrive there.
const char *const forbiddenEndings[] = {".exe", ".dll", ".com", ".scr", ".cpl", ".ocx", ".sys", ".drv",
    ".bat", ".cmd", ".ps1", ".vbs", ".js", ".msi", ".reg", ".inf", ".cfg", ".ini", ".config", ".manifest",
    ".local", ".lnk"};

// Names that Windows takes for devices, with any ending.
const char *const deviceNames[] = {"con", "prn", "aux", "nul", "conin$", "conout$"};
const char *const numberedDeviceNames[] = {"com", "lpt"};

bool isControl(QChar character)
{
    return character.category() == QChar::Other_Control;
}

bool isDeviceName(const QString &name)
{
    const QString stem = name.section(QLatin1Char('.'), 0, 0).trimmed().toLower();
    const auto isStem = [&stem](const char *device) {
        return stem == QLatin1String(device);
    };
    const auto isNumberedStem = [&stem](const char *device) {
        return stem.size() == 4 && stem.startsWith(QLatin1String(device)) && stem.back().isNumber();
    };
    return std::any_of(std::begin(deviceNames), std::end(deviceNames), isStem)
        || std::any_of(std::begin(numberedDeviceNames), std::end(numberedDeviceNames), isNumberedStem);
}

bool isLoadable(const QString &name)
{
    return std::any_of(std::begin(forbiddenEndings), std::end(forbiddenEndings),
        [&name](const char *ending) { return name.endsWith(QLatin1String(ending), Qt::CaseInsensitive); });
}

} // namespace

bool isSafeFirmwareName(const QString &name)
{
    if (name.isEmpty() || name.size() > longestName)
        return false;
    const bool hasForbidden = std::any_of(name.begin(), name.end(),
        [](QChar character) { return isControl(character) || forbiddenCharacters.contains(character); });
    // A leading dash is an option to the tools, and a dash alone their standard input. Windows drops dots and
    // blanks at the end, which would turn one name into another.
    if (hasForbidden || name.startsWith(QLatin1Char('-')) || name.endsWith(QLatin1Char('.'))
        || name.endsWith(QLatin1Char(' ')))
        return false;
    if (isDeviceName(name) || isLoadable(name))
        return false;
    // The settings are in the system's 8-bit code page: a name that it cannot express would become another
    // name.
    return QString::fromLocal8Bit(name.toLocal8Bit()) == name;
}

} // namespace tarnFirmwareUpdate
