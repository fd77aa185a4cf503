#pragma once

#include <QString>

namespace tarnPlatform {

// The version of the whole project, as CMakeLists.txt has it.
[[nodiscard]] QString version();

} // namespace tarnPlatform
