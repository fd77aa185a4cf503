#include "simulator/ec_tool/ec_tool.h"

#include "simulator/ec_tool/flashing_work.h"

#include <chrono>
#include <fstream>
#include <map>
#include <ostream>
#include <string>
#include <system_error>

namespace tarnSimulator {

namespace {

constexpr auto flashTime = std::chrono::milliseconds(300);

using Settings = std::map<std::string, std::string>;

std::string trimmed(const std::string &text)
{
    const auto first = text.find_first_not_of(" \t\r");
    const auto last = text.find_last_not_of(" \t\r");
    return first == std::string::npos ? std::string() : text.substr(first, last - first + 1);
}

// Sections mean nothing to the tool, and of a key that comes twice the last one counts.
Settings readSettings(const std::filesystem::path &file)
{
    Settings settings;
    std::ifstream in(file, std::ios::binary);
    for (std::string line; std::getline(in, line);) {
        const auto equals = line.find('=');
        if (equals != std::string::npos)
            settings[trimmed(line.substr(0, equals))] = trimmed(line.substr(equals + 1));
    }
    return settings;
}

std::string value(const Settings &settings, const char *key)
{
    const auto found = settings.find(key);
    return found == settings.end() ? std::string() : found->second;
}

} // namespace

int runEcTool(const std::filesystem::path &folder, std::ostream &output, std::ostream &errors)
{
    const Settings settings = readSettings(folder / "uiset.ini");
    std::ofstream log(folder / "ec_tool.log", std::ios::binary | std::ios::trunc);
    for (const auto &[key, text] : settings)
        log << key << " = " << text << '\n';
    if (value(settings, "AutoFlash") != "1" || value(settings, "SilentRun") != "1") {
        log << "would show its window and wait\n";
        return EcToolWaits;
    }
    const std::filesystem::path firmware = folder / value(settings, "BinName");
    std::error_code error;
    const auto size = std::filesystem::file_size(firmware, error);
    if (error || size == 0) {
        errors << "IFU_XE (simulated): cannot read the firmware " << firmware.string() << '\n';
        log << "no firmware\n";
        return EcNotFlashed;
    }
    log << std::flush; // tests may read the log while it flashes
    const std::string untilFile = value(settings, "FlashUntil");
    if (!flash(flashTime, untilFile.empty() ? std::filesystem::path() : folder / untilFile, output)) {
        log << "cut off\n";
        return EcNotFlashed;
    }
    log << "flashed " << size << " bytes of " << value(settings, "BinName") << '\n';
    return EcFlashed;
}

} // namespace tarnSimulator
