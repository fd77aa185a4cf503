#include "serial_number_filter.h"

#include <QRegularExpression>

namespace tarnctl {

QString withoutSerialNumbers(const QString &text)
{
    // Of a KVane: 14 hexadecimal digits, which the service writes in upper case.
    static const QRegularExpression serialNumber(
        QStringLiteral("(?<![0-9A-Fa-f])[0-9A-Fa-f]{14}(?![0-9A-Fa-f])"));
    // The same, byte by byte, as the service reads it.
    static const QRegularExpression byteOfIt(
        QStringLiteral("(kvane sn code \\d+ from xdata successed with: +)\\d+"));
    // Such as PCI\VEN_10DE&DEV_2803\4&2B1F0D8C&0&0008, in the log with each backslash doubled.
    static const QRegularExpression device(
        QStringLiteral(R"(\b((?:PCI|USB|HDAUDIO|ACPI|DISPLAY)(?:\\{1,2}[^\\\s"]+)+\\{1,2})[^\\\s"]+)"));
    return QString(text)
        .replace(serialNumber, QStringLiteral("<serial number>"))
        .replace(byteOfIt, QStringLiteral("\\1<number>"))
        .replace(device, QStringLiteral("\\1<device number>"));
}

} // namespace tarnctl
