#include "platform/apart_process.h"

#include <QProcess>

#include <windows.h>

namespace tarnPlatform {

void setApart(QProcess &process)
{
    // Without a window a console program still gets a console, but one that nobody can close or type into.
    process.setCreateProcessArgumentsModifier([](QProcess::CreateProcessArguments *arguments) {
        arguments->flags |= CREATE_NO_WINDOW | CREATE_NEW_PROCESS_GROUP;
    });
}

} // namespace tarnPlatform
