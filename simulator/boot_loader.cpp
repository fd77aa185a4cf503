#include "simulator/boot_loader.h"

#include "simulator/boot_protocol.h"

#include <algorithm>
#include <iterator>

namespace tarnSimulator {

using namespace bootProtocol;

namespace {

using Length = std::size_t (*)(std::span<const std::uint8_t> input);

template <std::size_t length> std::size_t fixedLength(std::span<const std::uint8_t>)
{
    return length;
}

// The number of entries less one, the entries, a checksum.
std::size_t listLength(std::span<const std::uint8_t> input)
{
    return std::size_t {input[0]} + 3;
}

std::size_t pageListLength(std::span<const std::uint8_t> input)
{
    return input[0] == ALL_PAGES ? 2 : listLength(input);
}

// A list of more pages than there are is refused without waiting for it.
std::size_t extendedPageListLength(std::span<const std::uint8_t> input)
{
    if (input.size() < 2)
        return 2;
    const std::uint16_t last = halfAt(input, 0);
    if (last >= FIRST_SPECIAL_ERASE)
        return 3;
    return last < mcuPages ? 2 + (std::size_t {last} + 1) * 2 + 1 : 2;
}

} // namespace

// A piece of input that gets one answer. The rows are in the order of the phases, from AwaitsCommand on.
struct BootLoader::Step
{
    Length length; // of the whole piece, as far as the input so far tells
    void (BootLoader::*finish)(Input input);
};

const BootLoader::Step BootLoader::steps[] = {
    {fixedLength<2>, &BootLoader::takeCommand},
    {fixedLength<5>, &BootLoader::takeAddress},
    {fixedLength<2>, &BootLoader::takeReadCount},
    {listLength, &BootLoader::takeWriteData},
    {pageListLength, &BootLoader::takePages},
    {extendedPageListLength, &BootLoader::takeExtendedPages},
    {listLength, &BootLoader::takeSectors},
};

// A command is either answered at once or confirmed and followed by more input.
struct BootLoader::Command
{
    std::uint8_t code;
    bool isAlwaysAllowed; // also while the flash is protected against reading out
    Phase next;
    void (BootLoader::*action)();
};

const BootLoader::Command BootLoader::commands[] = {
    {GET, true, AwaitsCommand, &BootLoader::tellCommands},
    {GET_VERSION, true, AwaitsCommand, &BootLoader::tellVersion},
    {GET_ID, true, AwaitsCommand, &BootLoader::tellId},
    {READ_MEMORY, false, AwaitsAddress, nullptr},
    {GO, false, AwaitsAddress, nullptr},
    {WRITE_MEMORY, false, AwaitsAddress, nullptr},
    {ERASE, false, AwaitsPages, nullptr},
    {EXTENDED_ERASE, false, AwaitsExtendedPages, nullptr},
    {WRITE_PROTECT, false, AwaitsSectors, nullptr},
    {WRITE_UNPROTECT, false, AwaitsCommand, &BootLoader::releaseSectors},
    {READOUT_PROTECT, false, AwaitsCommand, &BootLoader::protectReadout},
    {READOUT_UNPROTECT, true, AwaitsCommand, &BootLoader::releaseReadout},
};

BootLoader::BootLoader(MachineState &machine)
    : state(machine.bootLoader)
    , faults(machine)
    , mcu(machine)
    , memory(machine.bootLoader)
{ }

std::vector<std::uint8_t> BootLoader::receive(std::span<const std::uint8_t> bytes)
{
    reply.clear();
    for (const std::uint8_t byte : bytes) {
        // Checked for each byte, because any byte may make the MCU leave its boot loader.
        if (!mcu.isInBootLoader())
            break;
        joinConversation();
        if (!isDead())
            take(byte);
    }
    return reply;
}

bool BootLoader::isDead() const
{
    if (faults.isOn(Fault::FlashSilent) && state.versionAsked.load() != 0)
        return true;
    const auto lastBlock = faults.value(Fault::FlashUnplugged);
    return lastBlock && state.blocksWritten.load() >= static_cast<std::uint32_t>(*lastBlock);
}

// A start of the MCU ends the conversation before it.
void BootLoader::joinConversation()
{
    const std::uint32_t run = mcu.run();
    if (state.conversationRun.load() == run)
        return;
    state.versionAsked.store(0);
    state.blocksWritten.store(0);
    await(AwaitsInit);
    state.conversationRun.store(run);
}

void BootLoader::take(std::uint8_t byte)
{
    const std::uint8_t phase = state.phase.load();
    if (phase == AwaitsInit) {
        answerInit(byte);
        return;
    }
    const std::size_t received = state.received.load();
    state.input[received].store(byte);
    state.received.store(static_cast<std::uint16_t>(received + 1));
    const std::vector<std::uint8_t> input(state.input.begin(), state.input.begin() + received + 1);
    const Step &step = steps[phase - AwaitsCommand];
    if (input.size() < step.length(input))
        return;
    await(AwaitsCommand); // unless the step asks for more
    (this->*step.finish)(input);
}

// The chip measures the baud rate with INIT; before that, other bytes are noise to it.
void BootLoader::answerInit(std::uint8_t byte)
{
    if (byte != INIT)
        return;
    await(AwaitsCommand);
    confirm(!faults.isOn(Fault::FlashInitNoise));
}

void BootLoader::await(Phase phase)
{
    state.received.store(0);
    state.phase.store(phase);
}

void BootLoader::confirm(bool isGood)
{
    answer(isGood ? ACK : NACK);
}

void BootLoader::takeCommand(Input input)
{
    const auto *known = std::find_if(std::begin(commands), std::end(commands),
        [&input](const Command &row) { return row.code == input[0]; });
    const bool isAllowed =
        known != std::end(commands) && (known->isAlwaysAllowed || state.readoutProtected.load() == 0);
    if (!isComplement(input) || !isAllowed) {
        confirm(false);
        return;
    }
    state.command.store(known->code);
    confirm(true);
    if (known->action != nullptr)
        (this->*known->action)();
    else
        await(known->next);
}

} // namespace tarnSimulator
