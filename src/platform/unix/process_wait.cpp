#include "platform/process_wait.h"

#include <QProcess>

namespace tarnPlatform {

bool waitForEnd(QProcess &process, int milliseconds)
{
    process.waitForFinished(milliseconds);
    return process.state() == QProcess::NotRunning;
}

} // namespace tarnPlatform
