#include "service/tarn_service.h"

#include "device/ec_access_lock.h"
#include "device/ec_dirver_controller_hal.h"
#include "device/monitor/ec_dirver_reader.h"
#include "graphics/graphics_accessory_manager.h"
#include "pipe/outbox/send_queue_thread.h"
#include "pipe/tarn_pipe_server.h"
#include "platform/process_end.h"
#include "service/service_end.h"
#include "support/pipe_peer.h"
#include "support/queued_messages.h"
#include "support/seen_texts.h"
#include "support/simulated_machine.h"
#include "support/time_bound.h"
#include "unit/service/scripted_service_manager.h"

#include <QElapsedTimer>
#include <QEventLoop>
#include <QTimer>
#include <QtConcurrent>

using tarnDeviceInfos::EcDirverReader;
using tarnTest::waitUntil;

namespace {

// Makes the operations that the host calls callable here.
class DirectService : public TarnService
{
public:
    DirectService()
        : TarnService(1, words)
    { }
    using TarnService::pause;
    using TarnService::resume;
    using TarnService::start;
    using TarnService::stop;

private:
    static inline char word[] = "TarnService";
    static inline char *words[] = {word, nullptr};
};

// A handler that does not return even when the process ends.
void holdUp()
{
    for (;;)
        QThread::msleep(20);
}

// Counts how often deleteLater() is called for an object.
class GoWatch : public QObject
{
public:
    explicit GoWatch(QObject *object) { object->installEventFilter(this); }
    int asked = 0;

    bool eventFilter(QObject *, QEvent *event) override
    {
        asked += event->type() == QEvent::DeferredDelete ? 1 : 0;
        return false;
    }
};

} // namespace

class ServiceObject : public tarnTest::MachineTest
{ };

TEST_F(ServiceObject, DescribesItself)
{
    const DirectService service;
    EXPECT_EQ(machine.log.lines(), QStringList({"0"}));
    EXPECT_EQ(service.serviceName(), "Tarn Service");
    EXPECT_EQ(service.serviceDescription(), "Tarn Service in Windows");
    tarnTest::noteSeen("manager", service.serviceName() + '|' + service.serviceDescription());
    EXPECT_EQ(service.serviceFlags(), QtServiceBase::CanBeSuspended);
    EXPECT_EQ(static_cast<const QtServiceBase &>(service).startupType(), QtServiceBase::AutoStartup);
}

TEST_F(ServiceObject, CreatesItsObjectsInOrder)
{
    DirectService service;
    machine.log.clear();
    service.start();
    const QStringList lines = machine.log.lines();
    EXPECT_TRUE(lines.at(0).startsWith("Main Thread:  QThread("));
    EXPECT_EQ(lines.at(1), "TarnService::start");
    EXPECT_EQ(lines.at(2), "dirverControllerHal object is create!");
    EXPECT_EQ(lines.at(4), "Library loaded");
    EXPECT_TRUE(lines.at(5).startsWith("TarnPipeServer ThreadID(): "));
    EXPECT_EQ(lines.at(6), "EcDirverReader object is Created!");
    EXPECT_EQ(lines.at(7), "GraphicsAccessoryManager object is created.");
    EXPECT_TRUE(EcDirverReader::instance()->isRunning());
    EXPECT_EQ(endProcess(0), 0);
}

TEST_F(ServiceObject, DeliversAnEmittedGraphicsSignal)
{
    DirectService service;
    service.start();
    machine.log.clear();
    {
        const tarnDeviceInfos::EcAccess access; // the manager's callers hold it
        Q_EMIT EcDirverReader::instance()->graphicsConnectSignal();
    }
    EXPECT_TRUE(machine.log.contains(
        "GraphicsActive_log: Received graphics connected signal, begin active process."));
    EXPECT_EQ(endProcess(0), 0);
}

TEST_F(ServiceObject, PauseAndResumeChangeNothingButTheLog)
{
    DirectService service;
    machine.log.clear();
    service.pause();
    service.resume();
    EXPECT_EQ(machine.log.lines(), QStringList({"TarnService::pause", "TarnService::resume"}));
}

TEST_F(ServiceObject, AStopBeforeTheStartOnlyLogs)
{
    DirectService service;
    machine.log.clear();
    service.stop();
    EXPECT_EQ(machine.log.lines(), QStringList({"TarnService::stop"}));
    EXPECT_EQ(endProcess(3), 3);
}

TEST_F(ServiceObject, AStopEndsTheMonitorAndTheProcessLetsGo)
{
    DirectService service;
    service.start();
    ASSERT_TRUE(waitUntil([] { return !tarnTest::queuedMessages().isEmpty(); }));
    machine.log.clear();
    service.stop();
    EXPECT_EQ(machine.log.ownLines(), QStringList({"TarnService::stop", "service is Finish!"}));
    QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
    EXPECT_EQ(endProcess(0), 0);
    EXPECT_EQ(machine.log.lines().last(), "EcDirverReader object is kill!");
}

