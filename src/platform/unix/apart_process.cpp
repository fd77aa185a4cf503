#include "platform/apart_process.h"

#include <QProcess>

#include <unistd.h>

namespace tarnPlatform {

void setApart(QProcess &process)
{
    process.setChildProcessModifier([] { ::setsid(); });
}

} // namespace tarnPlatform
