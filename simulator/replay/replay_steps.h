#pragma once

#include "device/recording/request_record.h"
#include "simulator/device_tree.h"
#include "simulator/machine_state.h"
#include "simulator/replay/service_pipe.h"

#include <chrono>
#include <cstdint>
#include <filesystem>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace tarnSimulator {

// Where the steps of a prepared replay are.
[[nodiscard]] std::filesystem::path replayStepsPath(const std::filesystem::path &stateFile);

// A device on one line, for a step.
[[nodiscard]] std::string deviceLine(const Device &device);
[[nodiscard]] std::optional<Device> deviceOfLine(std::string_view line);

// A file that the service has saved on one line, for a step. Without content there is none.
[[nodiscard]] std::string savedLine(std::string_view name, std::string_view content);

// What is done from outside during a replay, each at the end of the access whose number it has: a device of
// the host changes, the user's answer changes, what the service has saved is put into the current folder, a
// client asks. The text of a request is the message itself.
class ReplaySteps
{
public:
    // A request waits so long for a service that has its pipe open.
    static constexpr std::chrono::milliseconds longestOpening {10'000};

    ReplaySteps(MachineState &machine, const std::filesystem::path &stateFile,
        std::chrono::milliseconds openingLimit = longestOpening);

    // Why the steps cannot be done; empty: they can.
    [[nodiscard]] const std::string &error() const { return problem; }

    // Does what is due when so many accesses have been made. False when something could not be done.
    [[nodiscard]] bool doUntil(std::uint64_t accesses);
    // The step that could not be done.
    [[nodiscard]] std::string failedStep() const;

private:
    [[nodiscard]] bool perform(const tarnRecording::RequestRecord &step);
    [[nodiscard]] bool ask(const std::string &message);
    [[nodiscard]] static bool restoreSaved(std::string_view line);
    [[nodiscard]] bool changeDevice(const std::string &line);
    [[nodiscard]] bool changeAnswer(const std::string &text);

    MachineState &state;
    const std::chrono::milliseconds limit;
    std::vector<tarnRecording::RequestRecord> steps;
    std::string problem;
    ServicePipe pipe;
};

} // namespace tarnSimulator
