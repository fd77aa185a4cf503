#include "platform/system_sleep.h"

#include <QThread>

namespace tarnPlatform {

void systemSleep(std::chrono::milliseconds duration)
{
    QThread::msleep(static_cast<unsigned long>(duration.count()));
}

} // namespace tarnPlatform
