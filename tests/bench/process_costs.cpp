#include "end_to_end/service_client.h"
#include "end_to_end/service_process.h"
#include "figures.h"
#include "process_figures.h"
#include "simulator/accessory_catalog.h"
#include "support/pipe_peer.h"
#include "wait_rates.h"

#include <QCoreApplication>
#include <QElapsedTimer>
#include <QLocalSocket>
#include <QThread>

using namespace tarnBench;
using namespace std::chrono_literals;
using tarnTest::ServiceClient;
using tarnTest::ServiceProcess;

namespace {

constexpr double startDelayMs = 4000; // the service waits so long before it does anything
constexpr double messagePauseMs = 500; // before each message to the client
constexpr double memoryBarMib = 4;
constexpr int timeoutMs = 30000;

struct Extent
{
    int starts;
    int requests;
    std::chrono::milliseconds window;
    std::chrono::milliseconds settling; // after the last message, until nothing is left to do
};

double elapsedMs(const QElapsedTimer &timer)
{
    return static_cast<double>(timer.nsecsElapsed()) / 1e6;
}

void settle(const Extent &extent)
{
    tarnTest::waitUntil([] { return false; }, static_cast<int>(extent.settling.count()));
}

// As a client that has been waiting for the service.
void connectAsSoonAsPossible(QLocalSocket &socket)
{
    for (int attempt = 0; attempt < timeoutMs; ++attempt) {
        socket.connectToServer(QStringLiteral("tarnPipe"));
        if (socket.waitForConnected(timeoutMs))
            return;
        QThread::msleep(1);
    }
    qFatal("the service does not open its pipe");
}

void readUntil(QLocalSocket &socket, QByteArray &arrived, const char *text)
{
    while (!arrived.contains(text)) {
        if (!socket.waitForReadyRead(timeoutMs))
            qFatal("no message with %s", text);
        arrived += socket.readAll();
    }
}

void measureStart(const Extent &extent)
{
    Figures pipeMs;
    Figures answerMs;
    Figures stopMs;
    Figures stopWithClientMs;
    for (int round = 0; round < 2 * extent.starts; ++round) {
        ServiceProcess service;
        QElapsedTimer timer;
        timer.start();
        if (!service.launch({QStringLiteral("-exec")}))
            qFatal("the service does not start");
        QLocalSocket socket;
        connectAsSoonAsPossible(socket);
        pipeMs.add(elapsedMs(timer) - startDelayMs);
        socket.write(R"({"cmd":"getAccessoryType"})");
        QByteArray arrived;
        readUntil(socket, arrived, "getAccessoryType");
        answerMs.add(elapsedMs(timer) - startDelayMs - messagePauseMs);
        if (!service.waitForLog(QStringLiteral("getAccessoryTypeForFirst finish normal.")))
            qFatal("the monitor does not poll");
        const bool withClient = round % 2 == 1;
        if (withClient)
            readUntil(socket, arrived, "getTarnBatteryNum"); // the last message of the start
        else
            socket.disconnectFromServer();
        settle(extent);
        timer.start();
        if (service.stop() != 0)
            qFatal("the service does not end well");
        (withClient ? stopWithClientMs : stopMs).add(elapsedMs(timer));
    }
    printHeading("Start and end of the process");
    Table table({"from, to", "laid down ms", "median ms more", "largest ms more", "runs"});
    const auto addRow = [&table](const char *name, double laidDownMs, const Figures &ms) {
        table.add({name, fixed(laidDownMs, 0), fixed(ms.median(), 1), fixed(ms.largest(), 1),
            QString::number(ms.count())});
    };
    addRow("start, pipe open", startDelayMs, pipeMs);
    addRow("start, first answer read", startDelayMs + messagePauseMs, answerMs);
    addRow("stop request, exit", 0, stopMs);
    addRow("stop request, exit, with a client", 0, stopWithClientMs);
    table.print();
}

void measureRequests(ServiceClient &client, int requests)
{
    const QJsonObject request {{QStringLiteral("cmd"), QStringLiteral("getAccessoryType")}};
    static_cast<void>(client.ask(request)); // answered after what has waited for a client
    Figures moreUs;
    for (int round = 0; round < requests; ++round) {
        QElapsedTimer timer;
        timer.start();
        if (client.ask(request).isEmpty())
            qFatal("no reply");
        moreUs.add(1000 * (elapsedMs(timer) - messagePauseMs));
    }
    printHeading("Request to reply, with the pause before each message");
    Table table({"command", "laid down ms", "median us more", "largest us more", "requests"});
    table.add({"getAccessoryType", fixed(messagePauseMs, 0), fixed(moreUs.median(), 0),
        fixed(moreUs.largest(), 0), QString::number(moreUs.count())});
    table.print();
}

// Attached, and everything done that follows from it.
void attach(ServiceProcess &service, const QString &accessory, const Extent &extent)
{
    if (accessory.isEmpty())
        return;
    const auto reports = service.computer().gpuReports().count;
    const auto *known = tarnSimulator::findAccessory(accessory.toStdString());
    service.computer().attach(*known);
    if (known->name.starts_with("graphics")
        && !tarnTest::waitUntil([&] { return service.computer().gpuReports().count != reports; }, timeoutMs))
        qFatal("the GPU is not brought up");
    settle(extent);
}

void addIdleRow(Table &table, const QString &name, const QString &client, qint64 pid, double waits,
    std::chrono::milliseconds window)
{
    const IdleFigures idle = watchProcess(pid, window);
    table.add({name, client, fixed(waits, 1), fixed(idle.wakeUpsPerSecond, 1),
        fixed(idle.wakeUpsPerSecond - waits, 1), fixed(idle.cpuPercent, 2), QString::number(idle.threads)});
}

void measureIdle(
    ServiceProcess &service, qint64 bareServer, const std::vector<WaitRate> &rates, const Extent &extent)
{
    printHeading("Idle");
    Table table({"attached", "client", "waits/s laid down", "wake-ups/s", "more", "CPU %", "threads"});
    const qint64 pid = service.process.processId();
    for (const WaitRate &rate : rates) {
        attach(service, rate.accessory, extent);
        const QString name = rate.accessory.isEmpty() ? QStringLiteral("nothing") : rate.accessory;
        addIdleRow(table, name, "no", pid, rate.waitsPerSecond, extent.window);
        ServiceClient client;
        // The answer comes after everything that had been waiting for a client.
        if (!client.connectToService() || client.answer("getAccessoryType").isEmpty())
            qFatal("no client");
        settle(extent);
        addIdleRow(table, name, "yes", pid, rate.waitsPerSecond, extent.window);
        client.leave();
        settle(extent);
    }
    addIdleRow(table, QStringLiteral("(bare server)"), "no", bareServer, 0, extent.window);
    table.print();
    printNote(QStringLiteral("%1 s each.").arg(fixed(static_cast<double>(extent.window.count()) / 1000, 1)));

    printHeading("A cycle of the monitor, on virtual time");
    Table cycles({"attached", "waits of a cycle ms", "waits/s", "work of a cycle us", "work %"});
    for (const WaitRate &rate : rates) {
        cycles.add({rate.accessory.isEmpty() ? QStringLiteral("nothing") : rate.accessory,
            fixed(rate.cycleMs, 0), fixed(rate.waitsPerSecond, 1), fixed(rate.workUs, 1),
            fixed(rate.workUs / rate.cycleMs / 10, 3)});
    }
    cycles.print();
}

// The service beside the bare server, each time at the same moment: PSS depends on who else has the pages.
class MemoryTable
{
public:
    MemoryTable(qint64 servicePid, qint64 bareServerPid)
        : service(servicePid)
        , bareServer(bareServerPid)
    { }

