#include "simulator/clock.h"
#include "simulator/machine_state_file.h"
#include "simulator/port_library_export.h"
#include "simulator/replay/replayed_ports.h"
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
        replay = replayedPorts(file->state(), file->path());
        if (replay != nullptr)
            replay->noteLoad();
        else
            ec = std::make_unique<SimulatedEc>(file->state(), steadyNowMs);
    }

    void write(std::uint16_t port, std::uint8_t value)
    {
        const std::lock_guard guard(portMutex);
        if (replay != nullptr)
            replay->write(port, value);
        else if (ec != nullptr)
            ec->writePort(port, value);
    }

    [[nodiscard]] std::uint16_t read(std::uint16_t port)
    {
        const std::lock_guard guard(portMutex);
        if (replay != nullptr)
            return replay->read(port);
        return ec == nullptr ? noMachine : ec->readPort(port);
    }

private:
    std::mutex portMutex; // one port access at a time, as on a bus
    std::optional<MachineStateFile> file;
    std::unique_ptr<SimulatedEc> ec;
    std::unique_ptr<ReplayedPorts> replay; // in its place
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
    return static_cast<short>(tarnSimulator::portLibrary.read(static_cast<std::uint16_t>(port)));
}

} // extern "C"
