#include "bench/live_memory.h"
#include "device/ec_access_lock.h"
#include "load/figure_table.h"
#include "load/load_scale.h"
#include "pipe/handler_threads.h"
#include "pipe/outbox/send_queue_thread.h"
#include "pipe/tarn_pipe_server.h"
#include "support/command_samples.h"
#include "support/pipe_peer.h"
#include "support/queued_messages.h"
#include "support/simulated_machine.h"

#include <QThreadPool>

#include <gtest/gtest.h>

#include <memory>
#include <vector>

using tarnBench::liveMemory;
using tarnBench::LiveMemory;
using tarnDeviceInfos::ecAccessMutex;
using tarnLoad::report;
using tarnPipeServer::SendQueueThread;
using tarnPipeServer::TarnPipeServer;
using tarnTest::PipePeer;
using tarnTest::waitUntil;

namespace {

constexpr int restTimeoutMs = 150000; // 20,000 requests that have waited are answered in some seconds

// One of each kind, but none that takes the EC for good.
std::vector<QByteArray> requestsOfAllKinds()
{
    std::vector<QByteArray> requests;
    for (const tarn::CommandEntry &command : tarn::commandCatalogue()) {
        const bool takesEc = tarnTest::sampleOf(command.name).hold == tarnTest::EcHold::ForGood;
        for (const QString &data : takesEc ? tarnTest::badData(command) : tarnTest::kindsOfData(command))
            requests.push_back(tarnTest::requestOf(command, data));
    }
    requests.emplace_back(R"({"cmd":"noSuchThing"})");
    requests.emplace_back("nonsense");
    return requests;
}

} // namespace

// Server, queue and client in this process, on virtual time: the memory of an answered request must be freed.
// A leak would be at least one block for each request; the threads of the lanes come and go with some blocks,
// too few to be taken for a leak.
class KeptMemory : public tarnTest::MachineTest
{
protected:
    KeptMemory() { TarnPipeServer::instance(); }
    ~KeptMemory() override { ecAccessMutex.releaseWaiters(); }

    // Waits until no message or event is pending, and clears the notes of the test's own stand-ins.
    LiveMemory atRest()
    {
        EXPECT_TRUE(waitUntil([] { return tarnPipeServer::waitForHandlers(0); }, restTimeoutMs));
        EXPECT_TRUE(waitUntil([] { return tarnTest::queuedMessages().isEmpty(); }, restTimeoutMs));
        LiveMemory least = liveMemory();
        // The last message may still be in its pause and events under way.
        waitUntil(
            [&] {
                machine.clock.forgetWaits();
                machine.log.clear();
                const LiveMemory now = liveMemory();
                if (now.blocks < least.blocks)
                    least = now;
                return false;
            },
            200);
        return least;
    }
    void ask(PipePeer &client, const QByteArray &request)
    {
        machine.log.clear();
        client.write(request);
        ASSERT_TRUE(waitUntil([this] {
            for (const QString &line : machine.log.lines()) {
                if (line == QStringLiteral("send") || line.startsWith(QStringLiteral("send{")))
                    return true;
            }
            return false;
        })) << request.toStdString();
        machine.clock.forgetWaits();
    }
    void askMany(int times)
    {
        PipePeer client;
        ASSERT_TRUE(client.connectToService());
        for (int asked = 0; asked < times; ++asked)
            ask(client, requests[static_cast<std::size_t>(asked) % requests.size()]);
    }
    void expectNothingKept(const char *what, int times, const LiveMemory &before)
    {
        const LiveMemory after = atRest();
        EXPECT_LT(after.blocks - before.blocks, times / 10);
        report(what,
            QStringLiteral("%1, blocks %2, bytes %3")
                .arg(times)
                .arg(after.blocks - before.blocks)
                .arg(after.bytes - before.bytes));
    }

    const std::vector<QByteArray> requests = requestsOfAllKinds();
};

TEST_F(KeptMemory, IsNotMoreForEachRequest)
{
    askMany(200);
    const LiveMemory before = atRest();
    const int times = tarnLoad::scaled(2000, 50000);
    askMany(times);
    expectNothingKept("kept of requests", times, before);
}

TEST_F(KeptMemory, IsNotMoreForEachClient)
{
    const auto visit = [this](int times) {
        for (int visits = 0; visits < times; ++visits) {
            PipePeer client;
            ASSERT_TRUE(client.connectToService());
            ask(client, requests.front());
            client.leave();
            ASSERT_TRUE(waitUntil([] { return SendQueueThread::instance()->isFinished(); }));
        }
    };
    visit(50);
    const LiveMemory before = atRest();
    const int times = tarnLoad::scaled(1000, 10000);
    visit(times);
    expectNothingKept("kept of clients", times, before);
}

TEST_F(KeptMemory, IsGivenBackForRequestsThatHaveWaitedForTheEc)
{
    PipePeer client;
    ASSERT_TRUE(client.connectToService());
    LiveMemory waiting;
    const auto waitInNumbers = [&](int times) {
        ASSERT_TRUE(ecAccessMutex.lock());
        for (int asked = 0; asked < times; ++asked) {
            machine.log.clear();
            client.write(R"({"cmd":"getHardwareVersion"})");
            ASSERT_TRUE(
                waitUntil([this] { return machine.log.contains(R"("{\"cmd\":\"getHardwareVersion\"}")"); }));
        }
        waiting = liveMemory();
        ecAccessMutex.unlock();
    };
    waitInNumbers(200); // the lane has all its threads from here on
    const LiveMemory before = atRest();
    const int times = tarnLoad::scaled(2000, 20000);
    waitInNumbers(times);
    const long kept = (waiting.bytes - before.bytes) / times;
    EXPECT_LT(kept, 2048);
    report("kept of each that waits", QStringLiteral("%1 bytes").arg(kept));
    expectNothingKept("kept of those that have waited", times, before);
}

// With one request a minute the thread of the last one has ended each time.
TEST_F(KeptMemory, IsNotMoreForEachThreadThatEnds)
{
    using tarnPipeServer::Lane;
    for (const Lane lane : {Lane::WaitsForEc, Lane::LeavesMcuUpdateMode, Lane::UpdatesEc, Lane::NeverWaits})
        tarnPipeServer::threadsOf(lane)->setExpiryTimeout(0);
    askMany(200);
    const LiveMemory before = atRest();
    const int times = tarnLoad::scaled(2000, 20000);
    askMany(times);
    expectNothingKept("kept of threads that end", times, before);
}
