#include "platform/client_room.h"

#include <limits>

namespace tarnPlatform {

int clientRoom()
{
    return std::numeric_limits<int>::max(); // memory is the only bound of a process's handles
}

} // namespace tarnPlatform
