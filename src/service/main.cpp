#include "platform/log_file.h"
#include "platform/message_tap.h"
#include "platform/paths.h"
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

// Both live until the process has ended, because its threads log until then.
void keepLog()
{
    static auto *file = new tarnPlatform::LogFile(tarnPlatform::path::logFolder);
    static auto *tap = new tarnPlatform::MessageTap(
        [](QtMsgType type, const QString &message) { file->write(type, message); });
    Q_UNUSED(tap)
}

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

    // The running service has the file; what is asked about it is answered to the user.
    if (TarnService::isToRun(argc, argv))
        keepLog();
    logBanner();
    if (!waitForSystem())
        return TarnService::exitCodeBeforeExec(argc, argv);
    qDebug() << "Tarn Service is running as " << tarnPlatform::version() << "!";
    logSourcePath();

    TarnService service(argc, argv);
    return endProcess(service.exec());
}
