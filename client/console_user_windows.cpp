#include "console_user.h"

#include <QByteArray>

#include <windows.h>

#include <wtsapi32.h>

#include <string>

namespace tarn {

namespace {

constexpr DWORD noSession = 0xFFFFFFFF;

// A text about a session from Windows Terminal Services (WTS); empty when it cannot be read.
QString takeSessionText(DWORD session, WTS_INFO_CLASS what)
{
    wchar_t *text = nullptr;
    DWORD bytes = 0;
    if (!WTSQuerySessionInformationW(WTS_CURRENT_SERVER_HANDLE, session, what, &text, &bytes))
        return {};
    const QString taken = QString::fromWCharArray(text);
    WTSFreeMemory(text);
    return taken;
}

// "COMPUTER\name", empty while no user is logged on there.
QString userAtConsole()
{
    const DWORD session = WTSGetActiveConsoleSessionId();
    const QString name = session == noSession ? QString() : takeSessionText(session, WTSUserName);
    const QString domain = name.isEmpty() ? QString() : takeSessionText(session, WTSDomainName);
    return domain.isEmpty() ? name : domain + u'\\' + name;
}

// A TOKEN_USER with what it points to; empty when it cannot be read.
QByteArray ownTokenUser()
{
    HANDLE token = nullptr;
    if (!OpenProcessToken(GetCurrentProcess(), TOKEN_QUERY, &token))
        return {};
    DWORD size = 0;
    GetTokenInformation(token, TokenUser, nullptr, 0, &size);
    QByteArray user(qsizetype(size), '\0');
    const bool isRead = size > 0 && GetTokenInformation(token, TokenUser, user.data(), size, &size);
    CloseHandle(token);
    return isRead ? user : QByteArray();
}

QByteArray sidOf(const QString &account)
{
    DWORD sidSize = 0;
    DWORD domainSize = 0;
    SID_NAME_USE use = SidTypeUnknown;
    const std::wstring name = account.toStdWString();
    LookupAccountNameW(nullptr, name.c_str(), nullptr, &sidSize, nullptr, &domainSize, &use);
    QByteArray sid(qsizetype(sidSize), '\0');
    std::wstring domain(domainSize, L'\0');
    const bool isFound = sidSize > 0
        && LookupAccountNameW(nullptr, name.c_str(), sid.data(), &sidSize, domain.data(), &domainSize, &use);
    return isFound ? sid : QByteArray();
}

QString accountOf(PSID sid)
{
    DWORD nameSize = 0;
    DWORD domainSize = 0;
    SID_NAME_USE use = SidTypeUnknown;
    LookupAccountSidW(nullptr, sid, nullptr, &nameSize, nullptr, &domainSize, &use);
    std::wstring name(nameSize, L'\0');
    std::wstring domain(domainSize, L'\0');
    if (nameSize == 0
        || !LookupAccountSidW(nullptr, sid, name.data(), &nameSize, domain.data(), &domainSize, &use)) {
        return {};
    }
    return QString::fromWCharArray(domain.c_str()) + u'\\' + QString::fromWCharArray(name.c_str());
}

} // namespace

// Compares account SIDs and does not ask for the session's user token, which only the system account may get.
std::optional<OtherUser> otherUserAtConsole()
{
    const QString atConsole = userAtConsole();
    QByteArray consoleSid = atConsole.isEmpty() ? QByteArray() : sidOf(atConsole);
    QByteArray own = ownTokenUser();
    if (consoleSid.isEmpty() || own.isEmpty())
        return std::nullopt;
    const PSID ownSid = reinterpret_cast<const TOKEN_USER *>(own.constData())->User.Sid;
    if (EqualSid(ownSid, consoleSid.data()))
        return std::nullopt;
    return OtherUser {accountOf(ownSid), atConsole};
}

} // namespace tarn
