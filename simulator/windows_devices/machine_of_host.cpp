#include "simulator/windows_devices/machine_of_host.h"

#include "simulator/machine_state_file.h"
#include "simulator/state_location.h"

#include <windows.h>

namespace tarnSimulator {

namespace {

constexpr DWORD longestPath = 32768; // characters, with the final zero

std::filesystem::path stateFile()
{
    if (const auto named = stateFileFromEnvironment())
        return *named;
    return folderOfHost() / "function" / stateFileName;
}

} // namespace

std::filesystem::path folderOfHost()
{
    std::wstring program(longestPath, L'\0');
    program.resize(GetModuleFileNameW(nullptr, program.data(), longestPath));
    return std::filesystem::path(program).parent_path();
}

MachineState *machineOfHost()
{
    static std::string error;
    static const auto machine =
        MachineStateFile::open(stateFile(), MachineStateFile::Missing::IsCreated, error);
    return machine ? &machine->state() : nullptr;
}

} // namespace tarnSimulator
