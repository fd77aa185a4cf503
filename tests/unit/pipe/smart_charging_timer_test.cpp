#include "accessory/ec_power_mode_manager.h"
#include "device/ec_access_lock.h"
#include "device/ec_dirver_controller_hal.h"
#include "device/ec_registers.h"
#include "pipe/outbox/send_queue_thread.h"
#include "pipe/tarn_pipe_server.h"
#include "support/pipe_peer.h"
#include "support/queued_messages.h"
#include "support/simulated_machine.h"

#include <QCoreApplication>
#include <QThreadPool>
#include <QTimer>
#include <QTimerEvent>

#include <thread>

using namespace tarnDeviceInfos;
using tarnPipeServer::SendQueueThread;
using tarnPipeServer::TarnPipeServer;
using tarnSimulator::Fault;

namespace {

constexpr int fiveDays = 432000000;
constexpr int almostOver = 600000; // ms; a running countdown is set to this, so that a restart would show

const QStringList countdownStarted {"begin smart changing timer.", "smart changing timer started?  true"};
const QString countdownRuns = "smart changing timer is active already.";
const QString countdownExpired = "After 5 days, reset smart changing to ON.";
const QString switchedOnNotice = R"({"cmd":"getSmartChargingStatus","data":"ON"})";

} // namespace

// The countdown of the pipe server, on the simulated machine with smart charging off.
class SmartChargingTimer : public tarnTest::MachineTest
{
protected:
    SmartChargingTimer()
        : server(TarnPipeServer::instance())
        , timer(server->findChild<QTimer *>())
    {
        EcDirverControllerHal::instance();
        tarnAccessoryManager::EcPowerModeManager::instance();
        SendQueueThread::instance();
        machine.state->eeprom[EEP_SMART_CHARGING] = SMART_CHARGING_OFF;
        machine.log.clear();
    }

    void TearDown() override
    {
        QThreadPool::globalInstance()->waitForDone();
        client.leave();
        EXPECT_TRUE(tarnTest::waitUntil([] { return !SendQueueThread::instance()->isRunning(); }));
        EXPECT_FALSE(ecAccessMutex.isLocked());
    }

    // What the event loop does when the five days are over.
    void expire()
    {
        ASSERT_TRUE(timer->isActive());
        QTimerEvent due(timer->timerId());
        QCoreApplication::sendEvent(timer, &due);
    }

    void finishHandlers() { QThreadPool::globalInstance()->waitForDone(); }

    QString request(const char *command, const char *data)
    {
        return server->dispatch(QString(R"({"cmd":"%1","data":"%2"})").arg(command, data).toUtf8());
    }

    [[nodiscard]] int stored() const { return machine.state->eeprom[EEP_SMART_CHARGING]; }

    TarnPipeServer *server;
    QTimer *timer;
    tarnTest::PipePeer client;
};

TEST_F(SmartChargingTimer, IsOneIdleSingleShotTimerOfTheServer)
{
    ASSERT_EQ(server->findChildren<QTimer *>().size(), 1);
    EXPECT_TRUE(timer->isSingleShot());
    EXPECT_FALSE(timer->isActive());
    EXPECT_EQ(timer->thread(), server->thread());
}

TEST_F(SmartChargingTimer, CountsFiveDays)
{
    Q_EMIT server->startChangingTimer();
    EXPECT_TRUE(timer->isActive());
    EXPECT_EQ(timer->interval(), fiveDays);
    EXPECT_GT(timer->remainingTime(), fiveDays - 60000);
    EXPECT_EQ(machine.log.lines(), countdownStarted);
}

TEST_F(SmartChargingTimer, IsNotPushedBackByAnotherStart)
{
    timer->start(almostOver);
    for (int hour = 0; hour < 3; ++hour)
        Q_EMIT server->startChangingTimer();
    EXPECT_EQ(timer->interval(), almostOver);
    EXPECT_EQ(machine.log.lines(), QStringList({countdownRuns, countdownRuns, countdownRuns}));
}

TEST_F(SmartChargingTimer, IsStopped)
{
    Q_EMIT server->startChangingTimer();
    machine.log.clear();
    Q_EMIT server->stopChangingTimer();
    EXPECT_FALSE(timer->isActive());
    EXPECT_EQ(machine.log.lines(),
        QStringList({"smart changing timer is active, now stop it.", "stop smart changing timer."}));
    machine.log.clear();
    Q_EMIT server->startChangingTimer();
    EXPECT_EQ(timer->interval(), fiveDays); // from the beginning
    EXPECT_EQ(machine.log.lines(), countdownStarted);
}

TEST_F(SmartChargingTimer, CanBeStoppedWhileIdle)
{
    Q_EMIT server->stopChangingTimer();
    EXPECT_FALSE(timer->isActive());
    EXPECT_EQ(machine.log.lines(),
        QStringList({"smart changing timer is not active.", "stop smart changing timer."}));
}

// Handlers run on other threads; the timer is started and stopped on its own thread.
TEST_F(SmartChargingTimer, ObeysSignalsOfOtherThreads)
{
    std::thread([this] { Q_EMIT server->startChangingTimer(); }).join();
    EXPECT_FALSE(timer->isActive());
    EXPECT_TRUE(tarnTest::waitUntil([this] { return timer->isActive(); }));
    std::thread([this] { Q_EMIT server->stopChangingTimer(); }).join();
    EXPECT_TRUE(timer->isActive());
    EXPECT_TRUE(tarnTest::waitUntil([this] { return !timer->isActive(); }));
}

