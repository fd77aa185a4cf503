// A port library without ports: hands every access to the test program that has loaded it, so that the
// driver's own loading, resolving and reloading is what runs in the tests.
#include <cstdint>

extern "C" {
void tarnTestPortOut(std::uint16_t port, std::uint8_t value);
std::uint8_t tarnTestPortIn(std::uint16_t port);
void tarnTestPortLibraryLoaded();

__attribute__((visibility("default"))) void Out32(std::uint16_t port, std::int16_t value)
{
    tarnTestPortOut(port, static_cast<std::uint8_t>(value));
}

#ifndef TARN_WITHOUT_INP32
// Only the low byte is the port's; the upper bits are not 0, because a real driver leaves anything there.
__attribute__((visibility("default"))) std::int16_t Inp32(std::uint16_t port)
{
    return static_cast<std::int16_t>(0x5A00 | tarnTestPortIn(port));
}
#endif
}

namespace {
[[maybe_unused]] const bool announced = (tarnTestPortLibraryLoaded(), true);
}
