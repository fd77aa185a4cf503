#include "client/tarnctl/diagnose/service_entry_windows.h"
#include "end_to_end/installed_service.h"
#include "end_to_end/running_tarnctl.h"
#include "end_to_end/service_client.h"
#include "support/time_bound.h"

#include <QDir>
#include <QElapsedTimer>
#include <QFile>

using tarnTest::ServiceClient;
using tarnTest::ServiceRecord;
using tarnTest::waitUntil;

namespace {

constexpr int notStarted = -4;

// The numbers of the events as the event log keeps them, with the severity in the highest bits. The viewer
// shows their lowest 16 bits, 1 and 2.
constexpr DWORD startFailed = 0xC0000001;
constexpr DWORD endedFatally = 0xC0000002;

// What an event viewer makes of an event: it finds the sentence in the program.
QString shownEvent(const QString &program, DWORD number, const QString &insertion)
{
    const HMODULE table = LoadLibraryExW(
        program.toStdWString().c_str(), nullptr, LOAD_LIBRARY_AS_DATAFILE | LOAD_LIBRARY_AS_IMAGE_RESOURCE);
    const std::wstring wide = insertion.toStdWString();
    DWORD_PTR insertions[] = {reinterpret_cast<DWORD_PTR>(wide.c_str())};
    wchar_t text[1000] = {};
    FormatMessageW(FORMAT_MESSAGE_FROM_HMODULE | FORMAT_MESSAGE_ARGUMENT_ARRAY, table, number, 0, text,
        static_cast<DWORD>(std::size(text)), reinterpret_cast<va_list *>(insertions));
    FreeLibrary(table);
    return QString::fromWCharArray(text).trimmed();
}

class ServiceUnderManager : public tarnTest::InstalledService
{
protected:
    [[nodiscard]] QString programPath() const
    {
        return QDir::toNativeSeparators(program.path(QStringLiteral("TarnService.exe")));
    }
    [[nodiscard]] bool answers()
    {
        ServiceClient client;
        const bool connected = client.connectToService();
        return connected && client.answer("getAccessoryType") == QStringLiteral("disconnected");
    }
    // What the program has told the manager and the event log, a line a call.
    [[nodiscard]] QStringList calls() const
    {
        return QString::fromUtf8(program.read("calls.txt")).split(QLatin1Char('\n'), Qt::SkipEmptyParts);
    }
    [[nodiscard]] QStringList eventLog() const { return calls().filter("Event"); }
    [[nodiscard]] static QStringList errorEvent(DWORD number, const QString &sentence)
    {
        return {"RegisterEventSource Tarn Service",
            QString("ReportEvent type 1 category 0 event %1 \"%2\"").arg(number).arg(sentence),
            "DeregisterEventSource"};
    }
    [[nodiscard]] static QStringList startFailure(const QString &reason)
    {
        return errorEvent(startFailed, "The Service failed to start [" + reason + "]");
    }
    // Start type and command line, as an administrator may change them.
    static void change(DWORD start, const QString &command)
    {
        const SC_HANDLE manager = OpenSCManagerW(nullptr, nullptr, SC_MANAGER_CONNECT);
        const SC_HANDLE service = OpenServiceW(manager, L"Tarn Service", SERVICE_CHANGE_CONFIG);
        EXPECT_TRUE(ChangeServiceConfigW(service, SERVICE_NO_CHANGE, start, SERVICE_NO_CHANGE,
            command.toStdWString().c_str(), nullptr, nullptr, nullptr, nullptr, nullptr, nullptr));
        CloseServiceHandle(service);
        CloseServiceHandle(manager);
    }
    void expectPromptStop()
    {
        const auto elapsed = stop();
        ASSERT_TRUE(elapsed);
        EXPECT_LT(*elapsed, tarnTest::allowedMs(tarnTest::promptStopMs));
        EXPECT_EQ(status().dwWin32ExitCode, NO_ERROR);
    }
    // The pipe's name is free when the service has stopped, but for the moment that its process takes to go.
    [[nodiscard]] static bool hasLeftThePipe()
    {
        return waitUntil([] { return !QFile::exists(QStringLiteral("\\\\.\\pipe\\tarnPipe")); }, 2000);
    }
};

} // namespace

