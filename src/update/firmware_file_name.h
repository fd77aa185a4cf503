#pragma once

#include <QString>

namespace tarnFirmwareUpdate {

// Whether a firmware file name from a client may be used: it names a file in a folder and nothing beyond it,
// no program, library or settings that Windows or the flashing tools beside it would load, and the settings
// of the EC tool can express it. They find their lines by a key anywhere in the line, though: the line
// "BinName=BIOS.bin" is written as it should be, but holds the "IO" of another key, so the next update takes
// it for that key's line and the settings are left without one for the file. Whoever offers firmware should
// avoid names that hold one of the keys.
[[nodiscard]] bool isSafeFirmwareName(const QString &name);

} // namespace tarnFirmwareUpdate
