#include "end_to_end/mcu_port.h"

namespace tarnTest {

McuPort::~McuPort() = default;

// Whoever serves it names the machine that it belongs to.
bool McuPort::open(const ServiceProcess &)
{
    return qEnvironmentVariableIsSet("TARN_SIMULATOR_STATE");
}

} // namespace tarnTest
