#include "service/running_check.h"

#include "platform/processes.h"

#include <QProcess>

bool isServiceRunning(const QString &serviceName, std::chrono::milliseconds timeout)
{
    QProcess query;
    // As one text without arguments, because a text that ends with a quote goes to the system unchanged.
    query.start(QStringLiteral("sc query ") + serviceName, QStringList(), QIODevice::ReadWrite);
    tarnPlatform::waitForEnd(query, static_cast<int>(timeout.count()));
    return QString::fromLocal8Bit(query.readAllStandardOutput()).contains(QStringLiteral("RUNNING"));
}