TEST_F(ServiceObject, AStopAsksOnlyTheMonitorToGoAndOnce)
{
    DirectService service;
    service.start();
    tarnTest::PipePeer client;
    ASSERT_TRUE(client.connectToService());
    ASSERT_TRUE(waitUntil([this] { return machine.log.contains("server send is running!"); }));
    auto *monitor = EcDirverReader::instance();
    auto *sender = tarnPipeServer::SendQueueThread::instance();
    GoWatch ofMonitor(monitor);
    GoWatch ofDriver(tarnDeviceInfos::EcDirverControllerHal::instance());
    GoWatch ofServer(tarnPipeServer::TarnPipeServer::instance());
    GoWatch ofSender(sender);
    GoWatch ofGraphics(tarnAccessoryManager::GraphicsAccessoryManager::instance());

    service.stop();
    QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
    EXPECT_EQ(ofMonitor.asked, 1);
    EXPECT_EQ(ofDriver.asked + ofServer.asked + ofSender.asked + ofGraphics.asked, 0);
    // Its loop ends, and the client is still served.
    EXPECT_TRUE(waitUntil([monitor] { return monitor->isFinished(); }));
    EXPECT_TRUE(sender->isRunning());
    const QByteArray reply = R"({"cmd":"getAccessoryType","data":"disconnected","last":true})";
    client.write(R"({"cmd":"getAccessoryType","last":true})");
    EXPECT_TRUE(waitUntil([&] { return client.received().endsWith(reply); }));
    EXPECT_EQ(endProcess(0), 0);
}

// Nothing of the monitor's own runs an event loop, but what it calls may.
TEST_F(ServiceObject, AStopEndsAnEventLoopOnTheMonitorsThread)
{
    constexpr int notEnded = 1;
    std::atomic<bool> entered {false};
    std::atomic<int> result {-2};
    machine.clock.at(std::chrono::milliseconds(1000), [&] {
        QEventLoop loop;
        QTimer::singleShot(0, &loop, [&entered] { entered = true; });
        QTimer::singleShot(5000, &loop, [&loop] { loop.exit(notEnded); });
        result = loop.exec();
    });
    DirectService service;
    service.start();
    ASSERT_TRUE(waitUntil([&entered] { return entered.load(); }));
    service.stop();
    EXPECT_TRUE(waitUntil([&result] { return result != -2; }));
    EXPECT_EQ(result, 0);
    EXPECT_EQ(endProcess(0), 0);
}

TEST_F(ServiceObject, LetsGoOfAClientInTheMiddleOfAMessage)
{
    DirectService service;
    service.start();
    tarnTest::PipePeer client;
    ASSERT_TRUE(client.connectToService());
    ASSERT_TRUE(waitUntil([this] { return machine.log.contains("server send is running!"); }));
    service.stop();
    EXPECT_EQ(endProcess(0), 0);
}

// A step that must not be left unfinished gets a little more time than others, but not for ever.
TEST_F(ServiceObject, WaitsForAnUnfinishedStep)
{
    EXPECT_EXIT(
        {
            const auto handler = QtConcurrent::run([] {
                auto step = std::make_unique<tarnPlatform::UnfinishedStep>();
                QThread::msleep(1800);
                std::fputs("the step is done\n", stderr);
                step.reset();
                holdUp();
            });
            while (!tarnPlatform::UnfinishedStep::any())
                QThread::msleep(1);
            std::exit(endProcess(5));
        },
        ::testing::ExitedWithCode(5), "the step is done");
}

TEST_F(ServiceObject, WaitsForNeitherAHandlerThatIsHeldUpNorAnUnfinishedStepForEver)
{
    QElapsedTimer timer;
    timer.start();
    EXPECT_EXIT(
        {
            const tarnPlatform::UnfinishedStep step;
            const auto handler = QtConcurrent::run(holdUp);
            std::exit(endProcess(5));
        },
        ::testing::ExitedWithCode(5), "");
    EXPECT_LT(timer.elapsed(), tarnTest::allowedMs(3000));
}

TEST_F(ServiceObject, TellsTheManagerWhenItHasLetGo)
{
    DirectService service;
    service.start();
    // Qt's started() reads a flag of the object while deleteLater() sets another one in the same word, which
    // ThreadSanitizer reports; so the monitor is let run first.
    ASSERT_TRUE(waitUntil([] { return !tarnTest::queuedMessages().isEmpty(); }));
    service.stop();
    tarnTest::ScriptedServiceManager manager;
    QString lastWord;
    manager.onStopped = [&] {
        lastWord = machine.log.lines().last();
    };
    EXPECT_EQ(endProcess(6, manager), 6);
    EXPECT_EQ(manager.calls, QStringList({"stopped|6"}));
    EXPECT_EQ(lastWord, "EcDirverReader object is kill!");
}

// Threads that are held up end with the process: at once, with the exit code, without an abort.
TEST_F(ServiceObject, TellsTheManagerEvenWhenItIsHeldUp)
{
    EXPECT_EXIT(
        {
            const auto handler = QtConcurrent::run(holdUp);
            tarnTest::ScriptedServiceManager manager;
            manager.onStopped = [] {
                std::fputs("the manager knows\n", stderr);
            };
            std::exit(endProcess(5, manager));
        },
        ::testing::ExitedWithCode(5), "the manager knows");
}

TEST(ProcessEnd, CreatesNothingForAControlAction)
{
    const tarnTest::LogCapture log;
    EXPECT_EQ(endProcess(-4), -4);
    EXPECT_TRUE(log.lines().isEmpty());
}
