#pragma once

#include "simulator/machine_state.h"
#include "simulator/register_access.h"

#include <optional>
#include <vector>

namespace tarnSimulator {

// What a reader got from the log. `cursor` is handed in again to continue.
struct LogReading
{
    std::vector<RegisterAccess> accesses;
    std::uint64_t cursor = 0; // number of the last access that was read or skipped
    std::uint64_t lost = 0; // accesses that were overwritten before they were read
};

// Ring of the last logEntries accesses. Any number of processes may read while the EC appends.
class RegisterLog
{
public:
    explicit RegisterLog(RegisterLogState &ring)
        : shared(ring)
    { }

    void append(AccessKind kind, std::uint16_t address, std::uint8_t value, std::uint64_t nowMs);

    // Number of the newest access, 0 when there was none yet.
    [[nodiscard]] std::uint64_t end() const;

    // Everything after the access number `cursor`; 0 reads from the oldest one that is still kept.
    [[nodiscard]] LogReading readAfter(std::uint64_t cursor) const;

    // One access by its number; empty when it is not kept any more or not complete yet.
    [[nodiscard]] std::optional<RegisterAccess> find(std::uint64_t number) const;

private:
    [[nodiscard]] bool anyWrittenAfter(std::uint64_t number, std::uint64_t newest) const;

    RegisterLogState &shared;
};

} // namespace tarnSimulator