TEST_F(ServiceUnderManager, IsInstalledOnceAndUninstalledOnce)
{
    EXPECT_EQ(command({"-i"}), 0);
    EXPECT_TRUE(
        program.log().endsWith("The service Tarn Service has been installed under: " + programPath() + '\n'));
    const ServiceRecord record = this->record();
    EXPECT_EQ(record.serviceType, 0x110U);
    EXPECT_EQ(record.startType, 2U);
    EXPECT_EQ(record.errorControl, 1U);
    EXPECT_EQ(record.program, programPath());
    EXPECT_EQ(record.displayName, "Tarn Service");
    EXPECT_EQ(record.account, "LocalSystem");
    EXPECT_EQ(record.description, "Tarn Service in Windows");

    EXPECT_EQ(command({"-install"}), 0);
    EXPECT_TRUE(program.log().endsWith("The service Tarn Service is already installed\n"));
    EXPECT_EQ(command({"-version"}), 0);
    EXPECT_TRUE(program.log().endsWith(
        "The service\n\tTarn Service\n\t" + programPath() + "\n\nis installed and not running\n\n"));
    EXPECT_EQ(command({"-u"}), 0);
    EXPECT_TRUE(program.log().endsWith("The service Tarn Service has been uninstalled.\n"));
    EXPECT_FALSE(isInstalled());
    EXPECT_EQ(command({"-uninstall"}), 0);
    EXPECT_TRUE(program.log().endsWith("The service Tarn Service is not installed\n"));
    EXPECT_EQ(command({"-v"}), 0);
    EXPECT_TRUE(program.log().endsWith("is not installed and not running\n\n"));
}

TEST_F(ServiceUnderManager, IsInstalledUnderAnAccountOfItsOwn)
{
    EXPECT_EQ(command({"-i", "NT AUTHORITY\\LocalService"}), 0);
    EXPECT_EQ(record().serviceType, 0x10U);
    EXPECT_EQ(record().account, "NT AUTHORITY\\LocalService");
    EXPECT_EQ(command({"-u"}), 0);
    const QString inNoOneCodePage = QString::fromUtf8("\u0141ukasz\u03a9\u0436");
    EXPECT_EQ(command({"-i", inNoOneCodePage, "secret"}), 0);
    EXPECT_EQ(record().account, ".\\" + inNoOneCodePage);
    EXPECT_EQ(calls(),
        QStringList({"CreateService account NT AUTHORITY\\LocalService password -",
            "CreateService account .\\" + inNoOneCodePage + " password secret"}));
    EXPECT_EQ(command({"-u"}), 0);
    EXPECT_EQ(command({"-i", "LocalSystem", "secret"}), 0);
    EXPECT_EQ(record().serviceType, 0x110U);
    EXPECT_EQ(record().account, "LocalSystem");
}

TEST_F(ServiceUnderManager, CannotBeControlledWhenItIsNotInstalled)
{
    EXPECT_EQ(command({"-t"}), 0);
    EXPECT_TRUE(program.log().contains("The service could not be stopped."));
    for (const QStringList &words : {QStringList {"-p"}, {"-r"}, {"-c", "5"}})
        EXPECT_EQ(command(words), 0);
}

TEST_F(ServiceUnderManager, RunsOnlyWhenTheManagerStartsIt)
{
    for (const QStringList &words : {QStringList(), {"-INSTALL"}}) {
        EXPECT_EQ(command(words), notStarted);
        EXPECT_TRUE(program.log().endsWith("The service Tarn Service could not start\n"));
    }
    EXPECT_FALSE(isInstalled());
    const QStringList failure =
        startFailure(qt_error_string(ERROR_FAILED_SERVICE_CONTROLLER_CONNECT).trimmed());
    EXPECT_EQ(eventLog(), failure + failure);
}

TEST_F(ServiceUnderManager, ObeysTheCommandLine)
{
    install();
    ASSERT_TRUE(start());
    EXPECT_EQ(status().dwControlsAccepted, DWORD(SERVICE_ACCEPT_STOP | SERVICE_ACCEPT_PAUSE_CONTINUE));
    EXPECT_TRUE(answers());
    EXPECT_EQ(command({"-v"}), 0);
    EXPECT_TRUE(program.log().endsWith("is installed and running\n\n"));

    EXPECT_EQ(command({"-p"}), 0);
    EXPECT_TRUE(waitForState(SERVICE_PAUSED));
    EXPECT_TRUE(answers()); // a paused service goes on serving clients
    EXPECT_EQ(command({"-r"}), 0);
    EXPECT_TRUE(waitForState(SERVICE_RUNNING));

    for (const char *code : {"0", "5", "127", "128", "200"})
        EXPECT_EQ(command({"-c", code}), 0);
    EXPECT_EQ(state(), DWORD(SERVICE_RUNNING));
    EXPECT_TRUE(answers());
    EXPECT_EQ(calls().filter("ControlService").mid(2),
        QStringList({"ControlService 128", "ControlService 133", "ControlService 255"}));

    EXPECT_EQ(command({"-t"}), 0);
    EXPECT_FALSE(program.log().contains("could not be stopped"));
    EXPECT_TRUE(waitForState(SERVICE_STOPPED, tarnTest::allowedMs(tarnTest::promptStopMs)));
    EXPECT_TRUE(hasLeftThePipe());
    const QStringList reports = calls().filter("SetServiceStatus");
    EXPECT_EQ(reports.mid(0, 2),
        QStringList({"SetServiceStatus state 2 checkpoint 1 hint 10000",
            "SetServiceStatus state 4 checkpoint 0 hint 0"}));
    EXPECT_TRUE(reports.contains("SetServiceStatus state 6 checkpoint 1 hint 3000"));
    EXPECT_TRUE(reports.contains("SetServiceStatus state 5 checkpoint 1 hint 3000"));
    EXPECT_TRUE(reports.contains("SetServiceStatus state 3 checkpoint 1 hint 3000"));
    EXPECT_EQ(reports.last(), "SetServiceStatus state 1 checkpoint 0 hint 0");
    EXPECT_TRUE(eventLog().isEmpty());
}

