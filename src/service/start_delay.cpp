#include "service/start_delay.h"

#include "platform/process_end.h"
#include "platform/waits.h"

namespace {

using namespace std::chrono_literals;

constexpr auto startDelay = 4000ms;

} // namespace

bool waitForSystem()
{
    const auto &stopRequests = tarnPlatform::StopRequests::ofProcess();
    tarnPlatform::pumpEventsFor(startDelay, [&stopRequests] { return stopRequests.isRequested(); });
    return !stopRequests.isRequested();
}
