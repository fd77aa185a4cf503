#pragma once

#include "simulator/recording/channel_decoder.h"

#include <array>
#include <cstdint>
#include <map>
#include <string>
#include <vector>

namespace tarnSimulator {

// Something that the recorded EC did and the model does not.
struct Deviation
{
    enum class Kind {
        WrongValue, // also an access that the EC did not let the host finish
        Measurement, // what the EC measures or reports of itself changed
        Timing, // slower than the factor allows
    };

    Kind kind = Kind::WrongValue;
    std::string what {}; // without the times, so that repeats are equal
    std::uint64_t number = 0; // of the port access at which it was first seen
    std::uint64_t us = 0; // when that was
    std::uint64_t count = 1;
    std::uint64_t longestUs = 0; // of Timing: the EC took at least so long; 0: no time
    std::uint64_t allowedUs = 0;
};

// Deviations in the order in which they were first seen. Equal ones are counted.
class DeviationList
{
public:
    // Of a kind; nobody reads more, and a file that somebody sent may have millions.
    static constexpr std::size_t mostDifferent = 200;

    void add(const Deviation &deviation) { add(known, deviation); }
    // Keeps one back until it is certain that the computer was not changed from outside.
    void suspend(const Deviation &deviation) { add(suspended, deviation); }
    void addSuspended();
    void dropSuspended() { suspended = {}; }

    [[nodiscard]] std::vector<Deviation> of(Deviation::Kind kind) const;
    // How often there were others than those.
    [[nodiscard]] std::uint64_t others(Deviation::Kind kind) const { return of(known, kind).others; }
    [[nodiscard]] bool has(Deviation::Kind kind) const { return !of(known, kind).different.empty(); }

private:
    struct Group
    {
        std::vector<Deviation> different;
        std::map<std::string, std::size_t> places; // of each text in these
        std::uint64_t others = 0;
    };
    using Groups = std::array<Group, 3>; // of each kind

    static void add(Groups &groups, const Deviation &deviation);
    static const Group &of(const Groups &groups, Deviation::Kind kind)
    {
        return groups.at(static_cast<std::size_t>(kind));
    }

    Groups known;
    Groups suspended;
};

// "0x04AB EC_POWERMODE_PL1_CHECK is 0x27 (39), expected 0x1C (28)".
[[nodiscard]] std::string valueDifference(const DecodedAccess &access, std::uint8_t expected);

} // namespace tarnSimulator
