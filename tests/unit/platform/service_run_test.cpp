#include "platform/service_run.h"

#include "platform/service_manager.h"
#include "support/time_bound.h"

#include <QCoreApplication>
#include <QElapsedTimer>
#include <QStringList>

#include <gtest/gtest.h>

#include <thread>

using namespace tarnPlatform;

namespace {

constexpr quint32 everyControl = AcceptsStop | AcceptsPauseAndContinue | AcceptsShutdown;

// A service under a manager that notes each report: state, checkpoint, accepted controls.
class ServiceUnderManager : public ::testing::Test, public ServiceHost
{
public:
    void startService() override
    {
        events << QStringLiteral("start");
        onStart();
    }
    void stopService() override
    {
        events << QStringLiteral("stop");
        QCoreApplication::quit();
    }
    void pauseService() override { events << QStringLiteral("pause"); }
    void resumeService() override { events << QStringLiteral("resume"); }
    void processServiceCommand(int code) override { events << QStringLiteral("command %1").arg(code); }
    int runEventLoop() override
    {
        onLoop();
        return QCoreApplication::exec();
    }

protected:
    // The controls come on a thread of the manager, one right after the other.
    void send(const std::vector<quint32> &codes)
    {
        std::thread([this, &codes] {
            for (const quint32 code : codes)
                run->control(code);
        }).join();
    }
    int runThrough(quint32 accepted, const std::vector<quint32> &codes)
    {
        run.emplace(*this, accepted, [this](const ServiceStatus &status) { note(status); });
        onLoop = [this, codes] {
            send(codes);
        };
        const int exitCode = exec();
        run->reportStopped(exitCode);
        return exitCode;
    }
    int exec()
    {
        run->start();
        return run->serve();
    }
    // How long the manager and its users are to wait for the next report.
    static std::chrono::milliseconds hintOf(ServiceState state)
    {
        using namespace std::chrono_literals;
        switch (state) {
        case ServiceState::StartPending:
            return 10s;
        case ServiceState::StopPending:
        case ServiceState::PausePending:
        case ServiceState::ContinuePending:
            return 3s;
        default:
            return 0s;
        }
    }
    void note(const ServiceStatus &status)
    {
        static const char *const names[] = {
            "", "Stopped", "Starting", "Stopping", "Running", "Continuing", "Pausing", "Paused"};
        events << QStringLiteral("%1 %2 %3")
                      .arg(QLatin1String(names[static_cast<int>(status.state)]))
                      .arg(status.checkPoint)
                      .arg(status.acceptedControls);
        EXPECT_EQ(status.waitHint, hintOf(status.state));
        last = status;
    }

    static constexpr int eventsOfStart = 3; // "Starting", "start" and "Running"
    QStringList events;
    ServiceStatus last;
    std::function<void()> onStart = [] {
    };
    std::function<void()> onLoop = [] {
    };
    std::optional<ServiceRun> run;
};

} // namespace

TEST_F(ServiceUnderManager, StartsAndStops)
{
    EXPECT_EQ(runThrough(AcceptsStop | AcceptsPauseAndContinue, {ControlStop}), 0);
    EXPECT_EQ(events,
        QStringList({"Starting 1 0", "start", "Running 0 3", "Stopping 1 0", "stop", "Stopping 2 0",
            "Stopping 3 0", "Stopped 0 0"}));
    EXPECT_EQ(last.exitCode, 0);
}

TEST_F(ServiceUnderManager, PausesAndContinues)
{
    run.emplace(*this, everyControl, [this](const ServiceStatus &status) { note(status); });
    onLoop = [this] {
        send({ControlPause});
        QCoreApplication::processEvents();
        send({ControlContinue});
        QCoreApplication::processEvents();
        send({ControlStop});
    };
    EXPECT_EQ(exec(), 0);
    EXPECT_EQ(events.mid(eventsOfStart, 6),
        QStringList({"Pausing 1 7", "pause", "Paused 0 7", "Continuing 1 7", "resume", "Running 0 7"}));
}

TEST_F(ServiceUnderManager, KeepsTheOrderOfWhatItIsAsked)
{
    runThrough(everyControl, {ControlPause, 128, ControlContinue, ControlPause, 133, 255, ControlStop});
    const QStringList words {"start", "stop", "pause", "resume", "command 0", "command 5", "command 127"};
    QStringList asked;
    for (const QString &event : std::as_const(events)) {
        if (words.contains(event))
            asked << event;
    }
    EXPECT_EQ(asked,
        QStringList({"start", "pause", "command 0", "resume", "pause", "command 5", "command 127", "stop"}));
    // A pause that completes after the request to stop is not reported.
    EXPECT_FALSE(events.contains("Paused 0 7"));
    EXPECT_FALSE(events.mid(eventsOfStart).contains("Running 0 7"));
}