TEST_F(ServiceUnderManager, TakesTheManagersControls)
{
    install();
    ASSERT_TRUE(start());
    EXPECT_TRUE(control(SERVICE_CONTROL_INTERROGATE));
    EXPECT_TRUE(control(128));
    EXPECT_TRUE(control(255));
    EXPECT_FALSE(requestStart()); // it runs already
    for (int round = 0; round < 3; ++round) {
        EXPECT_TRUE(control(SERVICE_CONTROL_PAUSE));
        EXPECT_TRUE(waitForState(SERVICE_PAUSED));
        EXPECT_TRUE(control(SERVICE_CONTROL_CONTINUE));
        EXPECT_TRUE(waitForState(SERVICE_RUNNING));
    }
    EXPECT_TRUE(control(SERVICE_CONTROL_PAUSE));
    expectPromptStop();
    EXPECT_FALSE(control(SERVICE_CONTROL_PAUSE));
}

TEST_F(ServiceUnderManager, StopsWithAClientAndStartsAgain)
{
    install();
    ASSERT_TRUE(start());
    ServiceClient client;
    ASSERT_TRUE(client.connectToService());
    EXPECT_EQ(client.answer("getAccessoryType"), "disconnected");
    expectPromptStop();
    ASSERT_TRUE(start());
    EXPECT_TRUE(answers());
    expectPromptStop();
    EXPECT_TRUE(hasLeftThePipe());
}

TEST_F(ServiceUnderManager, StopsWhileTheEcIsStuck)
{
    install();
    ASSERT_TRUE(start());
    program.breakDown("ibf-stuck");
    ServiceClient client;
    ASSERT_TRUE(client.connectToService());
    // The handler waits at the EC for five seconds at least.
    EXPECT_TRUE(client.ask({{"cmd", "getMcuVersion"}}, 1000).isEmpty());
    expectPromptStop();
    EXPECT_TRUE(hasLeftThePipe());

    program.repair();
    ASSERT_TRUE(start());
    EXPECT_TRUE(answers());
    expectPromptStop();
}

TEST_F(ServiceUnderManager, ComesBackAfterBeingKilled)
{
    install();
    ASSERT_TRUE(start());
    kill();
    ASSERT_TRUE(waitUntil([this] { return requestStart(); }));
    // Wine still shows the state of the process that was killed, so only clients can tell.
    ASSERT_TRUE(waitUntil([this] { return answers(); }, 60000));
    EXPECT_EQ(state(), DWORD(SERVICE_RUNNING));
    expectPromptStop();
}

TEST_F(ServiceUnderManager, DoesNotStayWithoutItsPortLibrary)
{
    install();
    ASSERT_TRUE(QFile::remove(program.path("function/inpoutx64.dll")));
    ASSERT_TRUE(requestStart());
    ASSERT_TRUE(waitUntil([this] { return state() == SERVICE_STOPPED; }));
    EXPECT_EQ(status().dwWin32ExitCode, DWORD(ERROR_SERVICE_SPECIFIC_ERROR));
    EXPECT_EQ(eventLog(), startFailure("Cannot load library"));
}

