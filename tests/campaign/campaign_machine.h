#pragma once

#include "support/desktop_stand_ins.h"
#include "support/simulated_machine.h"

#include <functional>

namespace tarnCampaign {

// The simulated computer with a desk whose user answers as told, a download folder, a flasher that is a
// script, and a look at each GPU state report in the instant in which the EC takes it.
class CampaignMachine : public tarnTest::SimulatedMachine
{
public:
    CampaignMachine();
    ~CampaignMachine() override;

    void out(std::uint16_t port, std::uint8_t value) override;

    // The factory's devices, everybody willing, nothing wrong, and the limits under the host's control.
    void heal();
    // As the EC reports it now; the code of nothing when nothing is linked.
    [[nodiscard]] std::uint8_t attachedCode() const;
    // A byte lies in the EC's input buffer that the EC has not looked at yet.
    [[nodiscard]] bool isInputWaiting() const;
    // The EC waits for more bytes of the host.
    [[nodiscard]] bool isExchangeOpen() const;
    // Bytes are taken some looks after they were written.
    [[nodiscard]] bool takesBytesSlowly() const;

    std::function<void(std::uint8_t gpuDriverData)> onGpuReport;
    tarnTest::ScriptedSession session;
    tarnTest::ScriptedProcesses processes;

private:
    QByteArray homeBefore;
    std::uint32_t reportsSeen = 0;
};

} // namespace tarnCampaign
