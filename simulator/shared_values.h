#pragma once

#include <atomic>
#include <cstdint>

// What the state of the simulated computer is made of: programs of different compilers share it.
namespace tarnSimulator {

using SharedByte = std::atomic<std::uint8_t>;
using SharedHalf = std::atomic<std::uint16_t>;
using SharedWord = std::atomic<std::uint32_t>;
using SharedInt = std::atomic<std::int32_t>;
using SharedLong = std::atomic<std::uint64_t>;

static_assert(SharedByte::is_always_lock_free && sizeof(SharedByte) == 1);
static_assert(SharedHalf::is_always_lock_free && sizeof(SharedHalf) == 2);
static_assert(SharedWord::is_always_lock_free && sizeof(SharedWord) == 4);
static_assert(SharedInt::is_always_lock_free && sizeof(SharedInt) == 4);
static_assert(SharedLong::is_always_lock_free && sizeof(SharedLong) == 8);

} // namespace tarnSimulator
