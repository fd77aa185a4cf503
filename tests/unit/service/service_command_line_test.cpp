#include "service/qt_service.h"

#include "support/log_capture.h"
#include "support/seen_texts.h"
#include "unit/service/scripted_service_manager.h"

#include <gtest/gtest.h>

using tarnTest::ScriptedServiceManager;

namespace {

// An application object with arguments of the test's choice. In the system's narrow arguments the characters
// are missing that the code page does not have.
class ToldApplication : public QCoreApplication
{
public:
    using QCoreApplication::QCoreApplication;
    static QStringList arguments() { return words; }
    static inline QStringList words;
};

// One process, started with some arguments on a system with a service manager.
class CommandLine : public ::testing::Test
{
protected:
    class Host : public QtService<ToldApplication>
    {
    public:
        Host(int argc, char **argv, ScriptedServiceManager &scripted)
            : QtService(argc, argv, QString::fromUtf8("Bl\u00e4ser"), scripted)
        { }
        QStringList calls;
        int loopResult = 0;

    protected:
        void start() override { calls << QStringLiteral("start"); }
        void stop() override { calls << QStringLiteral("stop"); }
        void pause() override { calls << QStringLiteral("pause"); }
        void resume() override { calls << QStringLiteral("resume"); }
        void processCommand(int code) override { calls << QStringLiteral("command %1").arg(code); }
        int executeApplication() override
        {
            calls << QStringLiteral("loop");
            return loopResult;
        }
    };

    // Exit code, output and error output, in Latin-1 like all output of the host.
    using Outcome = std::tuple<int, std::string, std::string>;

    Outcome run(std::vector<std::string> words, const QStringList &wideWords = {})
    {
        words.insert(words.begin(), "tarn");
        ToldApplication::words = wideWords;
        if (wideWords.isEmpty()) {
            for (const std::string &word : words)
                ToldApplication::words << QString::fromStdString(word);
        }
        std::vector<char *> pointers;
        for (std::string &word : words)
            pointers.push_back(word.data());
        Host host(static_cast<int>(pointers.size()), pointers.data(), manager);
        host.setServiceDescription(QStringLiteral("what it is for"));
        host.setStartupType(startup);
        host.setServiceFlags(flags);
        host.loopResult = loopResult;
        manager.calls.clear();
        testing::internal::CaptureStdout();
        testing::internal::CaptureStderr();
        const int exitCode = host.exec();
        std::fflush(nullptr);
        const std::string out = testing::internal::GetCapturedStdout();
        const std::string err = testing::internal::GetCapturedStderr();
        tarnTest::noteSeenRun(
            words, exitCode, QString::fromLatin1(out.c_str()), QString::fromLatin1(err.c_str()));
        hostCalls = host.calls;
        return {exitCode, out, err};
    }

    ScriptedServiceManager manager;
    QtServiceBase::StartupType startup = QtServiceBase::AutoStartup;
    QtServiceBase::ServiceFlags flags = QtServiceBase::CanBeSuspended;
    int loopResult = 0;
    QStringList hostCalls;
};

const QString name = QString::fromUtf8("Bl\u00e4ser");

} // namespace

TEST_F(CommandLine, Installs)
{
    for (const char *option : {"-i", "-install"}) {
        EXPECT_EQ(run({option}),
            Outcome(0, "The service Bl\xe4ser has been installed under: C:\\where it is\\tarn.exe\n", ""));
        EXPECT_EQ(manager.calls, QStringList({"install|" + name + "|what it is for|||automatic"}));
    }
    EXPECT_TRUE(hostCalls.isEmpty());
}

TEST_F(CommandLine, InstallsUnderAnAccountToBeStartedOnDemand)
{
    startup = QtServiceBase::ManualStartup;
    run({"-i", "somebody", "secret", "more"});
    EXPECT_EQ(manager.calls, QStringList({"install|" + name + "|what it is for|somebody|secret|on demand"}));
    run({"-install", "somebody"});
    EXPECT_EQ(manager.calls, QStringList({"install|" + name + "|what it is for|somebody||on demand"}));
}

