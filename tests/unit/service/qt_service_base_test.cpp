#include "service/qt_service.h"

#include "platform/process_end.h"
#include "support/log_capture.h"
#include "support/seen_texts.h"
#include "support/virtual_clock.h"

#include <QTimer>

#include <gtest/gtest.h>

#include <csignal>
#include <functional>

namespace {

// Notes what the host asks of it.
class NotingService : public QtService<QCoreApplication>
{
public:
    NotingService(
        std::vector<std::string> words, const QString &serviceTitle = QStringLiteral("Noting Service"))
        : NotingService(std::make_shared<std::vector<std::string>>(std::move(words)), serviceTitle)
    { }

    QStringList calls;
    std::function<void()> onStart = [] {
    };
    int loopResult = 0;
    bool realLoop = false;

protected:
    void start() override
    {
        calls << QStringLiteral("start");
        onStart();
    }
    void stop() override { calls << QStringLiteral("stop"); }
    int executeApplication() override
    {
        calls << QStringLiteral("loop");
        return realLoop ? QtService<QCoreApplication>::executeApplication() : loopResult;
    }

private:
    using Words = std::shared_ptr<std::vector<std::string>>;
    NotingService(const Words &words, const QString &serviceTitle)
        : QtService(static_cast<int>(words->size()), pointersTo(*words).data(), serviceTitle)
        , texts(words)
    { }
    static std::vector<char *> pointersTo(std::vector<std::string> &words)
    {
        std::vector<char *> pointers;
        for (std::string &word : words)
            pointers.push_back(word.data());
        return pointers;
    }

    Words texts;
};

struct Output
{
    int exitCode = 0;
    QString out;
    QString err;
};

Output run(const std::vector<std::string> &words)
{
    NotingService service(words);
    testing::internal::CaptureStdout();
    testing::internal::CaptureStderr();
    Output output;
    output.exitCode = service.exec();
    std::fflush(nullptr);
    output.out = QString::fromStdString(testing::internal::GetCapturedStdout());
    output.err = QString::fromStdString(testing::internal::GetCapturedStderr());
    tarnTest::noteSeenRun(words, output.exitCode, output.out, output.err);
    EXPECT_TRUE(service.calls.isEmpty());
    return output;
}

} // namespace

TEST(ServiceHost, CutsLongNames)
{
    const tarnTest::LogCapture log;
    const NotingService service({"tarn"}, QString(300, QLatin1Char('n')));
    EXPECT_EQ(service.serviceName(), QString(255, QLatin1Char('n')));
    EXPECT_EQ(log.lines(), QStringList({"W: QtService: 'name' is longer than 255 characters."}));
}

TEST(ServiceHost, ReplacesBackslashesInNames)
{
    const tarnTest::LogCapture log;
    const NotingService service({"tarn"}, QStringLiteral("a\\b"));
    EXPECT_EQ(service.serviceName(), QString::fromLatin1("a\0b", 3));
    EXPECT_EQ(log.lines(), QStringList({"W: QtService: 'name' contains backslashes '\\'."}));
}

TEST(ServiceHost, PrintsItsUsage)
{
    for (const char *option : {"-h", "-help"}) {
        const Output output = run({"/some/where/tarn", option});
        EXPECT_EQ(output.exitCode, 0);
        EXPECT_EQ(output.out,
            "\n/some/where/tarn -[i|u|e|t|p|r|c|v|h]\n"
            "\t-i(nstall) [account] [password]\t: Install the service, optionally using given account and "
            "password\n"
            "\t-u(ninstall)\t: Uninstall the service.\n"
            "\t-e(xec)\t\t: Run as a regular application. Useful for debugging.\n"
            "\t-t(erminate)\t: Stop the service.\n"
            "\t-p(ause)\t: Pause the service.\n"
            "\t-r(esume)\t: Resume a paused service.\n"
            "\t-c(ommand) num\t: Send command code num to the service.\n"
            "\t-v(ersion)\t: Print version and status information.\n"
            "\t-h(elp)   \t: Show this help\n"
            "\tNo arguments\t: Start the service.\n");
    }
}

