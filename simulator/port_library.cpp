#include "simulator/clock.h"
#include "simulator/machine_state_file.h"
#include "simulator/port_library_export.h"
#include "simulator/simulated_ec.h"
#include "simulator/state_location.h"

#include <cstdio>
#include <memory>
#include <mutex>
#include <optional>

// The simulated computer as a port-I/O library: loading it connects the process to the machine, unloading it
// leaves the machine as it is.
namespace tarnSimulator {

namespace {

constexpr std::uint8_t noMachine = 0xFF; // what an empty bus reads as

class PortLibrary
{
public:
    PortLibrary()
    {
        std::string error;
        file = MachineStateFile::open(stateFileOfLibrary(), MachineStateFile::Missing::IsCreated, error);
        if (!file) {
            std::fprintf(stderr, "%s\n", error.c_str());
            return;
        }
        file->state().counters.libraryLoads.fetch_add(1);
        ec = std::make_unique<SimulatedEc>(file->state(), steadyNowMs);
    }

    void write(std::uint16_t port, std::uint8_t value)
    {
        const std::lock_guard guard(portMutex);
        if (ec != nullptr)
            ec->writePort(port, value);
    }

    [[nodiscard]] std::uint8_t read(std::uint16_t port)
    {
        const std::lock_guard guard(portMutex);
        return ec == nullptr ? noMachine : ec->readPort(port);
    }

private:
    std::mutex portMutex; // one port access at a time, as on a bus
    std::optional<MachineStateFile> file;
    std::unique_ptr<SimulatedEc> ec;
};

PortLibrary portLibrary;

} // namespace

} // namespace tarnSimulator

extern "C" {

TARN_PORT_LIBRARY_EXPORT void Out32(short port, short value)
{
    tarnSimulator::portLibrary.write(
        static_cast<std::uint16_t>(port), static_cast<std::uint8_t>(value & 0xFF));
}

TARN_PORT_LIBRARY_EXPORT short Inp32(short port)
{
    return tarnSimulator::portLibrary.read(static_cast<std::uint16_t>(port));
}

} // extern "C"