TEST_F(CommandLine, InstallsUnderAnAccountThatTheCodePageLacks)
{
    const QString account = QString::fromUtf8("\u0141ukasz");
    const QString password = QString::fromUtf8("\u03a9mega");
    run({"-i", "Lukasz", "?mega"}, {"tarn", "-i", account, password});
    EXPECT_EQ(manager.calls,
        QStringList({"install|" + name + "|what it is for|" + account + '|' + password + "|automatic"}));
}

TEST_F(CommandLine, InstallsOnlyOnce)
{
    manager.installed = true;
    EXPECT_EQ(run({"-install"}), Outcome(0, "", "The service Bl\xe4ser is already installed\n"));
    EXPECT_TRUE(manager.calls.isEmpty());
}

TEST_F(CommandLine, SaysThatItCouldNotInstall)
{
    manager.obeys = false;
    EXPECT_EQ(run({"-i"}), Outcome(-1, "", "The service Bl\xe4ser could not be installed\n"));
}

TEST_F(CommandLine, Uninstalls)
{
    manager.installed = true;
    for (const char *option : {"-u", "-uninstall"}) {
        EXPECT_EQ(run({option}), Outcome(0, "The service Bl\xe4ser has been uninstalled.\n", ""));
        EXPECT_EQ(manager.calls, QStringList({"uninstall|" + name}));
    }
}

TEST_F(CommandLine, UninstallsOnlyWhatIsInstalled)
{
    EXPECT_EQ(run({"-uninstall"}), Outcome(0, "", "The service Bl\xe4ser is not installed\n"));
    EXPECT_TRUE(manager.calls.isEmpty());
}

TEST_F(CommandLine, SaysThatItCouldNotUninstall)
{
    manager.installed = true;
    manager.obeys = false;
    EXPECT_EQ(run({"-u"}), Outcome(-1, "", "The service Bl\xe4ser could not be uninstalled\n"));
}

TEST_F(CommandLine, PrintsItsPathAndStatus)
{
    const struct
    {
        bool installed;
        bool running;
        const char *text;
    } cases[] = {
        {false, false, "is not installed and not running\n\n"},
        {true, false, "is installed and not running\n\n"},
        {true, true, "is installed and running\n\n"},
    };
    for (const auto &status : cases) {
        manager.installed = status.installed;
        manager.running = status.running;
        for (const char *option : {"-v", "-version"}) {
            EXPECT_EQ(run({option}),
                Outcome(0,
                    std::string("The service\n\tBl\xe4ser\n\tC:\\where it is\\tarn.exe\n\n") + status.text,
                    ""));
            EXPECT_TRUE(manager.calls.isEmpty());
        }
    }
}

TEST_F(CommandLine, Terminates)
{
    const tarnTest::LogCapture log;
    for (const char *option : {"-t", "-terminate"}) {
        EXPECT_EQ(run({option}), Outcome(0, "", ""));
        EXPECT_EQ(manager.calls, QStringList({"terminate|" + name}));
    }
    EXPECT_TRUE(log.lines().isEmpty());
}

TEST_F(CommandLine, WarnsThatItCouldNotTerminate)
{
    const tarnTest::LogCapture log;
    manager.obeys = false;
    EXPECT_EQ(std::get<int>(run({"-t"})), 0);
    ASSERT_EQ(log.lines().size(), 1);
    EXPECT_TRUE(log.lines().first().contains("The service could not be stopped."));
}

TEST_F(CommandLine, PausesAndResumesWithoutAWord)
{
    const tarnTest::LogCapture log;
    for (const bool obeys : {true, false}) {
        manager.obeys = obeys;
        for (const char *option : {"-p", "-pause"}) {
            EXPECT_EQ(run({option}), Outcome(0, "", ""));
            EXPECT_EQ(manager.calls, QStringList({"pause|" + name}));
        }
        for (const char *option : {"-r", "-resume"}) {
            EXPECT_EQ(run({option}), Outcome(0, "", ""));
            EXPECT_EQ(manager.calls, QStringList({"resume|" + name}));
        }
    }
    EXPECT_TRUE(log.lines().isEmpty());
}

