#include "service/running_check.h"

#include "platform/process_wait.h"

#include <QProcess>

bool isServiceRunning(const QString &serviceName, std::chrono::milliseconds patience)
{
    QProcess query;
    // Deliberately one text without arguments: as it ends with a quote it goes to the system unchanged.
    query.start(QStringLiteral("sc query ") + serviceName, QStringList(), QIODevice::ReadWrite);
    tarnPlatform::waitForEnd(query, static_cast<int>(patience.count()));
    return QString::fromLocal8Bit(query.readAllStandardOutput()).contains(QStringLiteral("RUNNING"));
}
