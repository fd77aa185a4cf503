#include "graphics/process_check.h"

#include "platform/processes.h"

#include <QDebug>

namespace tarnAccessoryManager {

bool isProcessRunning(const QString &name)
{
    const bool running = tarnPlatform::ProcessList::system().anyOf(
        [&name](const QString &program) { return program.compare(name, Qt::CaseInsensitive) == 0; });
    qDebug() << name << (running ? " is running." : " is not running.");
    return running;
}

} // namespace tarnAccessoryManager
