#pragma once

#include <cstdint>

namespace tarnSimulator {

enum class AccessKind : std::uint8_t { Read = 1, Write = 2 };

// One completed register access, as the register log keeps it.
struct RegisterAccess
{
    std::uint64_t number = 0; // counted from 1 since the state was created
    std::uint64_t timeMs = 0;
    AccessKind kind = AccessKind::Read;
    std::uint16_t address = 0;
    std::uint8_t value = 0;
};

} // namespace tarnSimulator
