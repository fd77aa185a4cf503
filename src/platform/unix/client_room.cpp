#include "platform/client_room.h"

#include <algorithm>
#include <limits>

#include <sys/resource.h>

namespace tarnPlatform {
namespace {

// Two pools of 64 handlers and the other threads, one descriptor each, and the files and programs of a
// handler.
constexpr rlim_t keptBack = 160;

} // namespace

int clientRoom()
{
    rlimit descriptors {};
    if (::getrlimit(RLIMIT_NOFILE, &descriptors) != 0 || descriptors.rlim_cur == RLIM_INFINITY)
        return std::numeric_limits<int>::max();
    const rlim_t room = descriptors.rlim_cur - std::min(keptBack, descriptors.rlim_cur / 2);
    return static_cast<int>(std::min<rlim_t>(room, std::numeric_limits<int>::max()));
}

} // namespace tarnPlatform
