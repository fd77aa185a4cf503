#include "figures.h"
#include "process_figures.h"

#include <QCoreApplication>
#include <QDBusConnection>
#include <QDBusConnectionInterface>
#include <QElapsedTimer>
#include <QFile>
#include <QProcess>
#include <QTemporaryDir>
#include <QThread>
#include <QTimer>

using namespace tarnBench;
using namespace std::chrono_literals;

namespace {

constexpr int timeoutMs = 30000;
constexpr std::chrono::milliseconds settleTime = 5s;

// Services of Debian that watch hardware for clients, as the service does, and answer them over the system
// bus.
struct Daemon
{
    const char *name;
    const char *program;
    const char *busName;
};
constexpr Daemon daemons[] = {
    {"upowerd", "/usr/libexec/upowerd", "org.freedesktop.UPower"},
    {"power-profiles-daemon", "/usr/libexec/power-profiles-daemon", "net.hadess.PowerProfiles"},
    {"boltd", "/usr/libexec/boltd", "org.freedesktop.bolt"},
};

// Every program that connects may own any name and send anything.
constexpr char busSettings[] =
    R"(<!DOCTYPE busconfig PUBLIC "-//freedesktop//DTD D-Bus Bus Configuration 1.0//EN"
 "http://www.freedesktop.org/standards/dbus/1.0/busconfig.dtd">
<busconfig>
  <type>system</type>
  <listen>unix:path=%1/bus</listen>
  <auth>EXTERNAL</auth>
  <policy context="default">
    <allow send_destination="*" eavesdrop="true"/>
    <allow eavesdrop="true"/>
    <allow own="*"/>
    <allow user="*"/>
  </policy>
</busconfig>
)";

// A system bus of this process and its children only.
class PrivateBus
{
public:
    PrivateBus()
    {
        QFile settings(folder.filePath(QStringLiteral("bus.conf")));
        if (!settings.open(QIODevice::WriteOnly)
            || settings.write(QString::fromLatin1(busSettings).arg(folder.path()).toUtf8()) < 0)
            qFatal("cannot write %s", qPrintable(settings.fileName()));
        settings.close();
        process.start(QStringLiteral("dbus-daemon"),
            {QStringLiteral("--nofork"), QStringLiteral("--print-address"),
                QStringLiteral("--config-file=") + settings.fileName()});
        if (!process.waitForReadyRead(timeoutMs))
            qFatal("dbus-daemon does not start: %s", process.readAllStandardError().constData());
        const QByteArray address = process.readAllStandardOutput().trimmed();
        qputenv("DBUS_SYSTEM_BUS_ADDRESS", address);
        connection.emplace(
            QDBusConnection::connectToBus(QString::fromLocal8Bit(address), QStringLiteral("costs")));
        if (!connection->isConnected())
            qFatal("no bus: %s", qPrintable(connection->lastError().message()));
    }
    ~PrivateBus()
    {
        QDBusConnection::disconnectFromBus(QStringLiteral("costs"));
        process.kill();
        process.waitForFinished(timeoutMs);
    }
    PrivateBus(const PrivateBus &) = delete;
    PrivateBus &operator=(const PrivateBus &) = delete;

    [[nodiscard]] bool isOwned(const char *name) const
    {
        return connection->interface()->isServiceRegistered(QString::fromLatin1(name));
    }

private:
    QTemporaryDir folder;
    QProcess process;
    std::optional<QDBusConnection> connection;
};

// Milliseconds until the daemon owns its name; nothing when it ends first.
std::optional<double> start(QProcess &process, const Daemon &daemon, const PrivateBus &bus)
{
    process.setProcessChannelMode(QProcess::MergedChannels);
    QElapsedTimer timer;
    timer.start();
    process.start(QString::fromLatin1(daemon.program), {});
    while (!bus.isOwned(daemon.busName)) {
        if (process.state() == QProcess::NotRunning || process.waitForFinished(1)
            || timer.hasExpired(timeoutMs))
            return std::nullopt;
    }
    return static_cast<double>(timer.nsecsElapsed()) / 1e6;
}

void end(QProcess &process, const Daemon &daemon, const PrivateBus &bus)
{
    process.terminate();
    if (!process.waitForFinished(timeoutMs))
        process.kill();
    process.waitForFinished(timeoutMs);
    while (bus.isOwned(daemon.busName))
        QThread::msleep(1);
}

void measure(
    const Daemon &daemon, const PrivateBus &bus, int starts, std::chrono::milliseconds window, Table &table)
{
    Figures startMs;
    for (int round = 0; round < starts; ++round) {
        QProcess process;
        const auto ms = start(process, daemon, bus);
        if (!ms) {
            const QByteArray words = process.readAll().trimmed();
            table.add({daemon.name, "cannot run here: " + QString::fromLocal8Bit(words)});
            process.kill();
            process.waitForFinished(timeoutMs);
            return;
        }
        startMs.add(*ms);
        if (round + 1 < starts) {
            end(process, daemon, bus);
            continue;
        }
        QEventLoop settling;
        QTimer::singleShot(settleTime, &settling, &QEventLoop::quit);
        settling.exec();
        const IdleFigures idle = watchProcess(process.processId(), window);
        const Memory memory = memoryOf(process.processId()).value_or(Memory {});
        table.add({daemon.name, fixed(startMs.median(), 1), fixed(idle.wakeUpsPerSecond, 1),
            fixed(idle.cpuPercent, 2), QString::number(idle.threads), fixed(memory.resident / 1024.0, 2),
            fixed(memory.proportional / 1024.0, 2), fixed(memory.own / 1024.0, 2)});
        end(process, daemon, bus);
    }
}

} // namespace

// The same figures of other services of the system that watch hardware, on a bus of their own.
int main(int argc, char **argv)
{
    const QCoreApplication application(argc, argv);
    const QStringList arguments = QCoreApplication::arguments();
    const qsizetype option = arguments.indexOf(QStringLiteral("--window"));
    const std::chrono::seconds window(option < 0 ? 60 : qMax(arguments.value(option + 1).toInt(), 1));
    const PrivateBus bus;
    printHeading("Other services, idle");
    Table table({"service", "start ms", "wake-ups/s", "CPU %", "threads", "RSS MiB", "PSS MiB", "own MiB"});
    for (const Daemon &daemon : daemons)
        measure(daemon, bus, 5, window, table);
    table.print();
    return 0;
}
