#include "platform/process_end.h"
#include "platform/version.h"
#include "service/running_check.h"
#include "service/service_end.h"
#include "service/start_delay.h"
#include "service/tarn_service.h"

#include <QCoreApplication>
#include <QDebug>
#include <QDir>

namespace {

// The key goes on the command line with its quotes. It has no blank, unlike the name that the service is
// installed under, because it asks about an installation under the older key.
const QString serviceKey = QStringLiteral("\"TarnService\"");
constexpr int bannerLines = 5;

void logBanner()
{
    for (int line = 0; line < bannerLines; ++line)
        qDebug() << "--------------------------------------------------------";
    qDebug() << "Service" << serviceKey << (isServiceRunning(serviceKey) ? "is running." : "is not running.");
}

void logSourcePath()
{
    const QString program = QCoreApplication::applicationFilePath();
    const auto depth = program.count(QLatin1Char('/'), Qt::CaseSensitive);
    qDebug() << "sourcePath: " << program.section(QLatin1Char('/'), 0, depth - 1);
}

} // namespace

int main(int argc, char *argv[])
{
    QCoreApplication application(argc, argv);
    tarnPlatform::StopRequests::ofProcess();
    // All relative paths of the service start in the folder of its program.
    QDir::setCurrent(QCoreApplication::applicationDirPath());

    logBanner();
    if (!waitForSystem())
        return TarnService::exitCodeBeforeExec(argc, argv);
    qDebug() << "Tarn Service is running as " << tarnPlatform::version() << "!";
    logSourcePath();

    TarnService service(argc, argv);
    return endProcess(service.exec());
}
