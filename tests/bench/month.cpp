#include "device/ec_access_lock.h"
#include "device/ec_dirver_controller_hal.h"
#include "device/monitor/ec_dirver_reader.h"
#include "figures.h"
#include "live_memory.h"
#include "pipe/tarn_pipe_server.h"
#include "process_figures.h"
#include "simulator/accessory_catalog.h"
#include "support/command_samples.h"
#include "support/pipe_peer.h"
#include "support/queued_messages.h"
#include "support/simulated_machine.h"

#include <QCoreApplication>
#include <QDir>
#include <QElapsedTimer>

#include <atomic>
#include <limits>
#include <malloc.h>
#include <memory>
#include <utility>
#include <vector>

using namespace tarnBench;
using namespace std::chrono_literals;
using std::chrono::milliseconds;
using tarnDeviceInfos::EcDirverReader;

namespace {

constexpr milliseconds day = 24h;
constexpr milliseconds betweenValues = 10min;
constexpr milliseconds betweenAccessories = 3h;
constexpr milliseconds betweenRequests = 20min; // divided by --busy
constexpr milliseconds absence = 2h;

// Everything that a client may ask without changing anything, and what is not understood.
std::vector<QByteArray> everyQuery()
{
    std::vector<QByteArray> queries;
    for (const tarn::CommandEntry &command : tarn::commandCatalogue()) {
        const bool changesNothing = command.data.kind == tarn::DataKind::None && !command.answerKeys.isEmpty()
            && tarnTest::sampleOf(command.name).hold == tarnTest::EcHold::None;
        if (changesNothing)
            queries.push_back(tarnTest::requestOf(command, {}));
    }
    queries.emplace_back(R"({"cmd":"noSuchCommand"})");
    return queries;
}

// The user's changes: another accessory, other battery levels. On the monitor's thread, in its waits.
class Desk
{
public:
    explicit Desk(tarnTest::SimulatedMachine &subject)
        : machine(subject)
    { }

    void onWait(milliseconds duration)
    {
        if (QThread::currentThread() != EcDirverReader::instance())
            return;
        if (duration == 100ms && tarnDeviceInfos::ecAccessMutex.isLocked())
            ++cycles;
        const milliseconds now = machine.clock.now();
        if (now >= nextValues) {
            nextValues = now + betweenValues;
            changeValues();
        }
        if (now >= nextAccessory) {
            nextAccessory = now + betweenAccessories;
            changeAccessory();
        }
    }

    std::atomic<int> cycles {0};

private:
    void changeValues()
    {
        level = static_cast<std::uint8_t>((level + 1) % 101);
        machine.computer.setKvaneBattery(level);
        machine.computer.setHostBattery(level);
        // What the test's own stand-ins remember would be taken for a growth of the service.
        machine.clock.forgetWaits();
        machine.log.clear();
    }

    void changeAccessory()
    {
        const auto catalogue = tarnSimulator::accessoryCatalog();
        attached = (attached + 1) % (catalogue.size() + 1);
        if (attached == catalogue.size())
            machine.computer.detach();
        else
            machine.computer.attach(catalogue[attached]);
    }

    tarnTest::SimulatedMachine &machine;
    milliseconds nextValues {0};
    milliseconds nextAccessory = betweenAccessories;
    std::uint8_t level = 0;
    std::size_t attached = 0;
};

// A client that sends one request after the other, leaves every day and comes back only a little later: a
// client that leaves after another one has come stops the messages to that one, too.
class Visitor
{
public:
    explicit Visitor(int busy)
        : pause(betweenRequests / busy)
    { }

    void look(milliseconds now)
    {
        if (now >= nextLeave) {
            nextLeave += day;
            nextVisit = now + absence;
            socket.reset();
        }
        if (!socket && now >= nextVisit) {
            socket = std::make_unique<QLocalSocket>();
            socket->connectToServer(QStringLiteral("tarnPipe"));
        }
        if (!socket)
            return;
        bytesRead += socket->readAll().size();
        if (now < nextRequest || socket->state() != QLocalSocket::ConnectedState)
            return;
        nextRequest = now + pause;
        socket->write(queries[asked++ % queries.size()]);
        socket->flush();
    }

