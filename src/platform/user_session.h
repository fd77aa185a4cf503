#pragma once

namespace tarnPlatform {

// What the service needs to know of the session it runs in.
class UserSession
{
public:
    virtual ~UserSession() = default;
    // True in session 0; false in any other, and when the session cannot be told.
    [[nodiscard]] virtual bool isServiceSession() const = 0;

    static UserSession &system();
};

} // namespace tarnPlatform
