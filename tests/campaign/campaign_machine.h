#pragma once

#include "support/desktop_stand_ins.h"
#include "support/simulated_machine.h"

#include <functional>

namespace tarnCampaign {

// The simulated computer with a user who answers as told, a download folder, a flasher that is a script, and
// a call for each GPU state report at the moment at which the EC takes it.
class CampaignMachine : public tarnTest::SimulatedMachine
{
public:
    CampaignMachine();
    ~CampaignMachine() override;

    void out(std::uint16_t port, std::uint8_t value) override;

    // The factory's devices, no refusals, no faults, and the limits under the host's control.
    void heal();
    // The code as the EC reports it now; ACCESSORY_NONE when nothing is linked.
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
