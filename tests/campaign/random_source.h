#pragma once

#include <cstdint>
#include <iterator>
#include <random>

namespace tarnCampaign {

// The campaign's random numbers. One seed gives the same numbers on every system, which the distributions of
// the standard library do not promise.
class RandomSource
{
public:
    explicit RandomSource(std::uint64_t seed)
        : engine(seed)
    { }

    // From 0 to one less than the bound, which is at least 1.
    [[nodiscard]] int below(int bound)
    {
        return static_cast<int>(engine() % static_cast<std::uint64_t>(bound));
    }
    [[nodiscard]] std::uint8_t byte() { return static_cast<std::uint8_t>(below(256)); }
    [[nodiscard]] bool oneIn(int count) { return below(count) == 0; }
    template <typename Rows> [[nodiscard]] const auto &oneOf(const Rows &rows)
    {
        return *std::next(std::begin(rows), below(static_cast<int>(std::size(rows))));
    }

private:
    std::mt19937_64 engine;
};

} // namespace tarnCampaign
