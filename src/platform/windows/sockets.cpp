#include "platform/sockets.h"

#include <limits>

namespace tarnPlatform {

// A named pipe goes with its last handle; nothing can be left behind.
void removeLeftoverSocket(const QString &) { }

int clientLimit()
{
    return std::numeric_limits<int>::max(); // memory is the only bound of a process's handles
}

} // namespace tarnPlatform
