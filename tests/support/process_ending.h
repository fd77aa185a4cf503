#pragma once

#include "device/ec_access_lock.h"
#include "platform/process_end.h"

namespace tarnTest {

// What the end of the process begins with.
inline void letProcessEnd()
{
    tarnPlatform::beginProcessEnd();
    tarnDeviceInfos::ecAccessMutex.releaseWaiters();
}

} // namespace tarnTest
