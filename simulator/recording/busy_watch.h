#pragma once

#include "simulator/recording/deviation.h"

#include <cstdint>
#include <optional>
#include <string>

namespace tarnSimulator {

// Follows the operations of a mailbox in a recording: how long each was seen at work at least. The host may
// look late or not at all; then nothing is known, and that is no deviation.
class BusyWatch
{
public:
    BusyWatch(std::string mailboxName, std::uint64_t allowedUs)
        : name(std::move(mailboxName))
        , allowed(allowedUs)
    { }

    [[nodiscard]] bool isRunning() const { return operation.has_value(); }
    // The command, and the code by which it shows that it is at work.
    [[nodiscard]] std::uint8_t busyValue() const { return operation->busyValue; }
    void begin(const DecodedAccess &command, std::uint8_t busyValue);
    void seeBusy(const DecodedAccess &look);
    void seeDone(DeviationList &deviations);
    // The host has given up, or the recording ends. True when the operation cannot have been carried out.
    [[nodiscard]] bool giveUp(DeviationList &deviations);

private:
    struct Operation
    {
        std::uint8_t busyValue;
        std::uint64_t number;
        std::uint64_t us;
        std::uint64_t takenUs; // the EC had the command by then
        std::uint64_t busyUs; // at least
    };

    [[nodiscard]] Deviation slow() const;

    std::string name;
    std::uint64_t allowed;
    std::optional<Operation> operation;
};

} // namespace tarnSimulator
