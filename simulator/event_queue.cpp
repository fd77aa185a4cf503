#include "simulator/event_queue.h"

#include <algorithm>

namespace tarnSimulator {

namespace {

constexpr AppEvent unpack(std::uint64_t slot)
{
    return {static_cast<std::uint8_t>(slot & 0xFF), static_cast<std::uint8_t>(slot >> 8 & 0xFF)};
}

} // namespace

// The ticket is above code and data in the slot, so comparing slots compares tickets. A process that is
// killed between taking a ticket and filling a slot leaves a gap in the numbers and nothing else.
bool EventQueue::arm(AppEvent event)
{
    const std::uint64_t ticket = shared.lastTicket.fetch_add(1) + 1;
    const std::uint64_t filled = ticket << 16 | static_cast<std::uint64_t>(event.data) << 8 | event.code;
    return std::any_of(shared.waiting.begin(), shared.waiting.end(), [filled](SharedLong &slot) {
        std::uint64_t empty = 0;
        return slot.compare_exchange_strong(empty, filled);
    });
}

std::optional<AppEvent> EventQueue::take()
{
    for (;;) {
        SharedLong *oldest = nullptr;
        std::uint64_t oldestValue = 0;
        for (SharedLong &slot : shared.waiting) {
            const std::uint64_t value = slot.load();
            if (value != 0 && (oldest == nullptr || value < oldestValue)) {
                oldest = &slot;
                oldestValue = value;
            }
        }
        if (oldest == nullptr)
            return std::nullopt;
        if (oldest->compare_exchange_strong(oldestValue, 0))
            return unpack(oldestValue);
    }
}

std::vector<AppEvent> EventQueue::waiting() const
{
    std::vector<std::uint64_t> used;
    for (const SharedLong &slot : shared.waiting) {
        if (const std::uint64_t value = slot.load(); value != 0)
            used.push_back(value);
    }
    std::sort(used.begin(), used.end());

    std::vector<AppEvent> events;
    std::transform(used.begin(), used.end(), std::back_inserter(events), unpack);
    return events;
}

} // namespace tarnSimulator