TEST_F(ServiceUnderManager, TellsTheEventLogOfAFatalEndWhileItRuns)
{
    install();
    ASSERT_TRUE(start());
    // Windows keeps a library that is in use from being deleted, but not from being renamed.
    ASSERT_TRUE(QFile::rename(program.path("function/inpoutx64.dll"), program.path("function/moved.dll")));
    program.breakDown("no-answer"); // the service then loads the library anew
    ServiceClient client;
    ASSERT_TRUE(client.connectToService());
    client.write(R"({"cmd":"getMcuVersion"})");
    ASSERT_TRUE(waitUntil([this] { return state() == SERVICE_STOPPED; }, 60000))
        << program.read("log/TarnService.log").right(3000).toStdString();
    EXPECT_EQ(status().dwWin32ExitCode, DWORD(ERROR_SERVICE_SPECIFIC_ERROR));
    EXPECT_EQ(eventLog(),
        errorEvent(endedFatally, "The Service ends because of an error [Cannot load library second]"));
    EXPECT_TRUE(program.read("log/TarnService.log").contains(" Cannot load library second\n"));
}

TEST_F(ServiceUnderManager, HasTheSentencesOfItsEvents)
{
    for (const DWORD event : {startFailed, endedFatally})
        EXPECT_EQ(
            shownEvent(programPath(), event, "The Service 100 % [failed]"), "The Service 100 % [failed]");
    EXPECT_EQ(shownEvent(programPath(), endedFatally + 1, "no such event"), "");
}

// Wine's manager keeps no recovery, so nothing is said of that here.
TEST_F(ServiceUnderManager, IsDiagnosedAsItIsRegistered)
{
    const QString tool = program.path("tarnctl.exe");
    ASSERT_TRUE(QFile::copy(tarnTest::builtProgram("tarnctl"), tool));
    const auto diagnosis = [&tool] {
        return tarnTest::RunningTarnctl({"diagnose"}, tool).outcome().out;
    };
    install();
    const QString sound = diagnosis();
    for (const char *line : {"good     registered         as ", "good     start type         automatic\n",
             "good     account            LocalSystem\n",
             "unknown  recovery           the system does not tell\n",
             "bad      running            no, the service is stopped\n"})
        EXPECT_TRUE(sound.contains(line)) << line << '\n' << sound.toStdString();
    EXPECT_EQ(command({"-u"}), 0);

    EXPECT_EQ(command({"-i", "NT AUTHORITY\\LocalService"}), 0);
    change(SERVICE_DISABLED, QDir::toNativeSeparators(program.path("no such.exe")));
    const QString broken = diagnosis();
    for (const char *line : {"bad      registered         as ", "bad      start type         disabled\n",
             "bad      account            NT AUTHORITY\\LocalService, "})
        EXPECT_TRUE(broken.contains(line)) << line << '\n' << broken.toStdString();
}

TEST(ServiceRecovery, IsReadAsTheManagerKeepsIt)
{
    tarnctl::ServiceEntry entry;
    tarnctl::addRecovery(entry, nullptr, nullptr);
    EXPECT_EQ(entry.restarts, std::nullopt);
    EXPECT_EQ(entry.restartsAfterFailedStop, std::nullopt);
    SC_ACTION list[] = {{SC_ACTION_RESTART, 5000}, {SC_ACTION_NONE, 0}, {SC_ACTION_RESTART, 60000}};
    SERVICE_FAILURE_ACTIONSW actions = {86400, nullptr, nullptr, 3, list};
    SERVICE_FAILURE_ACTIONS_FLAG flag = {FALSE};
    tarnctl::addRecovery(entry, &actions, &flag);
    EXPECT_EQ(entry.restarts, 2);
    EXPECT_EQ(entry.restartsAfterFailedStop, false);
    flag.fFailureActionsOnNonCrashFailures = TRUE;
    actions.cActions = 0;
    tarnctl::addRecovery(entry, &actions, &flag);
    EXPECT_EQ(entry.restarts, 0);
    EXPECT_EQ(entry.restartsAfterFailedStop, true);
}

// A process of the service's own name is asked first whether the service runs under its older name.
TEST_F(ServiceUnderManager, AsksTheSystemForItsOlderName)
{
    ASSERT_TRUE(QFile::copy(tarnTest::standIn("sc.exe"), program.path("sc.exe")));
    const std::pair<const char *, const char *> answers[] = {
        {"        STATE              : 4  RUNNING\n", R"(Service "\"TarnService\"" is running.)"},
        {"        STATE              : 1  STOPPED\n", R"(Service "\"TarnService\"" is not running.)"},
    };
    QByteArray asked;
    for (const auto &[answer, line] : answers) {
        program.write("sc_answer.txt", answer);
        EXPECT_EQ(command({"-version"}), 0);
        EXPECT_TRUE(program.logLines().contains(line));
        asked += "sc query \"TarnService\" \n"; // Qt ends each command line with a blank
        EXPECT_EQ(program.read("sc_calls.txt"), asked);
    }
}
