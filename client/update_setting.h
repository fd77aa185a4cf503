#pragma once

#include "console_user.h"
#include "update_plan.h"

#include <chrono>
#include <functional>

namespace tarn {

// What an update works with besides its file.
struct UpdateSetting
{
    UpdatePlan plan;
    // Called on any thread.
    std::function<std::optional<OtherUser>()> findOtherUser = otherUserAtConsole;
    // Before a question is repeated; the service's 500 ms between messages come on top.
    std::chrono::milliseconds askingPause {500};
};

} // namespace tarn
