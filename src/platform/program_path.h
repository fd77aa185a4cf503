#pragma once

#include <QString>

namespace tarnPlatform {

// The form in which this system finds a program by a path as Windows takes it: there, a folder name may end
// in a dot that does not count.
[[nodiscard]] QString startablePath(const QString &program);

} // namespace tarnPlatform
