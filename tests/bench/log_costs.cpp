#include "figures.h"
#include "platform/log_file.h"
#include "platform/message_tap.h"

#include <QCoreApplication>
#include <QElapsedTimer>
#include <QTemporaryDir>

#include <functional>

using namespace tarnBench;
using tarnPlatform::LogFile;

namespace {

void discard(QtMsgType, const QMessageLogContext &, const QString &) { }

Figures timesOf(int lines, const std::function<void()> &write)
{
    Figures us;
    for (int line = 0; line < lines; ++line) {
        QElapsedTimer timer;
        timer.start();
        write();
        us.add(static_cast<double>(timer.nsecsElapsed()) / 1e3);
    }
    return us;
}

} // namespace

// What the log file adds to a message: the line is in the hands of the system when the call returns.
int main(int argc, char **argv)
{
    QCoreApplication application(argc, argv);
    const int lines = QCoreApplication::arguments().contains(QStringLiteral("--quick")) ? 5000 : 50000;
    const QTemporaryDir folder;
    LogFile log(folder.path());
    qInstallMessageHandler(discard); // where the message goes besides costs nothing here

    printHeading("A line of the log file; limit: 20 us (median)");
    Table table({"line", "median us", "p99 us", "largest us", "lines"});
    const auto measure = [&](const char *name, int count, const std::function<void()> &write) {
        const Figures us = timesOf(count, write);
        table.add({name, fixed(us.median(), 1), fixed(us.quantile(0.99), 1), fixed(us.largest(), 0),
            QString::number(us.count())});
    };
    const auto request = [] {
        qDebug() << "getAccessoryType" << 42;
    };
    const QString longText(8192, u'x');
    const QString garbage(8192, u'\x1b');
    measure("message without log file", lines, request);
    {
        const tarnPlatform::MessageTap tap(
            [&log](QtMsgType type, const QString &message) { log.write(type, message); });
        measure("the same with log file", lines, request);
    }
    measure("4 KiB, a new file with each 512th", lines / 10, [&] { log.write(QtDebugMsg, longText); });
    measure("4 KiB, each character escaped", lines / 10, [&] { log.write(QtDebugMsg, garbage); });
    table.print();
    return 0;
}
