#pragma once

#include "simulator/shared_values.h"

#include <array>
#include <cstddef>

namespace tarnSimulator {

inline constexpr std::size_t replayPathSize = 1024; // sizes of texts count their final zero
inline constexpr std::size_t replayTextSize = 512;
inline constexpr std::size_t replayedRegisters = 256;

// How far a loose replay has come with one register.
struct ReplayedRegisterState
{
    SharedWord reads;
    SharedWord writes;
    SharedHalf address;
    SharedHalf used;
};

// A recording from which the computer answers in the place of the EC's model. The port library may be
// reloaded in the middle of it, so all that is to be kept is here.
struct ReplayState
{
    SharedByte mode; // ReplayMode
    SharedByte differs; // 1: the service has done something else than what was recorded
    std::array<SharedByte, 2> reserved;
    SharedWord steps; // done from outside, of stepsTotal
    SharedWord stepsTotal;
    SharedWord records; // in all; 0 in a loose replay
    SharedLong record; // the next one
    SharedLong repeats; // of it, that have been consumed
    SharedLong consumed; // port accesses, in a loose replay register accesses; of total
    SharedLong total;
    SharedLong after; // accesses of the service after the end or the difference
    std::array<SharedByte, replayPathSize> file;
    std::array<SharedByte, replayTextSize> difference; // the first one
    std::array<ReplayedRegisterState, replayedRegisters> registers;
};

static_assert(sizeof(ReplayedRegisterState) == 12);
static_assert(sizeof(ReplayState) == 56 + 1024 + 512 + 256 * 12);

} // namespace tarnSimulator
