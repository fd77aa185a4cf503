#include "pipe/handler_threads.h"

#include "../update/update_fixture.h"
#include "pipe/tarn_pipe_server.h"
#include "support/pipe_peer.h"
#include "support/time_bound.h"

#include <QSemaphore>
#include <QThreadPool>

#include <utility>

using tarnDeviceInfos::ecAccessMutex;
using tarnPipeServer::Lane;
using tarnPipeServer::TarnPipeServer;
using tarnTest::waitUntil;

// More requests wait for the EC than there are threads for them.
class HandlerThreads : public tarnTest::UpdateTest
{
protected:
    HandlerThreads() { TarnPipeServer::instance(); }
    ~HandlerThreads() override
    {
        ecAccessMutex.releaseWaiters();
        while (!tarnPipeServer::waitForHandlers(100)) { }
    }

    // Sends that many requests, each in a read of its own.
    void send(const QByteArray &request, int times)
    {
        const QString read = '"' + QString::fromUtf8(request).replace('"', "\\\"") + '"';
        for (int sent = 1; sent <= times; ++sent) {
            client.write(request);
            ASSERT_TRUE(waitUntil([&] { return machine.log.count(read) == sent; })) << sent;
        }
    }
    void crowd() { send(crowdRequest, crowdSize); }
    void expectCrowdAnswered()
    {
        const QByteArray reply =
            R"({"cmd":"getAccessoryCode","data":"4","says":"getAccessoryType requestLeaveMcuUpdateMode requestEcUpdate"})";
        EXPECT_TRUE(waitUntil([&] { return client.received().count(reply) == crowdSize; }));
    }
    bool isAnswered(const QByteArray &reply)
    {
        return waitUntil([&] { return client.received().contains(reply); }, 5000);
    }
    // All threads of this process.
    static qsizetype threads()
    {
        return QDir("/proc/self/task").entryList(QDir::Dirs | QDir::NoDotAndDotDot).size();
    }

    static constexpr int crowdSize = 300;
    static constexpr int mostThreads = 64 + 16; // waiting handlers; other handlers and the process's own
    // Names of commands in the wrong place change nothing.
    const QByteArray crowdRequest =
        R"({"cmd":"getAccessoryCode","says":"getAccessoryType requestLeaveMcuUpdateMode requestEcUpdate"})";
    tarnTest::PipePeer client;
};

