#include "end_to_end/mcu_port.h"

namespace tarnTest {

McuPort::~McuPort() = default;

// The program that serves the port names the machine to which it belongs.
bool McuPort::open(const ServiceProcess &)
{
    return qEnvironmentVariableIsSet("TARN_SIMULATOR_STATE");
}

} // namespace tarnTest
