#include "service_entry_windows.h"
#include "system_computer.h"

#include "client/pipe_address.h"

#include <QByteArray>
#include <QDir>

#include <windows.h>

#include <algorithm>
#include <memory>

namespace tarnctl {

namespace {

const QString serviceName = QStringLiteral("Tarn Service");

struct HandleCloser
{
    void operator()(HANDLE handle) const { CloseHandle(handle); }
};
using Handle = std::unique_ptr<void, HandleCloser>;

bool isAdministrator()
{
    SID_IDENTIFIER_AUTHORITY authority = SECURITY_NT_AUTHORITY;
    PSID administrators = nullptr;
    if (!AllocateAndInitializeSid(&authority, 2, SECURITY_BUILTIN_DOMAIN_RID, DOMAIN_ALIAS_RID_ADMINS, 0, 0,
            0, 0, 0, 0, &administrators))
        return false;
    BOOL isMember = FALSE;
    const bool isKnown = CheckTokenMembership(nullptr, administrators, &isMember) != FALSE;
    FreeSid(administrators);
    return isKnown && isMember;
}

// What a token holds, with what it points to; empty when it may not be read.
QByteArray tokenOf(HANDLE process, TOKEN_INFORMATION_CLASS what)
{
    HANDLE opened = nullptr;
    if (!OpenProcessToken(process, TOKEN_QUERY, &opened))
        return {};
    const Handle token(opened);
    DWORD size = 0;
    GetTokenInformation(token.get(), what, nullptr, 0, &size);
    QByteArray information(static_cast<qsizetype>(size), '\0');
    return size > 0 && GetTokenInformation(token.get(), what, information.data(), size, &size) ? information
                                                                                               : QByteArray();
}

// Whether what the process creates belongs to this user. That of an elevated process belongs to the
// administrators.
bool createsForThisUser(qint64 processId)
{
    const Handle process(
        OpenProcess(PROCESS_QUERY_LIMITED_INFORMATION, FALSE, static_cast<DWORD>(processId)));
    const QByteArray user = tokenOf(GetCurrentProcess(), TokenUser);
    const QByteArray owner = process ? tokenOf(process.get(), TokenOwner) : QByteArray();
    return !user.isEmpty() && !owner.isEmpty()
        && EqualSid(reinterpret_cast<const TOKEN_USER *>(user.constData())->User.Sid,
            reinterpret_cast<const TOKEN_OWNER *>(owner.constData())->Owner);
}

QString registryText(const wchar_t *key, const wchar_t *value)
{
    wchar_t text[MAX_PATH] = {};
    DWORD size = sizeof text;
    const LSTATUS result = RegGetValueW(
        HKEY_LOCAL_MACHINE, key, value, RRF_RT_REG_SZ | RRF_SUBKEY_WOW6464KEY, nullptr, text, &size);
    return result == ERROR_SUCCESS ? QString::fromWCharArray(text) : QString();
}

class WindowsComputer final : public SystemComputer
{
public:
    ServiceEntry service() override { return readServiceEntry(serviceName); }

    // A look into the system's folder of pipes would be answered by the service as a client. This waits for a
    // free instance, and so asks the system only.
    PipeState pipe(const QString &name) override
    {
        const std::wstring address = tarn::pipeAddress(name).text.toStdWString();
        constexpr DWORD shortestMs = 1;
        const DWORD error = WaitNamedPipeW(address.c_str(), shortestMs) ? NO_ERROR : GetLastError();
        if (error == ERROR_FILE_NOT_FOUND)
            return {};
        if (error != NO_ERROR && error != ERROR_SEM_TIMEOUT && error != ERROR_PIPE_BUSY)
            return {false, std::nullopt, qt_error_string(static_cast<int>(error)).trimmed()};
        return {true, mayConnect(), {}};
    }

    QString installedFolder() override { return registryText(L"Software\\Tarn Service", L"Folder"); }

    QString fileVersion(const QString &program) override
    {
        const std::wstring path = QDir::toNativeSeparators(program).toStdWString();
        DWORD ignored = 0;
        const DWORD size = GetFileVersionInfoSizeW(path.c_str(), &ignored);
        QByteArray info(static_cast<qsizetype>(size), '\0');
        void *text = nullptr;
        UINT length = 0;
        // Language and code page of packaging/windows/program.rc.in.
        if (size == 0 || !GetFileVersionInfoW(path.c_str(), 0, size, info.data())
            || !VerQueryValueW(info.data(), L"\\StringFileInfo\\040904B0\\FileVersion", &text, &length))
            return {};
        return QString::fromWCharArray(static_cast<const wchar_t *>(text));
    }

protected:
    std::optional<QDateTime> startOf(qint64 processId) override
    {
        const Handle process(
            OpenProcess(PROCESS_QUERY_LIMITED_INFORMATION, FALSE, static_cast<DWORD>(processId)));
        FILETIME started = {};
        FILETIME other[3] = {};
        if (!process || !GetProcessTimes(process.get(), &started, &other[0], &other[1], &other[2]))
            return std::nullopt;
        // In units of 100 ns since 1601, 11,644,473,600 s before 1970.
        const qint64 ticks = (static_cast<qint64>(started.dwHighDateTime) << 32) | started.dwLowDateTime;
        return QDateTime::fromMSecsSinceEpoch(ticks / 10000 - 11644473600000);
    }

private:
    // A pipe has the rights that Windows gives by default: its owner and administrators may write to it.
    [[nodiscard]] std::optional<bool> mayConnect()
    {
        if (isAdministrator())
            return true;
        const auto programs = programsCalled(QStringLiteral("TarnService.exe"));
        if (!programs || programs->isEmpty())
            return std::nullopt;
        return std::any_of(programs->begin(), programs->end(),
            [](const TimedProgram &program) { return createsForThisUser(program.processId); });
    }
};

} // namespace

Computer &Computer::ofSystem()
{
    static WindowsComputer computer;
    return computer;
}

} // namespace tarnctl
