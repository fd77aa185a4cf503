#pragma once

#include "simulator/accessory_mcu.h"
#include "simulator/fault_panel.h"
#include "simulator/machine_state.h"
#include "simulator/mcu_memory.h"

#include <cstddef>
#include <cstdint>
#include <span>
#include <vector>

namespace tarnSimulator {

// The boot loader in the system memory of the KVane's MCU, as its maker describes it in application note
// AN3155, protocol version 2.2. Its whole state is in the machine state. Only one object at a time may serve
// the serial line; the EC may reset the MCU at any moment.
class BootLoader
{
public:
    explicit BootLoader(MachineState &machine);

    // Takes bytes from the host and returns the answer, which is empty when the line is dead.
    [[nodiscard]] std::vector<std::uint8_t> receive(std::span<const std::uint8_t> bytes);

private:
    using Input = std::span<const std::uint8_t>;
    enum Phase : std::uint8_t {
        AwaitsInit,
        AwaitsCommand,
        AwaitsAddress,
        AwaitsReadCount,
        AwaitsWriteData,
        AwaitsPages,
        AwaitsExtendedPages,
        AwaitsSectors,
    };
    struct Command;
    struct Step;
    static const Command commands[];
    static const Step steps[];

    [[nodiscard]] bool isDead() const;
    void joinConversation();
    void take(std::uint8_t byte);
    void answerInit(std::uint8_t byte);
    void await(Phase phase);
    void answer(std::uint8_t byte) { reply.push_back(byte); }
    void confirm(bool isGood);

    void takeCommand(Input input);
    void takeAddress(Input input);
    void takeReadCount(Input input);
    void takeWriteData(Input input);
    void takePages(Input input);
    void takeExtendedPages(Input input);
    void takeSectors(Input input);

    void tellCommands();
    void tellVersion();
    void tellId();
    void go();
    void releaseSectors();
    void protectReadout();
    void releaseReadout();

    [[nodiscard]] bool isAddressGood() const;
    [[nodiscard]] bool eraseAll();
    [[nodiscard]] bool erasePages(std::span<const std::size_t> pages);

    BootLoaderState &state;
    FaultPanel faults;
    AccessoryMcu mcu;
    McuMemory memory;
    std::vector<std::uint8_t> reply;
};

} // namespace tarnSimulator
