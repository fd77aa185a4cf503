#include "simulator/firmware_image.h"
#include "simulator/tool/tool_text.h"
#include "simulator/tool/verbs.h"
#include "simulator/value_text.h"

#include <fstream>

namespace tarnSimulator {

namespace {

std::optional<FirmwareVersion> parseVersion(const QStringList &fields)
{
    const auto major = parseByte(fields.at(0).toStdString());
    const auto minor = parseByte(fields.at(1).toStdString());
    const auto patch = parseByte(fields.at(2).toStdString());
    if (!major || !minor || !patch)
        return std::nullopt;
    return FirmwareVersion {*major, *minor, *patch};
}

bool isImageSize(std::int64_t size)
{
    return size >= std::int64_t {smallestFirmware} && size <= std::int64_t {largestFirmware} && size % 4 == 0;
}

} // namespace

ExitCode makeFirmware(ToolContext &context, const QStringList &arguments)
{
    const auto version = parseVersion(arguments.mid(1, 3));
    if (!version) {
        return complain(context, WrongUsage,
            QStringLiteral("\"%1\" is no version; allowed: three numbers from 0 to 255")
                .arg(arguments.mid(1, 3).join(QLatin1Char(' '))));
    }
    const auto size = arguments.size() > 4 ? parseNumber(arguments.at(4).toStdString())
                                           : std::optional<std::int64_t>(usualFirmware);
    if (!size || !isImageSize(*size)) {
        return complain(context, WrongUsage,
            QStringLiteral("\"%1\" is no size of a firmware; allowed: %2 to %3 bytes, a multiple of 4")
                .arg(arguments.at(4))
                .arg(smallestFirmware)
                .arg(largestFirmware));
    }
    const std::vector<std::uint8_t> image = makeFirmwareImage(*version, static_cast<std::size_t>(*size));
    std::ofstream file(
        std::filesystem::path(arguments.first().toStdU16String()), std::ios::binary | std::ios::trunc);
    file.write(reinterpret_cast<const char *>(image.data()), static_cast<std::streamsize>(image.size()));
    file.close();
    if (!file)
        return complain(context, Failed, QStringLiteral("\"%1\" cannot be written").arg(arguments.first()));
    return Done;
}

} // namespace tarnSimulator
