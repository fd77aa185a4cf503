#include "platform/user_session.h"

namespace tarnPlatform {
namespace {

class OrdinarySession final : public UserSession
{
public:
    [[nodiscard]] bool isServiceSession() const override { return false; }
};

} // namespace

UserSession &UserSession::system()
{
    static OrdinarySession session;
    return session;
}

} // namespace tarnPlatform