    std::size_t asked = 0;
    qint64 bytesRead = 0;

private:
    const milliseconds pause;
    const std::vector<QByteArray> queries = everyQuery();
    std::unique_ptr<QLocalSocket> socket;
    milliseconds nextVisit {0};
    milliseconds nextLeave = day - 12h;
    milliseconds nextRequest {0};
};

double heapKib()
{
    const struct mallinfo2 heap = ::mallinfo2();
    return static_cast<double>(heap.uordblks + heap.hblkhd) / 1024;
}

// Each thread of a pool costs some memory for as long as it is idle, 30 s of real time.
qsizetype threadCount()
{
    return QDir(QStringLiteral("/proc/self/task")).entryList(QDir::Dirs | QDir::NoDotAndDotDot).size();
}

int numberWanted(const char *name, int otherwise)
{
    const QStringList arguments = QCoreApplication::arguments();
    const qsizetype option = arguments.indexOf(QLatin1String(name));
    return option < 0 ? otherwise : qMax(arguments.value(option + 1).toInt(), 1);
}

// The least that was alive at any look of a day: what comes and goes with each request is left out.
class LeastAlive
{
public:
    void look()
    {
        const LiveMemory now = liveMemory();
        if (least.blocks == 0 || now.bytes < least.bytes)
            least = now;
    }
    LiveMemory take() { return std::exchange(least, {}); }

private:
    LiveMemory least;
};

} // namespace

// The service's threads on virtual time for a month, and what becomes of the heap.
int main(int argc, char **argv)
{
    const QCoreApplication application(argc, argv);
    const int days = numberWanted("--days", 30);
    tarnTest::SimulatedMachine machine;
    Desk desk(machine);
    machine.clock.onWait = [&desk](milliseconds duration) {
        desk.onWait(duration);
    };
    tarnDeviceInfos::EcDirverControllerHal::instance();
    tarnPipeServer::TarnPipeServer::instance();
    EcDirverReader::instance()->start();

    QElapsedTimer timer;
    timer.start();
    Visitor visitor(numberWanted("--busy", 1));
    LeastAlive alive;
    const int rowEvery = qMax(days / 6, 1);
    Table table({"virtual day", "cycles", "requests", "KiB read by client", "messages waiting", "threads",
        "live blocks", "live KiB", "heap in use KiB", "resident KiB"});
    for (int today = 1; today <= days; ++today) {
        const bool reached = tarnTest::waitUntil(
            [&] {
                visitor.look(machine.clock.now());
                alive.look();
                return machine.clock.now() >= today * day;
            },
            std::numeric_limits<int>::max());
        if (!reached)
            return 1;
        machine.log.clear();
        const LiveMemory least = alive.take();
        if (today <= 2 || today % rowEvery == 0 || today == days) {
            const auto memory = memoryOf(QCoreApplication::applicationPid());
            table.add({QString::number(today), QString::number(desk.cycles), QString::number(visitor.asked),
                QString::number(visitor.bytesRead / 1024), QString::number(tarnTest::queuedMessages().size()),
                QString::number(threadCount()), QString::number(least.blocks),
                fixed(static_cast<double>(least.bytes) / 1024, 1), fixed(heapKib(), 0),
                QString::number(memory ? memory->resident : 0)});
        }
    }
    const double seconds = static_cast<double>(timer.elapsed()) / 1000;
    EcDirverReader::instance()->requestEnd();
    EcDirverReader::instance()->wait();

    printHeading("Memory over time, on virtual time");
    table.print();
    printNote(QStringLiteral("%1 virtual days in %2 s of real time: %3 cycles of the monitor a second.")
                  .arg(days)
                  .arg(fixed(seconds, 1), fixed(desk.cycles / seconds, 0)));
    return 0;
}
