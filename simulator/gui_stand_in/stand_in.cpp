#include "simulator/gui_stand_in/stand_in.h"

#include "simulator/desktop.h"
#include "simulator/machine_state_file.h"
#include "simulator/state_location.h"

#include <algorithm>
#include <chrono>
#include <ostream>
#include <thread>

namespace tarnSimulator {

namespace {

using namespace std::chrono_literals;

constexpr auto lookPeriod = 50ms;

struct Window
{
    std::string_view programSwitch;
    std::string_view text;
};

constexpr Window windows[] = {
    {"--disengaged-graphics", "asks whether the graphics box may be removed"},
    {"--graphics-disengaged-failed", "says that the graphics box could not be released"},
    {"--graphics-device-error", "says that no graphics device was found in the box"},
    {"--graphics-driver-error", "says that the driver of the GPU is not installed"},
    {"--graphics-patch-error", "says that the driver of the GPU has failed"},
};

std::filesystem::path stateFile(std::string_view program)
{
    if (const auto named = stateFileFromEnvironment())
        return *named;
    std::error_code error;
    const std::filesystem::path self = std::filesystem::absolute(program, error);
    return self.parent_path().parent_path() / "function" / stateFileName;
}

// Ends also when the machine's file is gone, because no service waits for the answer then.
std::int32_t awaitAnswer(Desktop &desktop, const std::filesystem::path &file)
{
    std::error_code error;
    std::int32_t answer = desktop.answer();
    while (answer == Desktop::waits && std::filesystem::exists(file, error)) {
        desktop.windowStaysOpen();
        std::this_thread::sleep_for(lookPeriod);
        answer = desktop.answer();
    }
    return std::max(answer, 0);
}

} // namespace

int runStandIn(std::string_view programSwitch, std::string_view program, std::ostream &terminal)
{
    const auto window = std::find_if(std::begin(windows), std::end(windows),
        [programSwitch](const Window &row) { return row.programSwitch == programSwitch; });
    if (window == std::end(windows)) {
        terminal << "TarnServiceGui (simulated): there is no window for \"" << programSwitch << "\"\n";
        return wrongSwitch;
    }
    std::string error;
    const std::filesystem::path file = stateFile(program);
    const auto machine = MachineStateFile::open(file, MachineStateFile::Missing::IsAnError, error);
    if (!machine) {
        terminal << "TarnServiceGui (simulated): " << error << '\n';
        return wrongSwitch;
    }

    Desktop desktop(machine->state());
    // Before the window is open, because the answer may come as soon as it is.
    const bool waitsForAnswer = desktop.answer() == Desktop::waits;
    desktop.windowOpened(programSwitch);
    terminal << "TarnServiceGui (simulated) " << window->text;
    if (waitsForAnswer)
        terminal << "; answer with: tarnsim set gui-answer yes|no";
    terminal << std::endl;
    const std::int32_t answer = awaitAnswer(desktop, file);
    terminal << "TarnServiceGui (simulated) " << window->programSwitch << " ends with exit code " << answer
             << std::endl;
    desktop.windowClosed();
    return answer;
}

} // namespace tarnSimulator
