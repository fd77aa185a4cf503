#pragma once

#include <QString>

#include <optional>

namespace tarn {

// This process's user and the user at the computer's console, where they differ: the service looks for files
// in the download folder of the user at the console.
struct OtherUser
{
    QString own;
    QString atConsole;
};

// Nothing when both are the same, when no user is logged on at the console, or when that cannot be found out.
[[nodiscard]] std::optional<OtherUser> otherUserAtConsole();

} // namespace tarn
