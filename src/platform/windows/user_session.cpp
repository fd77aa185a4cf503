#include "platform/user_session.h"

#include <windows.h>

namespace tarnPlatform {
namespace {

class WindowsSession final : public UserSession
{
public:
    [[nodiscard]] bool isServiceSession() const override
    {
        DWORD session = 0;
        return ProcessIdToSessionId(GetCurrentProcessId(), &session) && session == 0;
    }
};

} // namespace

UserSession &UserSession::system()
{
    static WindowsSession session;
    return session;
}

} // namespace tarnPlatform
