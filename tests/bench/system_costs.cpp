#include "device/ec_registers.h"
#include "end_to_end/service_client.h"
#include "end_to_end/service_process.h"
#include "figures.h"
#include "load/process_figures.h"
#include "pipe/tarn_pipe_server.h"
#include "platform/waits.h"
#include "support/command_samples.h"
#include "support/pipe_peer.h"

#include <QCoreApplication>
#include <QDir>
#include <QElapsedTimer>

#include <algorithm>

using namespace tarnBench;
using namespace tarnDeviceInfos;
using tarn::CommandEntry;
using tarn::DataKind;
using tarnTest::ServiceProcess;

namespace {

constexpr double barPercent = 2;
constexpr int timeoutMs = 60000;

// The waits of a cycle of the monitor: three of its own of 100 ms, 20 ms for each register that it reads.
struct Cycle
{
    const char *attached;
    quint8 accessory;
    double laidDownMs;
};
constexpr Cycle cycles[] = {
    {"nothing", ACCESSORY_NONE, 320},
    {"dock", ACCESSORY_DOCK, 340},
};

// Sleeps as the service does, and knows for how long it was asked to and how long that took.
class CountingClock final : public tarnPlatform::WaitClock
{
public:
    void sleep(tarnPlatform::milliseconds duration) override
    {
        QElapsedTimer timer;
        timer.start();
        tarnPlatform::systemSleep(duration);
        sleptMs += static_cast<double>(timer.nsecsElapsed()) / 1e6;
        askedMs += static_cast<double>(duration.count());
    }

