#pragma once

#include "simulator/machine_state.h"

#include <algorithm>
#include <array>
#include <string>
#include <string_view>

// Short texts in the shared state. A reader may see a mix of the old and the new text during a write, but
// never reads beyond the array.
namespace tarnSimulator {

template <std::size_t size> void storeText(std::array<SharedByte, size> &shared, std::string_view text)
{
    const std::size_t length = std::min(text.size(), size - 1);
    for (std::size_t i = 0; i < size; ++i)
        shared[i].store(i < length ? static_cast<std::uint8_t>(text[i]) : 0);
}

template <std::size_t size> [[nodiscard]] std::string loadText(const std::array<SharedByte, size> &shared)
{
    std::string text;
    for (std::size_t i = 0; i + 1 < size; ++i) {
        const std::uint8_t byte = shared[i].load();
        if (byte == 0)
            break;
        text.push_back(static_cast<char>(byte));
    }
    return text;
}

} // namespace tarnSimulator
