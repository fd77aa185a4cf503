#include "end_to_end/process_stop.h"

#include <QProcess>

#include <csignal>

namespace tarnTest {

void prepareForStop(QProcess &) { }

void requestStop(QProcess &process)
{
    process.terminate();
}

void requestInterrupt(QProcess &process)
{
    ::kill(static_cast<pid_t>(process.processId()), SIGINT);
}

} // namespace tarnTest
