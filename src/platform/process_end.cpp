#include "platform/process_end.h"

namespace tarnPlatform {
namespace {

std::atomic<bool> ending {false};

} // namespace

void beginProcessEnd()
{
    ending = true;
}

bool isProcessEnding()
{
    return ending;
}

StopRequests &StopRequests::ofProcess()
{
    static auto *requests = new StopRequests;
    return *requests;
}

} // namespace tarnPlatform