    void add(const char *moment)
    {
        const Memory ours = read(service);
        const Memory bare = read(bareServer);
        table.add({moment, pair(ours.resident, bare.resident), mib(ours.resident - bare.resident),
            pair(ours.proportional, bare.proportional), mib(ours.proportional - bare.proportional),
            pair(ours.own, bare.own), mib(ours.own - bare.own), pair(ours.anonymous, bare.anonymous)});
    }
    void print() const
    {
        printHeading("Memory: service / bare server");
        table.print();
        printNote(QStringLiteral("In MiB; bar: %1 more than the bare server.").arg(memoryBarMib));
    }

private:
    static Memory read(qint64 pid)
    {
        const auto memory = memoryOf(pid);
        if (!memory)
            qFatal("the memory of process %lld cannot be read", pid);
        return *memory;
    }
    static QString mib(int kib) { return fixed(kib / 1024.0, 2); }
    static QString pair(int ours, int bare) { return mib(ours) + QStringLiteral(" / ") + mib(bare); }

    const qint64 service;
    const qint64 bareServer;
    Table table {{"moment", "RSS", "more", "PSS", "more", "own pages", "more", "anonymous"}};
};

Extent wantedExtent()
{
    const QStringList arguments = QCoreApplication::arguments();
    Extent extent =
        arguments.contains(QStringLiteral("--quick")) ? Extent {1, 4, 1s, 500ms} : Extent {5, 100, 60s, 2s};
    const qsizetype window = arguments.indexOf(QStringLiteral("--window"));
    if (window >= 0)
        extent.window = std::chrono::seconds(qMax(arguments.value(window + 1).toInt(), 1));
    return extent;
}

} // namespace

// The real process: how fast it comes and goes, what it costs while nothing happens, and how large it is
// beside a Qt local server that does nothing.
int main(int argc, char **argv)
{
    const QCoreApplication application(argc, argv);
    const Extent extent = wantedExtent();
    const std::vector<WaitRate> rates = measureWaitRates();
    measureStart(extent);

    ServiceProcess service;
    QProcess bareServer;
    bareServer.start(QStringLiteral(TARN_BARE_SERVER), {});
    if (!service.start() || !bareServer.waitForStarted())
        qFatal("the servers do not start");
    settle(extent);
    MemoryTable memory(service.process.processId(), bareServer.processId());
    memory.add("started");
    ServiceClient client;
    if (!client.connectToService())
        qFatal("no client");
    measureRequests(client, extent.requests);
    memory.add("with a client that has asked");
    client.leave();
    settle(extent);
    measureIdle(service, bareServer.processId(), rates, extent);
    memory.add("after every accessory");
    memory.print();

    const bool endedWell = service.stop() == 0;
    bareServer.kill();
    bareServer.waitForFinished();
    return endedWell ? 0 : 1;
}
