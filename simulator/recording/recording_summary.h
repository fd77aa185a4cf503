#pragma once

#include "simulator/recording/channel_decoder.h"

#include <cstdint>
#include <map>
#include <vector>

namespace tarnSimulator {

// Times of one kind.
class TimeSpread
{
public:
    void add(std::uint64_t us) { times.push_back(us); }
    [[nodiscard]] std::size_t count() const { return times.size(); }
    // The smallest time that so large a share of all does not exceed; 0 without times.
    [[nodiscard]] std::uint64_t quantile(double share) const;

private:
    std::vector<std::uint64_t> times;
};

// What a recording tells of one register.
struct RegisterSummary
{
    std::uint64_t reads = 0;
    std::uint64_t writes = 0;
    std::map<std::uint8_t, std::uint64_t> readValues; // and how often each
    std::map<std::uint8_t, std::uint64_t> writtenValues;
    TimeSpread acceptanceUs; // of all bytes
    TimeSpread answerUs;
};

[[nodiscard]] std::map<std::uint16_t, RegisterSummary> summaryOf(const std::vector<DecodedAccess> &accesses);

} // namespace tarnSimulator
