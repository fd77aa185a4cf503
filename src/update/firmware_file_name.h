#pragma once

#include <QString>

namespace tarnFirmwareUpdate {

// Whether a firmware file name from a client may be used: it names a file in a folder and nothing beyond it,
// no program, library or settings that Windows or the flashing tools beside it would load, and the settings
// of the EC tool can express it. Their lines are found by a key anywhere in the line, though: the line
// "BinName=BIOS.bin" is written correctly, but contains the key "IO", so the next update takes it for that
// key's line, and no line for the file is left. Names of firmware files should therefore not contain one of
// the keys.
[[nodiscard]] bool isSafeFirmwareName(const QString &name);

} // namespace tarnFirmwareUpdate
