#pragma once

#include "simulator/machine_state.h"
#include "simulator/shared_mapping.h"

#include <filesystem>
#include <optional>
#include <string>

namespace tarnSimulator {

// The simulated computer in its file. It stays switched on while no program runs; programs that map the file
// see each other's changes at once.
class MachineStateFile
{
public:
    enum class Missing { IsAnError, IsCreated };

    // Empty when the file cannot be used; `error` is then a sentence for the user. A file that is not there
    // may be created in its power-on condition; several processes may do so at the same time and get the same
    // machine.
    [[nodiscard]] static std::optional<MachineStateFile> open(
        const std::filesystem::path &file, Missing missing, std::string &error);

    [[nodiscard]] MachineState &state() const { return *static_cast<MachineState *>(mapping.data()); }
    [[nodiscard]] const std::filesystem::path &path() const { return file; }

private:
    MachineStateFile(SharedMapping &&mapped, std::filesystem::path mappedFile)
        : mapping(std::move(mapped))
        , file(std::move(mappedFile))
    { }

    SharedMapping mapping;
    std::filesystem::path file;
};

} // namespace tarnSimulator
