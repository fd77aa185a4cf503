#include "platform/waits.h"

#include <QThread>

#include <sys/prctl.h>

namespace tarnPlatform {
namespace {

// The kernel's default slack of 50 us would be a per cent of each 5 ms wait.
constexpr unsigned long timerSlackNs = 1000;

} // namespace

void systemSleep(std::chrono::milliseconds duration)
{
    thread_local const int slackSet = ::prctl(PR_SET_TIMERSLACK, timerSlackNs);
    static_cast<void>(slackSet);
    QThread::msleep(static_cast<unsigned long>(duration.count()));
}

} // namespace tarnPlatform
