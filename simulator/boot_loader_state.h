#pragma once

#include "simulator/shared_values.h"

#include <array>
#include <cstddef>

namespace tarnSimulator {

// The accessory's MCU is an STM32F10x of medium density.
inline constexpr std::size_t mcuFlashSize = 0x20000;
inline constexpr std::size_t mcuRamSize = 0x5000;
// The longest input of the boot loader that has to be kept: an extended erase of all 128 pages.
inline constexpr std::size_t bootLoaderInputSize = 288;

// The MCU of the KVane: its memories, and the state of the conversation with its boot loader.
struct BootLoaderState
{
    SharedWord run; // number of starts << 8 | McuMode; changed by compare-exchange only
    SharedWord conversationRun; // the value of `run` that the conversation below belongs to
    SharedWord address;
    SharedWord blocksWritten; // since the last start or erase
    SharedWord writeProtected; // a bit for each of the 32 sectors of 4 KiB
    SharedHalf received; // bytes of the input so far
    SharedByte phase;
    SharedByte command;
    SharedByte versionAsked;
    SharedByte readoutProtected;
    std::array<SharedByte, 6> reserved;
    std::array<SharedByte, bootLoaderInputSize> input;
    std::array<SharedByte, mcuRamSize> ram;
    std::array<SharedByte, mcuFlashSize> flash;
};

static_assert(offsetof(BootLoaderState, received) == 20);
static_assert(offsetof(BootLoaderState, input) == 32);
static_assert(offsetof(BootLoaderState, ram) == 320);
static_assert(offsetof(BootLoaderState, flash) == 20800);
static_assert(sizeof(BootLoaderState) == 151872);

} // namespace tarnSimulator
