#include "support/port_backend.h"

#include <atomic>

namespace {

std::atomic<tarnTest::PortBackend *> backend {nullptr};
std::atomic<int> loads {0};

} // namespace

// Found by the port library in the test program itself.
extern "C" {
__attribute__((visibility("default"))) void tarnTestPortOut(std::uint16_t port, std::uint8_t value)
{
    if (auto *ports = backend.load())
        ports->out(port, value);
}

__attribute__((visibility("default"))) std::uint8_t tarnTestPortIn(std::uint16_t port)
{
    auto *ports = backend.load();
    return ports ? ports->in(port) : 0xFF;
}

__attribute__((visibility("default"))) void tarnTestPortLibraryLoaded()
{
    ++loads;
}
}

namespace tarnTest {

void setPortBackend(PortBackend *ports)
{
    backend = ports;
}

int portLibraryLoads()
{
    return loads;
}

} // namespace tarnTest