// A client that polls while a question to the user is open must still get what needs no EC.
TEST_F(HandlerThreads, WaitingForTheEcLeaveTheOthersAlone)
{
    ASSERT_TRUE(ecAccessMutex.lock());
    ASSERT_TRUE(client.connectToService());
    crowd();
    client.write(R"({"cmd":"getAccessoryType"})");
    EXPECT_TRUE(isAnswered(R"({"cmd":"getAccessoryType","data":"k_vane"})"));
    for (const char *cached :
        {"getKvaneChargingStatus", "getKvaneBatteryNum", "getTarnChargingStatus", "getTarnBatteryNum"}) {
        client.write(QByteArray(R"({"cmd":")") + cached + R"("})");
        EXPECT_TRUE(isAnswered(QByteArray(R"({"cmd":")") + cached + R"(","data":"251"})"));
    }
    client.write(R"({"cmd":"getKVaneLedLight"})");
    EXPECT_TRUE(isAnswered(R"({"cmd":"getKVaneLedLight","data":"0"})"));
    client.write(R"({"cmd":"requestBeginGraphicsMcuUpdate"})");
    EXPECT_TRUE(isAnswered(R"({"cmd":"requestBeginGraphicsMcuUpdate"})"));
    ecAccessMutex.unlock();
    expectCrowdAnswered();
}

TEST_F(HandlerThreads, WaitingForTheEcLeaveAloneWhatIsNotUnderstood)
{
    ASSERT_TRUE(ecAccessMutex.lock());
    ASSERT_TRUE(client.connectToService());
    crowd();
    const auto isAnsweredWithNothing = [this](const QString &line) {
        return waitUntil([&] { return machine.log.contains(line) && machine.log.contains("send"); });
    };
    client.write("nonsense");
    EXPECT_TRUE(isAnsweredWithNothing("cmd is not a string."));
    machine.log.clear();
    client.write(R"({"cmd":"noSuchThing"})");
    EXPECT_TRUE(isAnsweredWithNothing("Unknown command:  \"noSuchThing\""));
    ecAccessMutex.unlock();
}

TEST_F(HandlerThreads, WaitingForTheEcLeaveALongRequestAlone)
{
    ASSERT_TRUE(ecAccessMutex.lock());
    ASSERT_TRUE(client.connectToService());
    crowd();
    const QByteArray ballast(20000, 'x');
    client.write(R"({"ballast":")" + ballast + R"(","cmd":"getAccessoryType"})");
    EXPECT_TRUE(isAnswered(R"({"ballast":")" + ballast + R"(","cmd":"getAccessoryType","data":"k_vane"})"));
    ecAccessMutex.unlock();
}

TEST_F(HandlerThreads, DoNotShutTheClientOutOfTheEndOfAnMcuUpdate)
{
    ASSERT_TRUE(client.connectToService());
    client.write(R"({"cmd":"requestEnterMcuUpdateMode"})");
    ASSERT_TRUE(isAnswered(R"({"cmd":"requestEnterMcuUpdateMode","data":"successed"})"));
    crowd();
    EXPECT_LE(threads(), mostThreads);
    client.write(R"({"cmd":"requestLeaveMcuUpdateMode"})");
    EXPECT_TRUE(isAnswered(R"({"cmd":"requestLeaveMcuUpdateMode","data":"2.05"})"));
    expectCrowdAnswered();
}

TEST_F(HandlerThreads, DoNotShutTheClientOutOfAnEcUpdate)
{
    ASSERT_TRUE(client.connectToService());
    client.write(R"({"cmd":"requestStartEcUpdate"})");
    ASSERT_TRUE(isAnswered(R"({"cmd":"requestStartEcUpdate","data":"successed"})"));
    crowd();
    client.write(R"({"cmd":"requestEcUpdate","data":"missing.rom"})");
    EXPECT_TRUE(isAnswered(R"({"cmd":"requestEcUpdate","data":"failed"})"));
}

TEST_F(HandlerThreads, LetLeavesThatWaitForAnEnterHoldUpNoOtherRequest)
{
    ASSERT_TRUE(ecAccessMutex.lock());
    ASSERT_TRUE(client.connectToService());
    send(R"({"cmd":"requestEnterMcuUpdateMode"})", 1);
    ASSERT_TRUE(waitUntil([this] { return machine.log.contains("Enter Enter Mcu Update Mode"); }));
    send(R"({"cmd":"requestLeaveMcuUpdateMode"})", 1);
    ASSERT_TRUE(waitUntil([this] { return machine.log.contains("Enter Leave Mcu Update Mode"); }));
    const qsizetype threadsBefore = threads();
    machine.log.clear();
    constexpr int leaves = 200;
    send(R"({"cmd":"requestLeaveMcuUpdateMode"})", leaves);
    EXPECT_LE(threads(), threadsBefore);
    client.write(R"({"cmd":"getAccessoryType"})");
    EXPECT_TRUE(isAnswered(R"({"cmd":"getAccessoryType","data":"k_vane"})"));
    ecAccessMutex.unlock();
    EXPECT_TRUE(isAnswered(R"({"cmd":"requestEnterMcuUpdateMode","data":"successed"})"));
    const QByteArray reply = R"({"cmd":"requestLeaveMcuUpdateMode","data":"2.05"})";
    EXPECT_TRUE(waitUntil([&] { return client.received().count(reply) == leaves + 1; }));
    EXPECT_FALSE(ecAccessMutex.isLocked());
}

// A leave is answered with the version, which comes from the EC. An enter, for example, may hold the EC, and
// only the next leave ends that hold.
TEST_F(HandlerThreads, LetNoLeaveWaitForTheVersionOfTheOneBefore)
{
    ASSERT_TRUE(ecAccessMutex.lock());
    ASSERT_TRUE(client.connectToService());
    for (int leave = 1; leave <= 3; ++leave) {
        client.write(R"({"cmd":"requestLeaveMcuUpdateMode"})");
        EXPECT_TRUE(
            waitUntil([&] { return machine.log.count("W: The MCU was not in update mode.") == leave; }));
    }
    const QByteArray reply = R"({"cmd":"requestLeaveMcuUpdateMode","data":"2.05"})";
    EXPECT_FALSE(client.received().contains(reply));
    ecAccessMutex.unlock();
    EXPECT_TRUE(waitUntil([&] { return client.received().count(reply) == 3; }));
}

// The lane's thread may be done before the server's thread has named what follows it.
TEST_F(HandlerThreads, AnswerEachOfManyLeavesOnce)
{
    ASSERT_TRUE(client.connectToService());
    tarnPipeServer::threadsOf(Lane::LeavesMcuUpdateMode)->setExpiryTimeout(0);
    const QString reply = R"(send{"cmd":"requestLeaveMcuUpdateMode","data":"2.05"})";
    for (int leave = 1; leave <= 2000; ++leave) {
        machine.log.clear();
        client.write(R"({"cmd":"requestLeaveMcuUpdateMode"})");
        ASSERT_TRUE(waitUntil([&] { return machine.log.contains(reply); })) << leave;
    }
    const QByteArray received = R"({"cmd":"requestLeaveMcuUpdateMode","data":"2.05"})";
    EXPECT_TRUE(waitUntil([&] { return client.received().count(received) == 2000; }));
}

// After an EC update the EC stays taken for good, but clients go on polling, twice a second.
TEST_F(HandlerThreads, CostNoMoreThreadsAfterTenMinutesOfPollingThanAfterOne)
{
    ASSERT_TRUE(client.connectToService());
    client.write(R"({"cmd":"requestStartEcUpdate"})");
    ASSERT_TRUE(isAnswered(R"({"cmd":"requestStartEcUpdate","data":"successed"})"));
    constexpr int pollsAMinute = 120;
    constexpr int notYetIdle = 3; // workers that have answered a moment ago
    const auto poll = [this](int times) {
        for (int done = 0; done < times; ++done) {
            machine.log.clear();
            send(R"({"cmd":"getMcuVersion"})", 1);
            send(R"({"cmd":"getTarnBatteryNum"})", 1);
            ASSERT_TRUE(waitUntil(
                [this] { return machine.log.contains(R"(send{"cmd":"getTarnBatteryNum","data":"251"})"); }));
        }
    };
    poll(pollsAMinute);
    const qsizetype threadsAfterAMinute = threads();
    poll(9 * pollsAMinute);
    EXPECT_LE(threads(), threadsAfterAMinute + notYetIdle);
    client.write(R"({"cmd":"getAccessoryType"})");
    EXPECT_TRUE(isAnswered(R"({"cmd":"getAccessoryType","data":"k_vane"})"));
}

TEST(HandlerLanes, AreAllWaitedFor)
{
    for (const Lane lane : {Lane::WaitsForEc, Lane::LeavesMcuUpdateMode, Lane::UpdatesEc, Lane::NeverWaits}) {
        EXPECT_TRUE(tarnPipeServer::waitForHandlers(5000));
        QSemaphore goOn;
        tarnPipeServer::threadsOf(lane)->start([&goOn] { goOn.acquire(); });
        EXPECT_FALSE(tarnPipeServer::waitForHandlers(0)) << static_cast<int>(lane);
        EXPECT_FALSE(tarnPipeServer::waitForHandlers(20)) << static_cast<int>(lane);
        goOn.release();
    }
    EXPECT_TRUE(tarnPipeServer::waitForHandlers(5000));
}

// At the end of the process the lanes are polled, and events are handled in between.
TEST(HandlerLanes, AreLookedAtTogetherForNoLongerThanWanted)
{
    QSemaphore goOn;
    QElapsedTimer timer;
    for (const Lane lane : {Lane::WaitsForEc, Lane::LeavesMcuUpdateMode, Lane::UpdatesEc, Lane::NeverWaits})
        tarnPipeServer::threadsOf(lane)->start([&goOn] { goOn.acquire(); });
    timer.start();
    EXPECT_FALSE(tarnPipeServer::waitForHandlers(300));
    EXPECT_GE(timer.elapsed(), 299);
    EXPECT_LT(timer.elapsed(), tarnTest::allowedMs(600));
    goOn.release(4);
    EXPECT_TRUE(tarnPipeServer::waitForHandlers(5000));
}
