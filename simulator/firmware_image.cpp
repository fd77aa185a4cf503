#include "simulator/firmware_image.h"

#include <algorithm>
#include <string_view>

namespace tarnSimulator {

namespace {

constexpr std::string_view mark = "TARNMCU";
constexpr std::size_t markOffset = 0x200;
constexpr std::size_t versionOffset = markOffset + mark.size();
constexpr std::size_t sizeOffset = 0x20C;
constexpr std::size_t codeOffset = 0x210;
constexpr std::size_t checksumSize = 4;

constexpr std::size_t vectorCount = 67; // of this MCU
constexpr std::uint32_t stackTop = 0x20005000;
constexpr std::uint32_t firstHandler = 0x08000211; // Thumb code: odd

void putWord(std::vector<std::uint8_t> &image, std::size_t offset, std::uint32_t word)
{
    for (std::size_t i = 0; i < 4; ++i)
        image[offset + i] = static_cast<std::uint8_t>(word >> (8 * i));
}

std::uint32_t wordAt(std::span<const std::uint8_t> bytes, std::size_t offset)
{
    std::uint32_t word = 0;
    for (std::size_t i = 4; i-- > 0;)
        word = word << 8 | bytes[offset + i];
    return word;
}

std::uint32_t checksum(std::span<const std::uint8_t> bytes)
{
    std::uint32_t sum = 2166136261U;
    for (const std::uint8_t byte : bytes)
        sum = (sum ^ byte) * 16777619U;
    return sum;
}

void putCode(std::vector<std::uint8_t> &image, FirmwareVersion version)
{
    std::uint32_t noise =
        0x9E3779B9U ^ (static_cast<std::uint32_t>(version.major) << 16 | version.minor << 8 | version.patch);
    for (std::size_t i = codeOffset; i < image.size(); ++i) {
        noise ^= noise << 13;
        noise ^= noise >> 17;
        noise ^= noise << 5;
        image[i] = static_cast<std::uint8_t>(noise);
    }
}

} // namespace

std::vector<std::uint8_t> makeFirmwareImage(FirmwareVersion version, std::size_t size)
{
    std::vector<std::uint8_t> image(size, 0);
    putWord(image, 0, stackTop);
    for (std::uint32_t vector = 1; vector < vectorCount; ++vector)
        putWord(image, std::size_t {4} * vector, firstHandler + 4 * (vector - 1));
    std::copy(mark.begin(), mark.end(), image.begin() + markOffset);
    image[versionOffset] = version.major;
    image[versionOffset + 1] = version.minor;
    image[versionOffset + 2] = version.patch;
    putWord(image, sizeOffset, static_cast<std::uint32_t>(size));
    putCode(image, version);
    const std::size_t end = size - checksumSize;
    putWord(image, end, checksum(std::span(image).first(end)));
    return image;
}

std::optional<FirmwareVersion> findFirmware(std::span<const std::uint8_t> flash)
{
    if (flash.size() < smallestFirmware
        || !std::equal(mark.begin(), mark.end(), flash.begin() + markOffset)) {
        return std::nullopt;
    }
    const std::size_t size = wordAt(flash, sizeOffset);
    if (size < smallestFirmware || size > flash.size())
        return std::nullopt;
    const std::size_t end = size - checksumSize;
    if (wordAt(flash, end) != checksum(flash.first(end)))
        return std::nullopt;
    return FirmwareVersion {flash[versionOffset], flash[versionOffset + 1], flash[versionOffset + 2]};
}

} // namespace tarnSimulator
