#include "host_devices.h"

namespace tarnctl {

QList<HostDevice> hostDevices()
{
    return {};
}

} // namespace tarnctl
