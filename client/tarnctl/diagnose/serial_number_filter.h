#pragma once

#include <QString>

namespace tarnctl {

// The text without what tells this one computer from others of its kind: the serial number of the EC, where
// the service logs or answers it, and what follows the last backslash of a device's path, which is the number
// of the device. Each is replaced by a word in angle brackets.
[[nodiscard]] QString withoutSerialNumbers(const QString &text);

} // namespace tarnctl
