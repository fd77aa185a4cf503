#pragma once

#include "support/desktop_stand_ins.h"
#include "support/simulated_machine.h"

namespace tarnFuzz {

// The simulated computer that the inputs of a process come to, one after the other.
class FuzzedMachine : public tarnTest::SimulatedMachine
{
public:
    static FuzzedMachine &instance();

    // Takes faults, devices and the accessory back to a computer out of the factory, the limits under the
    // host's control, and drops what the last inputs have left behind in this process. Profiles, lights and
    // the EC's other registers stay.
    void startAfresh();
    // Attached, and seen by the monitor.
    void attachAndPoll(std::uint8_t accessoryCode);

    tarnTest::ScriptedSession session;
    tarnTest::ScriptedProcesses processes;

private:
    FuzzedMachine();
    void emptySendQueue();

    int inputsSinceEmptied = 0;
};

} // namespace tarnFuzz
