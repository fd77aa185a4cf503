#include "platform/launch_command_line.h"

#include <cwchar>

namespace tarnPlatform {

bool formatLaunchCommandLine(LaunchCommandLine &line, const QString &program, const QString &argument)
{
    const int length = std::swprintf(line, launchCommandLineSize, L"\"%ls\" %ls",
        program.toStdWString().c_str(), argument.toStdWString().c_str());
    // Some systems tell a line that is cut off by a negative length, others by one that is too large.
    return length >= 0 && static_cast<std::size_t>(length) < launchCommandLineSize;
}

} // namespace tarnPlatform
