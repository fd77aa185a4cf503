#pragma once

#include <cstdint>

namespace tarnTest {

// What stands behind the port library of a test.
class PortBackend
{
public:
    virtual ~PortBackend() = default;
    virtual void out(std::uint16_t port, std::uint8_t value) = 0;
    virtual std::uint8_t in(std::uint16_t port) = 0;
};

// The library that the driver loads hands every access to this one. Reads give 0xFF when there is none.
void setPortBackend(PortBackend *backend);

// How often the library was loaded since the start of the process.
int portLibraryLoads();

} // namespace tarnTest
