#include "simulator/boot_loader.h"

#include <algorithm>
#include <array>
#include <functional>
#include <iterator>
#include <numeric>

namespace tarnSimulator {

namespace {

constexpr std::uint8_t INIT = 0x7F;
constexpr std::uint8_t ACK = 0x79;
constexpr std::uint8_t NACK = 0x1F;

constexpr std::uint8_t VERSION = 0x22;
constexpr std::uint16_t DEVICE_ID = 0x410; // STM32F10x, medium density

constexpr std::uint8_t GET = 0x00;
constexpr std::uint8_t GET_VERSION = 0x01;
constexpr std::uint8_t GET_ID = 0x02;
constexpr std::uint8_t READ_MEMORY = 0x11;
constexpr std::uint8_t GO = 0x21;
constexpr std::uint8_t WRITE_MEMORY = 0x31;
constexpr std::uint8_t ERASE = 0x43;
constexpr std::uint8_t EXTENDED_ERASE = 0x44;
constexpr std::uint8_t WRITE_PROTECT = 0x63;
constexpr std::uint8_t WRITE_UNPROTECT = 0x73;
constexpr std::uint8_t READOUT_PROTECT = 0x82;
constexpr std::uint8_t READOUT_UNPROTECT = 0x92;

constexpr std::uint8_t ALL_PAGES = 0xFF;
constexpr std::uint16_t ALL_PAGES_EXTENDED = 0xFFFF;
constexpr std::uint16_t FIRST_SPECIAL_ERASE = 0xFFF0;

constexpr std::size_t CORRUPT_OFFSET = 0x300; // of the byte in flash that the fault reads back wrong

std::uint8_t xorOf(std::span<const std::uint8_t> bytes)
{
    return std::accumulate(bytes.begin(), bytes.end(), std::uint8_t {0}, std::bit_xor<std::uint8_t>());
}

bool isComplement(std::span<const std::uint8_t> pair)
{
    return xorOf(pair) == 0xFF;
}

std::uint16_t halfAt(std::span<const std::uint8_t> bytes, std::size_t offset)
{
    return static_cast<std::uint16_t>(bytes[offset] << 8 | bytes[offset + 1]);
}

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

// More pages than there are: refused without waiting for them.
std::size_t extendedPageListLength(std::span<const std::uint8_t> input)
{
    if (input.size() < 2) {
        return 2;
    }
    const std::uint16_t last = halfAt(input, 0);
    if (last >= FIRST_SPECIAL_ERASE) {
        return 3;
    }
    return last < MCU_PAGES ? 2 + (std::size_t {last} + 1) * 2 + 1 : 2;
}

} // namespace

enum BootLoader::Phase : std::uint8_t {
    AwaitsInit,
    AwaitsCommand,
    AwaitsAddress,
    AwaitsReadCount,
    AwaitsWriteData,
    AwaitsPages,
    AwaitsExtendedPages,
    AwaitsSectors,
};

// What is sent in one piece and answered as a whole; in the order of the phases, from AwaitsCommand on.
struct BootLoader::Step
{
    Length length; // of the whole piece, as far as the input that is there tells
    void (BootLoader::*finish)(Input input);
};

const BootLoader::Step BootLoader::STEPS[] = {
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

const BootLoader::Command BootLoader::COMMANDS[] = {
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
        // Each byte may be the one that makes it leave.
        if (!mcu.isInBootLoader()) {
            break;
        }
        joinConversation();
        if (!isDead()) {
            take(byte);
        }
    }
    return reply;
}

bool BootLoader::isDead() const
{
    if (faults.isOn(Fault::FlashSilent) && state.versionAsked.load() != 0) {
        return true;
    }
    const auto lastBlock = faults.value(Fault::FlashUnplugged);
    return lastBlock && state.blocksWritten.load() >= static_cast<std::uint32_t>(*lastBlock);
}

// A start of the MCU ends whatever was going on.
void BootLoader::joinConversation()
{
    const std::uint32_t run = mcu.run();
    if (state.conversationRun.load() == run) {
        return;
    }
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
    const Step &step = STEPS[phase - AwaitsCommand];
    if (input.size() < step.length(input)) {
        return;
    }
    await(AwaitsCommand); // unless the step asks for more
    (this->*step.finish)(input);
}

// The host's speed is measured with this byte; others are noise to a chip that does not know the speed yet.
void BootLoader::answerInit(std::uint8_t byte)
{
    if (byte != INIT) {
        return;
    }
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
    const auto *known = std::find_if(std::begin(COMMANDS), std::end(COMMANDS),
        [&input](const Command &row) { return row.code == input[0]; });
    const bool isAllowed =
        known != std::end(COMMANDS) && (known->isAlwaysAllowed || state.readoutProtected.load() == 0);
    if (!isComplement(input) || !isAllowed) {
        confirm(false);
        return;
    }
    state.command.store(known->code);
    confirm(true);
    if (known->action != nullptr) {
        (this->*known->action)();
    } else {
        await(known->next);
    }
}

void BootLoader::takeAddress(Input input)
{
    state.address.store(std::uint32_t {halfAt(input, 0)} << 16 | halfAt(input, 2));
    if (xorOf(input) != 0 || !isAddressGood()) {
        confirm(false);
        return;
    }
    confirm(true);
    switch (state.command.load()) {
    case READ_MEMORY:
        await(AwaitsReadCount);
        break;
    case WRITE_MEMORY:
        await(AwaitsWriteData);
        break;
    default:
        go();
    }
}

bool BootLoader::isAddressGood() const
{
    const std::uint32_t address = state.address.load();
    switch (state.command.load()) {
    case READ_MEMORY:
        return McuMemory::isReadable(address);
    case WRITE_MEMORY:
        return McuMemory::flashOffset(address).has_value() || McuMemory::isFreeRam(address);
    default:
        return !faults.isOn(Fault::FlashGoRefused)
            && (McuMemory::flashOffset(address).has_value() || McuMemory::isFreeRam(address));
    }
}

void BootLoader::takeReadCount(Input input)
{
    const std::uint32_t address = state.address.load();
    auto bytes = memory.read(address, std::size_t {input[0]} + 1);
    if (!isComplement(input) || !bytes) {
        confirm(false);
        return;
    }
    if (const auto offset = McuMemory::flashOffset(address); offset && faults.isOn(Fault::FlashCorrupt)
        && CORRUPT_OFFSET >= *offset && CORRUPT_OFFSET - *offset < bytes->size()) {
        bytes->at(CORRUPT_OFFSET - *offset) ^= 1;
    }
    confirm(true);
    reply.insert(reply.end(), bytes->begin(), bytes->end());
}

void BootLoader::takeWriteData(Input input)
{
    const std::uint32_t address = state.address.load();
    const bool isFlash = McuMemory::flashOffset(address).has_value();
    const auto lastBlock = faults.value(Fault::FlashWriteRefused);
    const bool isRefused =
        isFlash && lastBlock && state.blocksWritten.load() >= static_cast<std::uint32_t>(*lastBlock);
    if (xorOf(input) != 0 || isRefused || !memory.write(address, input.subspan(1, input.size() - 2))) {
        confirm(false);
        return;
    }
    if (isFlash) {
        state.blocksWritten.fetch_add(1);
    }
    confirm(true);
}

void BootLoader::takePages(Input input)
{
    if (input[0] == ALL_PAGES) {
        confirm(isComplement(input) && eraseAll());
        return;
    }
    const Input entries = input.subspan(1, input.size() - 2);
    confirm(xorOf(input) == 0 && erasePages(std::vector<std::size_t>(entries.begin(), entries.end())));
}

void BootLoader::takeExtendedPages(Input input)
{
    const std::uint16_t last = halfAt(input, 0);
    if (input.size() == 2 || xorOf(input) != 0) {
        confirm(false);
        return;
    }
    if (last >= FIRST_SPECIAL_ERASE) {
        confirm(last == ALL_PAGES_EXTENDED && eraseAll());
        return;
    }
    std::vector<std::size_t> pages;
    for (std::size_t i = 2; i + 1 < input.size(); i += 2) {
        pages.push_back(halfAt(input, i));
    }
    confirm(erasePages(pages));
}

bool BootLoader::eraseAll()
{
    state.blocksWritten.store(0);
    return memory.eraseAll();
}

bool BootLoader::erasePages(std::span<const std::size_t> pages)
{
    state.blocksWritten.store(0);
    return std::all_of(
        pages.begin(), pages.end(), [this](std::size_t page) { return memory.erasePage(page); });
}

// The two kinds of protection come into force with a reset, which the chip does by itself.
void BootLoader::takeSectors(Input input)
{
    const Input sectors = input.subspan(1, input.size() - 2);
    const bool allThere =
        std::all_of(sectors.begin(), sectors.end(), [](std::uint8_t sector) { return sector < MCU_SECTORS; });
    if (xorOf(input) != 0 || !allThere) {
        confirm(false);
        return;
    }
    std::uint32_t mask = 0;
    for (const std::uint8_t sector : sectors) {
        mask |= 1U << sector;
    }
    state.writeProtected.store(mask);
    confirm(true);
    mcu.restart(state.conversationRun.load());
}

void BootLoader::releaseSectors()
{
    state.writeProtected.store(0);
    confirm(true);
    mcu.restart(state.conversationRun.load());
}

void BootLoader::protectReadout()
{
    state.readoutProtected.store(1);
    confirm(true);
    mcu.restart(state.conversationRun.load());
}

// Costs the contents of the flash: that is the sense of the protection.
void BootLoader::releaseReadout()
{
    state.writeProtected.store(0);
    state.readoutProtected.store(0);
    static_cast<void>(eraseAll());
    confirm(true);
    mcu.restart(state.conversationRun.load());
}

// This chip has the plain erase command. The extended one, which later chips have in its place, is understood
// as well, but not told.
void BootLoader::tellCommands()
{
    constexpr std::uint8_t TOLD[] = {GET, GET_VERSION, GET_ID, READ_MEMORY, GO, WRITE_MEMORY, ERASE,
        WRITE_PROTECT, WRITE_UNPROTECT, READOUT_PROTECT, READOUT_UNPROTECT};
    answer(std::size(TOLD)); // the number of bytes less one: the version comes first
    answer(VERSION);
    reply.insert(reply.end(), std::begin(TOLD), std::end(TOLD));
    confirm(true);
}

void BootLoader::tellVersion()
{
    state.versionAsked.store(1);
    if (isDead()) {
        return;
    }
    answer(VERSION);
    answer(0); // two bytes that were once about read protection
    answer(0);
    confirm(true);
}

void BootLoader::tellId()
{
    answer(1); // the number of bytes less one
    answer(DEVICE_ID >> 8);
    answer(DEVICE_ID & 0xFF);
    confirm(true);
}

// From RAM nothing can be run here but what flashers put there: a few instructions that reset the MCU.
void BootLoader::go()
{
    const auto offset = McuMemory::flashOffset(state.address.load());
    if (!offset) {
        mcu.restart(state.conversationRun.load());
    } else if (*offset == 0) {
        mcu.startFirmware(state.conversationRun.load());
    } else {
        mcu.leaveForNothing(state.conversationRun.load());
    }
}

} // namespace tarnSimulator
