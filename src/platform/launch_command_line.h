#pragma once

#include <QString>

#include <cstddef>

namespace tarnPlatform {

// Wide characters, with the final zero: there is no room for more where a program is started for the user.
inline constexpr std::size_t launchCommandLineSize = 260;
using LaunchCommandLine = wchar_t[launchCommandLineSize];

// Writes the program in quotes and its argument; false when they do not fit.
[[nodiscard]] bool formatLaunchCommandLine(
    LaunchCommandLine &line, const QString &program, const QString &argument);

} // namespace tarnPlatform