    double askedMs = 0;
    double sleptMs = 0;
};

void settle(int milliseconds)
{
    tarnTest::waitUntil([] { return false; }, milliseconds);
}

// Formatted as for the debug output, then dropped.
void dropMessage(QtMsgType type, const QMessageLogContext &context, const QString &text)
{
    static_cast<void>(qFormatLogMessage(type, context, text).toLocal8Bit());
    if (type == QtFatalMsg)
        std::abort();
}

// When the monitor has looked for an accessory, by the clock of the simulated EC.
std::vector<double> pollTimes(ServiceProcess &service, std::uint64_t after)
{
    std::vector<double> times;
    for (const auto &access : service.computer().registerLog().readAfter(after).accesses) {
        if (access.address == MCU_LINK_STATUS)
            times.push_back(static_cast<double>(access.timeMs));
    }
    return times;
}

void measureCycles(ServiceProcess &service, int seconds)
{
    printHeading("A cycle of the monitor, in the running service");
    Table table({"attached", "laid down ms", "mean ms", "more %", "largest ms", "cycles"});
    for (const Cycle &cycle : cycles) {
        if (cycle.accessory != ACCESSORY_NONE)
            service.attach(cycle.accessory);
        settle(5000);
        const std::uint64_t begin = service.computer().registerLog().end();
        settle(1000 * seconds);
        const std::vector<double> times = pollTimes(service, begin);
        if (times.size() < 2)
            qFatal("the monitor does not poll");
        double largestMs = 0;
        for (std::size_t i = 1; i < times.size(); ++i)
            largestMs = std::max(largestMs, times[i] - times[i - 1]);
        const auto count = static_cast<double>(times.size() - 1);
        const double meanMs = (times.back() - times.front()) / count;
        table.add({cycle.attached, fixed(cycle.laidDownMs, 0), fixed(meanMs, 1),
            fixed(100 * (meanMs - cycle.laidDownMs) / cycle.laidDownMs, 2), fixed(largestMs, 0),
            fixed(count, 0)});
    }
    table.print();
}

void addIdleRow(Table &table, const char *client, qint64 pid, int seconds)
{
    const qint64 before = tarnLoad::figuresOf(pid).cpuMs;
    QElapsedTimer timer;
    timer.start();
    settle(1000 * seconds);
    const tarnLoad::ProcessFigures after = tarnLoad::figuresOf(pid);
    const QString notTold = QStringLiteral("-"); // Wine counts neither
    table.add({client,
        fixed(100.0 * static_cast<double>(after.cpuMs - before) / static_cast<double>(timer.elapsed()), 2),
        after.memoryMib > 0 ? fixed(after.memoryMib, 1) : notTold,
        after.handles > 0 ? QString::number(after.handles) : notTold});
}

void measureIdle(ServiceProcess &service, int seconds)
{
    printHeading("Idle, with a dock");
    Table table({"client", "CPU %", "memory MiB", "handles"});
    const qint64 pid = service.process.processId();
    addIdleRow(table, "no", pid, seconds);
    tarnTest::ServiceClient client;
    if (!client.connectToService() || client.answer("getAccessoryType").isEmpty())
        qFatal("no client");
    addIdleRow(table, "yes", pid, seconds);
    client.leave();
    table.print();
}

// The updates are left to command_costs, which has their tools.
bool isMeasured(const CommandEntry &command)
{
    return command.needsEc && tarnTest::sampleOf(command.name).hold == tarnTest::EcHold::None
        && command.data.kind != DataKind::McuFileName;
}

struct CommandFigures
{
    double waitsMs = 0;
    Figures realMs {};
    Figures busyMs {}; // of it, when no wait was going on
};

CommandFigures measure(const QByteArray &request, CountingClock &clock, double budgetMs)
{
    auto *server = tarnPipeServer::TarnPipeServer::instance();
    server->dispatch(request); // creates what is created on first use
    CommandFigures figures;
    do {
        clock.askedMs = clock.sleptMs = 0;
        QElapsedTimer timer;
        timer.start();
        server->dispatch(request);
        const double elapsedMs = static_cast<double>(timer.nsecsElapsed()) / 1e6;
        figures.waitsMs = clock.askedMs;
        figures.realMs.add(elapsedMs);
        figures.busyMs.add(elapsedMs - clock.sleptMs);
    } while (figures.waitsMs * static_cast<double>(figures.realMs.count() + 1) < budgetMs);
    return figures;
}

// Each command through the dispatcher of this process, which has the EC for itself.
void measureCommands(ServiceProcess &place, double budgetMs)
{
    QDir::setCurrent(place.path(QStringLiteral(".")));
    qInstallMessageHandler(dropMessage);
    CountingClock clock;
    tarnPlatform::setWaitClock(&clock);
    printHeading("Commands: time beside their waits");
    Table table({"command", "data", "waits ms", "median ms", "more %", "busy ms", "busy %", "runs"});
    Figures busyPercents;
    for (const CommandEntry &command : tarn::commandCatalogue()) {
        if (!isMeasured(command))
            continue;
        place.attach(tarnTest::accessoryFor(command).value_or(ACCESSORY_DOCK));
        for (const QString &data : tarnTest::kindsOfData(command)) {
            const CommandFigures figures = measure(tarnTest::requestOf(command, data), clock, budgetMs);
            const double realMs = figures.realMs.median();
            const double busyPercent = 100 * figures.busyMs.median() / figures.waitsMs;
            busyPercents.add(busyPercent);
            table.add({command.name, data, fixed(figures.waitsMs, 0), fixed(realMs, 2),
                fixed(100 * (realMs - figures.waitsMs) / figures.waitsMs, 2),
                fixed(figures.busyMs.median(), 2), fixed(busyPercent, 2),
                QString::number(figures.realMs.count())});
        }
    }
    tarnPlatform::setWaitClock(nullptr);
    table.print();
    printNote(QStringLiteral("At most %1 % busy (bar: %2 %).")
                  .arg(fixed(busyPercents.largest(), 2))
                  .arg(barPercent));
}

void printSleepCost(int rounds)
{
    Figures moreUs;
    for (int round = 0; round < rounds; ++round) {
        QElapsedTimer timer;
        timer.start();
        tarnPlatform::systemSleep(tarnPlatform::milliseconds(5));
        moreUs.add(static_cast<double>(timer.nsecsElapsed() - 5000000) / 1e3);
    }
    printNote(QStringLiteral("A single wait of 5 ms takes %1 us more (median; p99 %2 us).")
                  .arg(fixed(moreUs.median(), 0), fixed(moreUs.quantile(0.99), 0)));
}

} // namespace

// What can be measured in the same way on each system: from outside, and through the dispatcher.
int main(int argc, char **argv)
{
    const QCoreApplication application(argc, argv);
    const bool isQuick = QCoreApplication::arguments().contains(QStringLiteral("--quick"));
    const int windowSeconds = isQuick ? 2 : 60;
    ServiceProcess service;
    if (!service.start())
        qFatal("the service does not start");
    measureCycles(service, windowSeconds);
    measureIdle(service, windowSeconds);
    if (service.stop(timeoutMs) != 0)
        qFatal("the service does not end well");
    measureCommands(service, isQuick ? 0 : 3000);
    printSleepCost(isQuick ? 50 : 1000);
    // What the process holds ends with it: the dispatcher's objects are never destroyed.
    std::fflush(stdout);
    std::_Exit(0);
}
