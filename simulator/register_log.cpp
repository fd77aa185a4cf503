#include "simulator/register_log.h"

#include <algorithm>

namespace tarnSimulator {

namespace {

constexpr std::uint32_t pack(AccessKind kind, std::uint16_t address, std::uint8_t value)
{
    return static_cast<std::uint32_t>(kind) << 24 | static_cast<std::uint32_t>(address) << 8 | value;
}

constexpr std::size_t slotOf(std::uint64_t number)
{
    return static_cast<std::size_t>(number % logEntries);
}

} // namespace

// The stamp goes to 0 before the fields change and to its new number after them. The stores and loads of the
// fields carry the ordering, so that a reader who sees a new field also sees that the old stamp is gone.
void RegisterLog::append(AccessKind kind, std::uint16_t address, std::uint8_t value, std::uint64_t nowMs)
{
    const std::uint64_t number = shared.lastStamp.fetch_add(1) + 1;
    LogEntryState &slot = shared.entries[slotOf(number)];
    slot.stamp.store(0, std::memory_order_relaxed);
    slot.timeMs.store(nowMs, std::memory_order_release);
    slot.access.store(pack(kind, address, value), std::memory_order_release);
    slot.stamp.store(number, std::memory_order_release);
}

std::uint64_t RegisterLog::end() const
{
    return shared.lastStamp.load();
}

LogReading RegisterLog::readAfter(std::uint64_t cursor) const
{
    const std::uint64_t newest = end();
    const std::uint64_t kept = newest > logEntries ? newest - logEntries : 0;

    LogReading reading;
    // A cursor beyond the end belongs to another state file: begin again.
    const std::uint64_t start = cursor > newest ? 0 : cursor;
    reading.cursor = std::max(start, kept);
    // A reader who starts at 0 asks for what is kept and has lost nothing.
    reading.lost = start == 0 ? 0 : reading.cursor - start;

    while (reading.cursor < newest) {
        const std::uint64_t number = reading.cursor + 1;
        if (const auto access = find(number)) {
            reading.accesses.push_back(*access);
        } else if (anyWrittenAfter(number, newest)) {
            ++reading.lost; // overwritten meanwhile, or its writer was killed before it had finished
        } else {
            break; // still being written
        }
        reading.cursor = number;
    }
    return reading;
}

std::optional<RegisterAccess> RegisterLog::find(std::uint64_t number) const
{
    const LogEntryState &slot = shared.entries[slotOf(number)];
    if (slot.stamp.load(std::memory_order_acquire) != number)
        return std::nullopt;
    RegisterAccess access;
    access.number = number;
    access.timeMs = slot.timeMs.load(std::memory_order_acquire);
    const std::uint32_t packed = slot.access.load(std::memory_order_acquire);
    if (slot.stamp.load(std::memory_order_relaxed) != number)
        return std::nullopt;
    access.kind = static_cast<AccessKind>(packed >> 24);
    access.address = static_cast<std::uint16_t>(packed >> 8 & 0xFFFF);
    access.value = static_cast<std::uint8_t>(packed & 0xFF);
    return access;
}

bool RegisterLog::anyWrittenAfter(std::uint64_t number, std::uint64_t newest) const
{
    if (shared.entries[slotOf(number)].stamp.load() > number)
        return true;
    for (std::uint64_t later = number + 1; later <= newest; ++later) {
        if (shared.entries[slotOf(later)].stamp.load() >= later)
            return true;
    }
    return false;
}

} // namespace tarnSimulator
