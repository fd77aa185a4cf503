#include "platform/process_end.h"
#include "platform/version.h"
#include "service/process_end.h"
#include "service/running_check.h"
#include "service/start_delay.h"
#include "service/tarn_service.h"

#include <QCoreApplication>
#include <QDebug>
#include <QDir>

namespace {

// The key carries its quotes onto the command line. It deliberately has no blank, unlike the name that the
// service is installed under, so this reports on an installation under the older key.
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
    // Every relative path of the service lies beside its program.
    QDir::setCurrent(QCoreApplication::applicationDirPath());

    logBanner();
    if (!waitForSystem())
        return TarnService::exitCodeBeforeExec(argc, argv);
    qDebug() << "Tarn Service is running as " << tarnPlatform::version() << "!";
    logSourcePath();

    TarnService service(argc, argv);
    return endProcess(service.exec());
}
