#include "tarn/firmware_name.h"

#include "update/ec_settings.h"
#include "update/firmware_file_name.h"

namespace tarn {

std::optional<QString> firmwareNameObjection(const QString &name, FirmwareKind kind)
{
    if (!tarnFirmwareUpdate::isSafeFirmwareName(name)) {
        return QStringLiteral(
            "The service refuses a name that holds a path, begins with a dash, is that of a "
            "program, a settings file or a device, or does not fit into the system's code page.");
    }
    if (kind == FirmwareKind::Mcu)
        return std::nullopt;
    const std::string_view key = tarnFirmwareUpdate::keyMistakenFor(name.toLocal8Bit().toStdString());
    if (key.empty())
        return std::nullopt;
    return QStringLiteral(
        "The name holds \"%1\", which is a setting of the EC tool.\nThe update after this one "
        "would take the line with the name for that setting, and the tool would be told no "
        "file any more.")
        .arg(QString::fromLatin1(key.data(), qsizetype(key.size())));
}

} // namespace tarn
