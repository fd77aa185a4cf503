#pragma once

#include <QString>

namespace tarnFirmwareUpdate {

// Whether a firmware file name from a client may be used: it names a file in a folder and nothing beyond it,
// no program, library or settings that Windows or the flashing tools beside it would load, and it fits
// unharmed into a line of the EC tool's settings.
[[nodiscard]] bool isSafeFirmwareName(const QString &name);

} // namespace tarnFirmwareUpdate
