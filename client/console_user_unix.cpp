#include "console_user.h"

namespace tarn {

// The service runs as the user who started it and looks in that user's folder only.
std::optional<OtherUser> otherUserAtConsole()
{
    return std::nullopt;
}

} // namespace tarn
