#include "platform/user_session.h"

#include "platform/windows/launch_job.h"
#include "platform/windows/unique_handle.h"

#include <QDir>

#include <windows.h>

#include <knownfolders.h>
#include <objbase.h>
#include <shlobj.h>
#include <wtsapi32.h>

namespace tarnPlatform {
namespace {

constexpr DWORD noSession = 0xFFFFFFFF;

Launch failedAt(LaunchStage stage)
{
    return {stage, 0};
}

bool queryConsoleUser(UniqueHandle &userToken)
{
    const DWORD session = WTSGetActiveConsoleSessionId();
    return session != noSession && WTSQueryUserToken(session, userToken.receive());
}

// The thread has the rights of another user while this lives.
class Impersonation
{
public:
    Impersonation() = default;
    ~Impersonation()
    {
        // Going on with the wrong rights would be worse than not going on.
        if (!RevertToSelf())
            qFatal("The rights of the service cannot be taken back.");
    }
    Impersonation(const Impersonation &) = delete;
    Impersonation &operator=(const Impersonation &) = delete;
};

class WindowsSession final : public UserSession
{
public:
    [[nodiscard]] bool isServiceSession() const override
    {
        DWORD session = 0;
        return ProcessIdToSessionId(GetCurrentProcessId(), &session) && session == 0;
    }

    [[nodiscard]] Launch runForConsoleUser(const QString &program, const QString &argument) override
    {
        const DWORD session = WTSGetActiveConsoleSessionId();
        if (session == noSession)
            return failedAt(LaunchStage::NoActiveSession);
        UniqueHandle userToken;
        if (!WTSQueryUserToken(session, userToken.receive()))
            return failedAt(LaunchStage::NoUserToken);
        UniqueHandle ownToken;
        if (!DuplicateTokenEx(userToken.get(), TOKEN_ALL_ACCESS, nullptr, SecurityIdentification,
                TokenPrimary, ownToken.receive()))
            return failedAt(LaunchStage::NoTokenCopy);

        wchar_t desktop[] = L"winsta0\\default";
        STARTUPINFOW startup = {};
        startup.cb = sizeof startup;
        startup.lpDesktop = desktop;
        LaunchCommandLine commandLine = {};
        PROCESS_INFORMATION started = {};
        if (!formatLaunchCommandLine(commandLine, program, argument)
            || !CreateProcessAsUserW(ownToken.get(), nullptr, commandLine, nullptr, nullptr, FALSE,
                CREATE_NEW_CONSOLE, nullptr, nullptr, &startup, &started))
            return failedAt(LaunchStage::NoProcess);

        const UniqueHandle process(started.hProcess);
        const UniqueHandle thread(started.hThread);
        LaunchJob job;
        job.take(process.get());
        WaitForSingleObject(process.get(), INFINITE);
        DWORD exitCode = 0;
        if (!GetExitCodeProcess(process.get(), &exitCode))
            return failedAt(LaunchStage::NoExitCode);
        return {LaunchStage::Ended, exitCode};
    }

    bool asConsoleUser(const std::function<void()> &action) override
    {
        UniqueHandle userToken;
        if (!queryConsoleUser(userToken) || !ImpersonateLoggedOnUser(userToken.get()))
            return false;
        const Impersonation impersonation;
        action();
        return true;
    }

    [[nodiscard]] QString consoleUserDownloadFolder() const override
    {
        UniqueHandle userToken;
        wchar_t *path = nullptr;
        if (!queryConsoleUser(userToken))
            return {};
        const bool known = SUCCEEDED(SHGetKnownFolderPath(FOLDERID_Downloads, 0, userToken.get(), &path));
        const QString folder = known ? QDir::fromNativeSeparators(QString::fromWCharArray(path)) : QString();
        CoTaskMemFree(path); // also after a failure
        return folder;
    }
};

} // namespace

UserSession &UserSession::ofSystem()
{
    static WindowsSession session;
    return session;
}

} // namespace tarnPlatform