TEST_F(ServiceUnderManager, EndsInTheStateThatWasAskedForLast)
{
    run.emplace(*this, everyControl, [this](const ServiceStatus &status) { note(status); });
    ServiceState paused = ServiceState::Stopped;
    ServiceState resumed = ServiceState::Stopped;
    onLoop = [&] {
        send({ControlPause, ControlContinue, ControlPause});
        QCoreApplication::processEvents();
        paused = last.state;
        send({ControlContinue, ControlPause, ControlContinue});
        QCoreApplication::processEvents();
        resumed = last.state;
        send({ControlStop});
    };
    EXPECT_EQ(exec(), 0);
    EXPECT_EQ(paused, ServiceState::Paused);
    EXPECT_EQ(resumed, ServiceState::Running);
}

TEST_F(ServiceUnderManager, AnswersEveryControlWithItsStatus)
{
    run.emplace(*this, everyControl, [this](const ServiceStatus &status) { note(status); });
    onStart = [this] {
        send({ControlInterrogate, ControlStop, ControlPause, 128});
    };
    onLoop = [this] {
        QCoreApplication::processEvents();
        send({ControlInterrogate, 6, 127, 256, 130});
        QCoreApplication::processEvents();
        send({ControlShutdown, ControlInterrogate, ControlStop, ControlContinue, 131});
    };
    EXPECT_EQ(exec(), 0);
    // Controls are not passed on to a service that starts or stops.
    EXPECT_EQ(events,
        QStringList({"Starting 1 0", "start", "Starting 1 0", "Starting 1 0", "Starting 1 0", "Starting 1 0",
            "Running 0 7", "Running 0 7", "Running 0 7", "Running 0 7", "Running 0 7", "Running 0 7",
            "command 2", "Stopping 1 0", "Stopping 1 0", "Stopping 1 0", "Stopping 1 0", "Stopping 1 0",
            "stop", "Stopping 2 0", "Stopping 3 0"}));
}

TEST_F(ServiceUnderManager, IgnoresControlsThatItDoesNotAccept)
{
    run.emplace(*this, AcceptsNothing, [this](const ServiceStatus &status) { note(status); });
    onLoop = [this] {
        send({ControlStop, ControlPause, ControlContinue, ControlShutdown});
        QCoreApplication::processEvents();
        EXPECT_EQ(events.mid(eventsOfStart), QStringList(4, "Running 0 0"));
        QMetaObject::invokeMethod(
            qApp, [] { QCoreApplication::exit(9); }, Qt::QueuedConnection);
    };
    EXPECT_EQ(exec(), 9);
    EXPECT_EQ(events.last(), "Stopping 1 0");
    run->reportStopped(9);
    EXPECT_EQ(last.exitCode, 9);
}

TEST_F(ServiceUnderManager, StopsOnlyOnce)
{
    runThrough(AcceptsStop, {ControlStop});
    const qsizetype told = events.size();
    run->reportStopped(4);
    EXPECT_EQ(events.size(), told);
    EXPECT_EQ(last.exitCode, 0);
    EXPECT_TRUE(run->waitUntilStopped());
}

TEST_F(ServiceUnderManager, IsWaitedForUntilItHasStopped)
{
    run.emplace(*this, AcceptsStop, [this](const ServiceStatus &status) { note(status); });
    bool stopped = false;
    std::thread watcher([&] { stopped = run->waitUntilStopped(); });
    onLoop = [this] {
        send({ControlStop});
    };
    EXPECT_EQ(exec(), 0);
    run->reportStopped(0);
    watcher.join();
    EXPECT_TRUE(stopped);
}

TEST_F(ServiceUnderManager, IsNotWaitedForWhenItsStopIsHeldUp)
{
    run.emplace(*this, AcceptsStop, [this](const ServiceStatus &status) { note(status); });
    QElapsedTimer timer;
    onLoop = [this, &timer] {
        timer.start();
        send({ControlStop});
    };
    EXPECT_EQ(exec(), 0);
    EXPECT_FALSE(run->waitUntilStopped());
    EXPECT_GE(timer.elapsed(), 2500);
    EXPECT_LT(timer.elapsed(), tarnTest::allowedMs(3000));
}
