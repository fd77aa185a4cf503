#pragma once

#include <QString>

#include <optional>

namespace tarnClient {

// The user at the computer's screen, where that is somebody else than the user whom this process runs as: the
// service looks for downloads in the folder of the one at the screen.
struct OtherUser
{
    QString own;
    QString atConsole;
};

// Nothing where they are the same, where nobody sits there, or where it cannot be told.
[[nodiscard]] std::optional<OtherUser> otherUserAtConsole();

} // namespace tarnClient
