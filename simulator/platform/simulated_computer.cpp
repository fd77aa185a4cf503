#include "simulator/platform/simulated_computer.h"

#include "simulator/machine_state_file.h"
#include "simulator/state_location.h"

#include <QCoreApplication>
#include <QDebug>

#include <atomic>

namespace tarnPlatform {
namespace {

using tarnSimulator::MachineState;
using tarnSimulator::MachineStateFile;

std::atomic<MachineState *> machineOfTest {nullptr};

// The file lies beside the port library, whose folder is beside the program.
std::filesystem::path stateFile()
{
    if (const auto named = tarnSimulator::stateFileFromEnvironment())
        return *named;
    const std::filesystem::path folder = QCoreApplication::applicationDirPath().toStdString();
    return folder / "function" / tarnSimulator::stateFileName;
}

std::optional<MachineStateFile> openMachine()
{
    std::string error;
    auto machine = MachineStateFile::open(stateFile(), MachineStateFile::Missing::IsCreated, error);
    if (!machine)
        qWarning() << "There is no simulated computer:" << error.c_str();
    return machine;
}

} // namespace

MachineState *simulatedComputer()
{
    if (MachineState *machine = machineOfTest)
        return machine;
    static const std::optional<MachineStateFile> machine = openMachine();
    return machine ? &machine->state() : nullptr;
}

void setSimulatedComputer(MachineState *machine)
{
    machineOfTest = machine;
}

} // namespace tarnPlatform