TEST_F(CommandLine, SendsUserCommandsWithoutAWord)
{
    const struct
    {
        std::vector<std::string> words;
        const char *sent; // null: refused
    } cases[] = {
        {{"-c"}, "0"},
        {{"-command"}, "0"},
        {{"-c", "0"}, "0"},
        {{"-c", "5"}, "5"},
        {{"-command", "127"}, "127"},
        {{"-c", "128"}, nullptr},
        {{"-command", "200"}, nullptr},
        {{"-c", "-1"}, nullptr},
        // Text that is no number is not taken for command 0; a missing number is.
        {{"-c", "5x"}, nullptr},
        {{"-c", "x"}, nullptr},
        {{"-c", ""}, nullptr},
        {{"-command", "4294967296"}, nullptr},
        {{"-c", "99999999999999999999"}, nullptr},
    };
    const tarnTest::LogCapture log;
    for (const bool obeys : {true, false}) {
        manager.obeys = obeys;
        for (const auto &command : cases) {
            EXPECT_EQ(run(command.words), Outcome(0, "", ""));
            EXPECT_EQ(manager.calls,
                command.sent ? QStringList({"command|" + name + '|' + command.sent}) : QStringList())
                << command.words.back();
        }
    }
    EXPECT_TRUE(log.lines().isEmpty());
}

TEST(CommandLineCutShort, IsDoneOnlyWhereTheServiceItselfWasToRun)
{
    const struct
    {
        std::vector<std::string> words;
        int exitCode;
    } cases[] = {
        {{"tarn", "-e"}, 0},
        {{"tarn", "-exec"}, 0},
        {{"tarn", "-exec", "-install"}, 0},
        {{"tarn", "-i"}, -1},
        {{"tarn", "-install"}, -1},
        {{"tarn", "-uninstall"}, -1},
        {{"tarn", "-terminate"}, -1},
        {{"tarn", "-c", "5"}, -1},
        {{"tarn", "-version"}, -1},
        {{"tarn", "-help"}, -1},
        {{"tarn", "-EXEC"}, -1},
        {{"tarn"}, -1},
    };
    for (const auto &row : cases) {
        std::vector<std::string> words = row.words;
        std::vector<char *> pointers;
        for (std::string &word : words)
            pointers.push_back(word.data());
        EXPECT_EQ(
            QtServiceBase::exitCodeBeforeExec(static_cast<int>(words.size()), pointers.data()), row.exitCode)
            << words.back();
    }
}

TEST_F(CommandLine, RunsWithoutTheManagerWhenItIsToldTo)
{
    loopResult = 7;
    for (const std::vector<std::string> &words :
        {std::vector<std::string> {"-e"}, {"-exec"}, {"-exec", "-install"}}) {
        EXPECT_EQ(std::get<int>(run(words)), loopResult);
        EXPECT_EQ(hostCalls, QStringList({"start", "loop"}));
        EXPECT_TRUE(manager.calls.isEmpty());
    }
}

TEST_F(CommandLine, AnythingElseIsTheManagersStart)
{
    manager.run = [](tarnPlatform::ServiceHost &host) {
        host.startService();
        host.pauseService();
        host.resumeService();
        host.processServiceCommand(5);
        const int result = host.runEventLoop();
        host.stopService();
        host.stopService();
        return result;
    };
    loopResult = 3;
    for (const std::vector<std::string> &words :
        {std::vector<std::string> {}, {"-INSTALL"}, {"-I"}, {"install"}, {"-inst"}, {""}, {"more", "-i"}}) {
        EXPECT_EQ(run(words), Outcome(3, "", ""));
        EXPECT_EQ(manager.calls, QStringList({"run|" + name + "|3"}));
        EXPECT_EQ(hostCalls, QStringList({"start", "pause", "resume", "command 5", "loop", "stop"}));
    }
}

TEST_F(CommandLine, CannotStartWhenTheManagerHasNotStartedIt)
{
    EXPECT_EQ(run({}), Outcome(-4, "", "The service Bl\xe4ser could not start\n"));
    EXPECT_TRUE(hostCalls.isEmpty());
}

TEST_F(CommandLine, AsksForTheControlsThatItsFlagsStandFor)
{
    const struct
    {
        int flags;
        const char *controls;
    } cases[] = {{0x00, "1"}, {0x01, "3"}, {0x02, "0"}, {0x03, "2"}, {0x04, "5"}, {0x05, "7"}, {0x06, "4"},
        {0x07, "6"}};
    for (const auto &row : cases) {
        flags = QtServiceBase::ServiceFlags(row.flags);
        run({});
        EXPECT_EQ(manager.calls, QStringList({"run|" + name + '|' + row.controls})) << row.flags;
    }
}
