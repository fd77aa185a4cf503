#include "panel/window/main_window.h"
#include "platform/process_end.h"

#include <QApplication>
#include <QCommandLineParser>
#include <QSettings>

int main(int argc, char *argv[])
{
    QApplication application(argc, argv);
    QApplication::setApplicationName(QStringLiteral("tarnpanel"));
    QApplication::setApplicationVersion(QStringLiteral(TARN_VERSION));
    QApplication::setQuitOnLastWindowClosed(false);

    QCommandLineParser parser;
    parser.setApplicationDescription(QStringLiteral("A window on Tarn Service and the simulated computer."));
    const QCommandLineOption state(QStringLiteral("state"),
        QStringLiteral("The simulated computer's state file; without it the one that tarnsim would take."),
        QStringLiteral("FILE"));
    const QCommandLineOption pipe(QStringLiteral("pipe"), QStringLiteral("The service's pipe."),
        QStringLiteral("NAME"), QStringLiteral("tarnPipe"));
    const QCommandLineOption noService(
        QStringLiteral("no-service"), QStringLiteral("Do not start the service when none runs."));
    parser.addOptions({state, pipe, noService});
    parser.addHelpOption();
    parser.addVersionOption();
    parser.process(application);

    QSettings settings(QSettings::IniFormat, QSettings::UserScope, QStringLiteral("TarnService"),
        QStringLiteral("tarnpanel"));
    tarnPanel::MainWindow window({parser.value(state), parser.value(pipe), QApplication::applicationDirPath(),
                                     !parser.isSet(noService)},
        settings);
    QObject::connect(
        &window, &tarnPanel::MainWindow::ended, &application, &QApplication::quit, Qt::QueuedConnection);
    // Ctrl+C in the terminal reaches the service as well; both end in their own order.
    QObject::connect(&tarnPlatform::StopRequests::ofProcess(), &tarnPlatform::StopRequests::stopRequested,
        &window, &tarnPanel::MainWindow::closeNow);
    window.show();
    return QApplication::exec();
}
