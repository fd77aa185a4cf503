#include "device/recording/recording.h"

#include <array>
#include <fstream>
#include <limits>
#include <span>
#include <string_view>
#include <system_error>

namespace tarnRecording {

namespace {

// Longer than any that the service writes; without a limit a file without line feeds would fill the memory.
constexpr std::size_t longestLine = 512;

// The line, or as much of it as there is room for. The file is good when its line feed was found, too.
// Nothing at the end of the file.
std::optional<std::string_view> nextLine(std::istream &file, std::span<char> buffer)
{
    file.getline(buffer.data(), static_cast<std::streamsize>(buffer.size()));
    const auto taken = static_cast<std::size_t>(file.gcount());
    if (taken == 0)
        return std::nullopt;
    return std::string_view(buffer.data(), file.good() ? taken - 1 : taken);
}

// Whether there is no line feed in what is left of a line that was not read to its end.
bool endsInLine(std::istream &file)
{
    if (file.good())
        return false;
    file.clear(file.rdstate() & ~std::ios::failbit);
    file.ignore(std::numeric_limits<std::streamsize>::max(), '\n');
    return file.eof();
}

} // namespace

std::filesystem::path nativePath(const std::string &path)
{
    return std::filesystem::path(std::u8string(path.begin(), path.end()));
}

// A line without its line feed was cut off, even if it looks whole.
std::optional<Recording> readRecording(const std::string &path, std::string &error)
{
    const std::filesystem::path native = nativePath(path);
    std::ifstream file(native, std::ios::binary);
    if (!file) {
        error = "\"" + path + "\" cannot be read";
        return std::nullopt;
    }
    std::error_code hasNoSize;
    if (const auto size = std::filesystem::file_size(native, hasNoSize);
        !hasNoSize && size > largestRecording) {
        error = "\"" + path + "\" is larger than a recording of an EC can be";
        return std::nullopt;
    }
    Recording recording;
    std::size_t number = 0;
    std::array<char, longestLine + 1> buffer {}; // ends in a zero
    while (const auto line = nextLine(file, buffer)) {
        ++number;
        if (number > 1) {
            const std::optional<EcRecord> record = file.good() ? recordOf(*line) : std::nullopt;
            if (!record) {
                recording.damagedLine = number;
                recording.isDamagedInside = !endsInLine(file);
                break;
            }
            recording.records.push_back(*record);
            continue;
        }
        const std::optional<RecordingHeader> header = file.good() ? headerOf(*line) : std::nullopt;
        if (!header) {
            error = "\"" + path + "\" is no recording of an EC";
            return std::nullopt;
        }
        if (header->version != formatVersion) {
            error = "\"" + path + "\" has form " + std::to_string(header->version)
                + ", this program reads form " + std::to_string(formatVersion);
            return std::nullopt;
        }
        recording.header = *header;
    }
    if (number == 0) {
        error = "\"" + path + "\" is empty";
        return std::nullopt;
    }
    return recording;
}

} // namespace tarnRecording
