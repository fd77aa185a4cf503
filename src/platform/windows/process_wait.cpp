#include "platform/process_wait.h"

#include <QEventLoop>
#include <QProcess>
#include <QTimer>

namespace tarnPlatform {

// QProcess watches its process from a thread of the system's pool. Its own wait sees the end as well, and
// stops that watch at the same moment. Wine (8.0) may call the watch back after that, on memory that has been
// freed, and the service crashes. In an event loop the end is only seen through the watch.
bool waitForEnd(QProcess &process, int milliseconds)
{
    QEventLoop loop;
    QObject::connect(&process, &QProcess::stateChanged, &loop, [&loop](QProcess::ProcessState state) {
        if (state == QProcess::NotRunning)
            loop.quit();
    });
    QTimer timer;
    timer.setSingleShot(true);
    QObject::connect(&timer, &QTimer::timeout, &loop, &QEventLoop::quit);
    if (milliseconds >= 0)
        timer.start(milliseconds);
    if (process.state() != QProcess::NotRunning)
        loop.exec();
    return process.state() == QProcess::NotRunning;
}

} // namespace tarnPlatform
