#include "service/running_check.h"

#include <QProcess>

bool isServiceRunning(const QString &serviceName)
{
    QProcess query;
    // Deliberately one text without arguments: as it ends with a quote it goes to the system unchanged.
    query.start(QStringLiteral("sc query ") + serviceName, QStringList(), QIODevice::ReadWrite);
    query.waitForFinished(30000);
    return QString::fromLocal8Bit(query.readAllStandardOutput()).contains(QStringLiteral("RUNNING"));
}
