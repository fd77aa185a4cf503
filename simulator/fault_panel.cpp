#include "simulator/fault_panel.h"

namespace tarnSimulator {

namespace {

// Counts one access down; true when there was nothing left to count. Never goes below zero, also when several
// programs count.
bool isUsedUp(SharedWord &remaining)
{
    std::uint32_t left = remaining.load();
    while (left > 0) {
        if (remaining.compare_exchange_weak(left, left - 1))
            return false;
    }
    return true;
}

constexpr std::uint64_t bitOf(Fault fault)
{
    return std::uint64_t {1} << static_cast<unsigned>(fault);
}

} // namespace

void FaultPanel::switchOn(Fault fault, std::int32_t value, std::uint32_t skip)
{
    static_assert(faultSlots <= 64); // bits of `seen`
    seen.fetch_or(bitOf(fault));
    FaultState &shared = slot(fault);
    shared.on.store(0); // the EC must not see the old value with the new count
    shared.value.store(value);
    shared.remaining.store(skip);
    shared.on.store(1);
}

void FaultPanel::switchOff(Fault fault)
{
    slot(fault).on.store(0);
}

void FaultPanel::clear()
{
    for (const FaultDescription &row : faultTable())
        switchOff(row.fault);
}

bool FaultPanel::isOn(Fault fault) const
{
    return slot(fault).on.load() != 0;
}

bool FaultPanel::wasOn(Fault fault) const
{
    return (seen.load() & bitOf(fault)) != 0;
}

std::optional<std::int32_t> FaultPanel::value(Fault fault) const
{
    if (!isOn(fault))
        return std::nullopt;
    return slot(fault).value.load();
}

std::uint32_t FaultPanel::remaining(Fault fault) const
{
    return slot(fault).remaining.load();
}

bool FaultPanel::refuses(AccessKind kind, std::uint16_t address)
{
    const Fault ofKind = kind == AccessKind::Read ? Fault::FailRead : Fault::FailWrite;
    // Each of them counts its own accesses, so all three must be called.
    const bool registerFails = strikesAt(Fault::FailRegister, address);
    const bool directionFails = strikesAt(ofKind, address);
    const bool turnFails = strikesOnce();
    return registerFails || directionFails || turnFails;
}

bool FaultPanel::refusesDevice(Fault fault, std::int32_t deviceSlot)
{
    const auto chosen = value(fault);
    return chosen && (*chosen == everyDevice || *chosen == deviceSlot) && isUsedUp(slot(fault).remaining);
}

bool FaultPanel::refusesList()
{
    return isOn(Fault::FailDeviceList) && isUsedUp(slot(Fault::FailDeviceList).remaining);
}

bool FaultPanel::strikesAt(Fault fault, std::uint16_t address)
{
    return value(fault) == address && isUsedUp(slot(fault).remaining);
}

bool FaultPanel::strikesOnce()
{
    if (!isOn(Fault::FailAfter) || !isUsedUp(slot(Fault::FailAfter).remaining))
        return false;
    switchOff(Fault::FailAfter);
    return true;
}

} // namespace tarnSimulator