TEST(ServiceHost, SaysThatItIsNotInstalledWhereThereIsNoManager)
{
    const Output version = run({"tarn", "-v"});
    EXPECT_EQ(version.exitCode, 0);
    EXPECT_EQ(version.out,
        "The service\n\tNoting Service\n\t" + QCoreApplication::applicationFilePath()
            + "\n\nis not installed and not running\n\n");
    const Output install = run({"tarn", "-install", "account", "password"});
    EXPECT_EQ(install.exitCode, -1);
    EXPECT_EQ(install.err, "The service Noting Service could not be installed\n");
    const Output uninstall = run({"tarn", "-u"});
    EXPECT_EQ(uninstall.exitCode, 0);
    EXPECT_EQ(uninstall.err, "The service Noting Service is not installed\n");
}

TEST(ServiceHost, ControlsNothingWhereThereIsNoManager)
{
    const tarnTest::LogCapture log;
    EXPECT_EQ(run({"tarn", "-t"}).exitCode, 0);
    EXPECT_EQ(log.lines().filter("The service could not be stopped.").size(), 1);
    EXPECT_EQ(run({"tarn", "-p"}).exitCode, 0);
    EXPECT_EQ(run({"tarn", "-resume"}).exitCode, 0);
    EXPECT_EQ(run({"tarn", "-c", "5"}).exitCode, 0);
    EXPECT_EQ(run({"tarn", "-c", "200"}).exitCode, 0);
    EXPECT_EQ(run({"tarn", "-command"}).exitCode, 0);
}

TEST(ServiceHost, AnythingElseNeedsAManager)
{
    for (const std::vector<std::string> &words :
        {std::vector<std::string> {"tarn"}, {"tarn", "-INSTALL"}, {"tarn", "-execute"}, {"tarn", ""}}) {
        const Output output = run(words);
        EXPECT_EQ(output.exitCode, -4);
        EXPECT_EQ(output.err, "The service Noting Service could not start\n");
    }
}

TEST(ServiceHost, WarnsWhenTheApplicationCannotRun)
{
    const tarnTest::LogCapture log;
    NotingService service({"tarn", "-exec"});
    service.loopResult = -1;
    EXPECT_EQ(service.exec(), -1);
    EXPECT_EQ(log.lines().filter("The service could not be executed.").size(), 1);
}

class ServiceHostSignal : public ::testing::TestWithParam<int>
{ };

INSTANTIATE_TEST_SUITE_P(Stop, ServiceHostSignal, ::testing::Values(SIGTERM, SIGINT, SIGHUP));

TEST_P(ServiceHostSignal, StopsOnceAndLeavesWithZero)
{
    NotingService service({"tarn", "-exec"});
    service.realLoop = true;
    service.onStart = [] {
        std::raise(GetParam());
        std::raise(GetParam());
        QTimer::singleShot(0, [] { std::raise(GetParam()); });
    };
    EXPECT_EQ(service.exec(), 0);
    EXPECT_EQ(service.calls, QStringList({"start", "loop", "stop"}));
}

TEST_P(ServiceHostSignal, IsObeyedInTheLoopToo)
{
    NotingService service({"tarn", "-exec"});
    service.realLoop = true;
    service.onStart = [] {
        QTimer::singleShot(0, [] { std::raise(GetParam()); });
        QTimer::singleShot(5000, [] { QCoreApplication::exit(9); });
    };
    EXPECT_EQ(service.exec(), 0);
    EXPECT_EQ(service.calls, QStringList({"start", "loop", "stop"}));
}

TEST(ServiceHost, ObeysARequestThatCameBeforeAnybodyListened)
{
    tarnPlatform::StopRequests::ofProcess();
    std::raise(SIGTERM);
    QCoreApplication::processEvents();
    NotingService service({"tarn", "-exec"});
    service.realLoop = true;
    EXPECT_EQ(service.exec(), 0);
    EXPECT_EQ(service.calls, QStringList({"start", "loop", "stop"}));
}

TEST(ServiceHost, KnowsItsSettings)
{
    NotingService service({"tarn"});
    EXPECT_EQ(service.startupType(), QtServiceBase::AutoStartup);
    EXPECT_EQ(service.serviceFlags(), QtServiceBase::Default);
    service.setStartupType(QtServiceBase::ManualStartup);
    service.setServiceDescription("what it is for");
    service.setServiceFlags(QtServiceBase::CanBeSuspended | QtServiceBase::NeedsStopOnShutdown);
    EXPECT_EQ(service.startupType(), 1);
    EXPECT_EQ(service.serviceDescription(), "what it is for");
    EXPECT_EQ(service.serviceFlags(), 0x05);
}
