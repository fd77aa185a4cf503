#include "platform/launch_command_line.h"

#include <cwchar>
#include <string>

namespace tarnPlatform {

bool formatLaunchCommandLine(LaunchCommandLine &line, const QString &program, const QString &argument)
{
    const std::wstring text = L'"' + program.toStdWString() + L"\" " + argument.toStdWString();
    if (text.size() >= launchCommandLineSize)
        return false;
    std::wmemcpy(line, text.c_str(), text.size() + 1);
    return true;
}

} // namespace tarnPlatform
