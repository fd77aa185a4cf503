// The name of a firmware file, in UTF-8 as it comes from a client.
#include "harness.h"
#include "update/firmware_file_name.h"

#include <QDir>
#include <QRegularExpression>

using tarnFuzz::require;

namespace {

void checkAccepted(const QString &name)
{
    static const QRegularExpression unfit(QStringLiteral(R"([\x{00}-\x{1f}\x{7f}-\x{9f}/\\:*?"<>|])"));
    static const QRegularExpression device(QStringLiteral(R"(^\s*(con|prn|aux|nul|(com|lpt)[0-9])\s*(\.|$))"),
        QRegularExpression::CaseInsensitiveOption);
    static const QRegularExpression program(
        QStringLiteral(R"(\.(exe|dll|bat|cmd|com|ini|sys)\s*$)"), QRegularExpression::CaseInsensitiveOption);
    require(!name.isEmpty() && name.size() <= 255, "a name has a length that file systems take");
    require(!unfit.match(name).hasMatch(), "no separators, drives, wildcards or control characters");
    require(!device.match(name).hasMatch(), "no devices");
    require(!program.match(name).hasMatch(), "no programs, libraries or settings");
    require(!name.endsWith('.') && !name.endsWith(' '), "nothing at the end that Windows drops");
    require(QDir::cleanPath("/folder/" + name) == "/folder/" + name, "the file is in its folder");
    require(QString::fromLocal8Bit(name.toLocal8Bit()) == name, "the settings can express it");
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t *data, std::size_t size)
{
    const QString name = QString::fromUtf8(tarnFuzz::bytesOf(data, size));
    if (tarnFirmwareUpdate::isSafeFirmwareName(name))
        checkAccepted(name);
    return 0;
}
