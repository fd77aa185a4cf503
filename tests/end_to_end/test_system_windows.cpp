#include "end_to_end/test_system.h"

#include "support/child_process.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QProcess>
#include <QStandardPaths>

#include <windows.h>

#include <tlhelp32.h>

namespace tarnTest {
namespace {

// Wine turns a SIGINT of the host into Ctrl+C; it has no other way to send one to a process without console.
bool interruptUnderWine(const QProcess &process)
{
    const QString hostShell = QStringLiteral("Z:/bin/sh");
    if (!QFile::exists(hostShell))
        return false;
    // On the host the process has its Windows command line; the folder of the test is unique in it.
    const QString testFolder = QFileInfo(process.program()).dir().dirName();
    QProcess shell;
    shell.start(
        hostShell, {QStringLiteral("-c"), QStringLiteral("pkill -INT -f '%1.TarnService'").arg(testFolder)});
    return waitForEnd(shell, 10000) && shell.exitStatus() == QProcess::NormalExit && shell.exitCode() == 0;
}

void forEachThread(const QProcess &process, DWORD(WINAPI *act)(HANDLE thread))
{
    const HANDLE threads = CreateToolhelp32Snapshot(TH32CS_SNAPTHREAD, 0);
    THREADENTRY32 entry = {};
    entry.dwSize = sizeof entry;
    for (BOOL found = Thread32First(threads, &entry); found; found = Thread32Next(threads, &entry)) {
        if (entry.th32OwnerProcessID != static_cast<DWORD>(process.processId()))
            continue;
        const HANDLE thread = OpenThread(THREAD_SUSPEND_RESUME, FALSE, entry.th32ThreadID);
        act(thread);
        CloseHandle(thread);
    }
    CloseHandle(threads);
}

} // namespace

void prepareForStop(QProcess &process)
{
    // A group of its own, or the test would be asked to stop as well.
    process.setCreateProcessArgumentsModifier(
        [](QProcess::CreateProcessArguments *arguments) { arguments->flags |= CREATE_NEW_PROCESS_GROUP; });
}

void requestStop(QProcess &process)
{
    if (!interruptUnderWine(process))
        GenerateConsoleCtrlEvent(CTRL_BREAK_EVENT, static_cast<DWORD>(process.processId()));
}

void requestInterrupt(QProcess &process)
{
    requestStop(process);
}

// The library that stands in for setupapi.dll waits for this event.
void closeTerminal(QProcess &process)
{
    const QString name = QStringLiteral("TarnCloseConsole-%1").arg(process.processId());
    const HANDLE event =
        OpenEventW(EVENT_MODIFY_STATE, FALSE, reinterpret_cast<const wchar_t *>(name.utf16()));
    SetEvent(event);
    CloseHandle(event);
}

void suspend(const QProcess &process)
{
    forEachThread(process, SuspendThread);
}

void resume(const QProcess &process)
{
    forEachThread(process, ResumeThread);
}

// A console program that is started from one without a console gets one of its own.
Terminal::Terminal(QProcess &process)
    : user(process)
{
    user.setCreateProcessArgumentsModifier([](QProcess::CreateProcessArguments *arguments) {
        arguments->flags |= CREATE_NO_WINDOW | CREATE_NEW_PROCESS_GROUP;
    });
}

Terminal::~Terminal() = default;

void Terminal::interrupt()
{
    const auto service = static_cast<DWORD>(user.processId());
    const DWORD everybody = 0; // in the console; Wine takes it for the own group
    FreeConsole();
    SetConsoleCtrlHandler(nullptr, TRUE); // not for the test, which is in that console for a moment
    if (!AttachConsole(service)
        || !GenerateConsoleCtrlEvent(CTRL_C_EVENT, losesIdleConnections() ? service : everybody))
        qFatal("no console: %lu", GetLastError());
    FreeConsole();
}

void Terminal::close()
{
    closeTerminal(user);
}

bool losesIdleConnections()
{
    return GetProcAddress(GetModuleHandleW(L"ntdll.dll"), "wine_get_version") != nullptr;
}

QString downloadFolder(const QString &)
{
    return QStandardPaths::writableLocation(QStandardPaths::DownloadLocation);
}

} // namespace tarnTest