TEST_F(SmartChargingTimer, RunsFromTheFirstTimeThatSmartChargingWasOff)
{
    request("setSmartChargingStatus", "OFF");
    ASSERT_TRUE(timer->isActive());
    timer->start(almostOver);
    request("getSmartChargingStatus", "");
    request("setSmartChargingStatus", "OFF");
    EXPECT_EQ(timer->interval(), almostOver);
    EXPECT_EQ(machine.log.count(countdownRuns), 2);
}

TEST_F(SmartChargingTimer, StartsAgainWhenAClientFindsSmartChargingOff)
{
    request("getSmartChargingStatus", "");
    EXPECT_TRUE(timer->isActive());
    request("setSmartChargingStatus", "ON");
    EXPECT_FALSE(timer->isActive());
    request("getSmartChargingStatus", "");
    EXPECT_FALSE(timer->isActive());
}

TEST_F(SmartChargingTimer, SwitchesSmartChargingOnAndTellsTheClient)
{
    ASSERT_TRUE(client.connectToService());
    Q_EMIT server->startChangingTimer();
    machine.log.clear();
    expire();
    EXPECT_EQ(client.take(switchedOnNotice.toUtf8()), switchedOnNotice.toUtf8());
    EXPECT_EQ(stored(), SMART_CHARGING_ON);
    EXPECT_TRUE(tarnAccessoryManager::EcPowerModeManager::instance()->isSmartChargingOn());
    EXPECT_FALSE(timer->isActive()); // once only
    const QStringList lines = machine.log.lines();
    EXPECT_TRUE(lines.contains(countdownExpired));
    EXPECT_LT(lines.indexOf(countdownExpired), lines.indexOf("Begin to set smart charging ON."));
    EXPECT_EQ(lines.count("Set smart charging status:  true  successed."), 1);
}

TEST_F(SmartChargingTimer, ItsNoticeWaitsForTheNextClient)
{
    Q_EMIT server->startChangingTimer();
    expire();
    finishHandlers();
    EXPECT_EQ(tarnTest::queuedMessages(), QStringList({switchedOnNotice}));
    ASSERT_TRUE(client.connectToService());
    EXPECT_EQ(client.take(switchedOnNotice.toUtf8()), switchedOnNotice.toUtf8());
}

class SmartChargingTimerFailures : public SmartChargingTimer, public ::testing::WithParamInterface<Fault>
{ };

TEST_P(SmartChargingTimerFailures, NothingIsSentAndNothingRetried)
{
    machine.faults().switchOn(GetParam(), 2);
    Q_EMIT server->startChangingTimer();
    machine.log.clear();
    expire();
    finishHandlers();
    QCoreApplication::processEvents();
    EXPECT_TRUE(tarnTest::queuedMessages().isEmpty());
    EXPECT_FALSE(timer->isActive());
    EXPECT_EQ(stored(), SMART_CHARGING_OFF);
    EXPECT_EQ(machine.log.lines().first(), countdownExpired);
    EXPECT_EQ(machine.log.lines().last(), "Set smart charging status:  true  failed.");

    SendQueueThread::instance()->enqueueMessage("next"); // the first message that the client gets
    ASSERT_TRUE(client.connectToService());
    EXPECT_EQ(client.take("next"), "next");
}

INSTANTIATE_TEST_SUITE_P(Mailbox, SmartChargingTimerFailures,
    ::testing::Values(Fault::EepromBusy, Fault::EepromError, Fault::IbfStuck));

TEST_F(SmartChargingTimer, AFailedExpiryCanBeStartedAfresh)
{
    machine.faults().switchOn(Fault::EepromBusy);
    Q_EMIT server->startChangingTimer();
    expire();
    finishHandlers();
    machine.faults().clear();
    Q_EMIT server->startChangingTimer();
    expire();
    finishHandlers();
    EXPECT_EQ(tarnTest::queuedMessages(), QStringList({switchedOnNotice}));
}

TEST_F(SmartChargingTimer, ItsServerAnswersWhileTheECIsHeld)
{
    ASSERT_TRUE(client.connectToService());
    ASSERT_TRUE(ecAccessMutex.lock()); // as by a prompt that waits for the user
    Q_EMIT server->startChangingTimer();
    expire();
    EXPECT_EQ(QThreadPool::globalInstance()->activeThreadCount(), 1); // waits for the EC

    // The server still reads and runs requests.
    client.write(R"({"cmd":"nobody knows this"})");
    EXPECT_TRUE(tarnTest::waitUntil(
        [this] { return machine.log.contains("Unknown command:  \"nobody knows this\""); }));
    EXPECT_FALSE(machine.log.contains("Begin to set smart charging ON."));
    EXPECT_EQ(stored(), SMART_CHARGING_OFF);
    EXPECT_TRUE(client.received().isEmpty());

    ecAccessMutex.unlock();
    EXPECT_EQ(client.take(switchedOnNotice.toUtf8()), switchedOnNotice.toUtf8());
    EXPECT_EQ(stored(), SMART_CHARGING_ON);
}

TEST_F(SmartChargingTimer, AnExpiryThatWaitsWhenTheProcessEndsSendsNothing)
{
    ASSERT_TRUE(ecAccessMutex.lock());
    Q_EMIT server->startChangingTimer();
    expire();
    ecAccessMutex.releaseWaiters();
    finishHandlers();
    EXPECT_TRUE(tarnTest::queuedMessages().isEmpty());
    EXPECT_TRUE(machine.traffic().isEmpty());
    ecAccessMutex.unlock();
}
