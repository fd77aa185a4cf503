#include "simulator/boot_loader.h"
#include "simulator/boot_protocol.h"

#include <algorithm>
#include <iterator>

// What the boot loader does once a command, or a further piece of one, is complete.
namespace tarnSimulator {

using namespace bootProtocol;

namespace {

constexpr std::uint8_t protocolVersion = 0x22; // 2.2
constexpr std::uint16_t deviceId = 0x410; // STM32F10x, medium density

constexpr std::size_t corruptOffset = 0x300; // of the byte in flash that the fault reads back wrong

} // namespace

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
        && corruptOffset >= *offset && corruptOffset - *offset < bytes->size()) {
        bytes->at(corruptOffset - *offset) ^= 1;
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
    if (isFlash)
        state.blocksWritten.fetch_add(1);
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
    for (std::size_t i = 2; i + 1 < input.size(); i += 2)
        pages.push_back(halfAt(input, i));
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
        std::all_of(sectors.begin(), sectors.end(), [](std::uint8_t sector) { return sector < mcuSectors; });
    if (xorOf(input) != 0 || !allThere) {
        confirm(false);
        return;
    }
    std::uint32_t mask = 0;
    for (const std::uint8_t sector : sectors)
        mask |= 1U << sector;
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

// Erases the flash, so that protected contents cannot be read out.
void BootLoader::releaseReadout()
{
    state.writeProtected.store(0);
    state.readoutProtected.store(0);
    static_cast<void>(eraseAll());
    confirm(true);
    mcu.restart(state.conversationRun.load());
}

// This chip has the plain erase command. The extended one, which later chips have in its place, is understood
// as well, but not listed.
void BootLoader::tellCommands()
{
    constexpr std::uint8_t told[] = {GET, GET_VERSION, GET_ID, READ_MEMORY, GO, WRITE_MEMORY, ERASE,
        WRITE_PROTECT, WRITE_UNPROTECT, READOUT_PROTECT, READOUT_UNPROTECT};
    answer(std::size(told)); // the number of bytes less one: the version comes first
    answer(protocolVersion);
    reply.insert(reply.end(), std::begin(told), std::end(told));
    confirm(true);
}

void BootLoader::tellVersion()
{
    state.versionAsked.store(1);
    if (isDead())
        return;
    answer(protocolVersion);
    answer(0); // two bytes that once described the read protection
    answer(0);
    confirm(true);
}

void BootLoader::tellId()
{
    answer(1); // the number of bytes less one
    answer(deviceId >> 8);
    answer(deviceId & 0xFF);
    confirm(true);
}

// Code in RAM is not executed. Flashers put there only a few instructions that reset the MCU, so a start in
// RAM resets it here.
void BootLoader::go()
{
    const auto offset = McuMemory::flashOffset(state.address.load());
    if (!offset)
        mcu.restart(state.conversationRun.load());
    else if (*offset == 0)
        mcu.startFirmware(state.conversationRun.load());
    else
        mcu.leaveForNothing(state.conversationRun.load());
}

} // namespace tarnSimulator
