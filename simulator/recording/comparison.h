#pragma once

#include "simulator/recording/busy_watch.h"
#include "simulator/recording/channel_decoder.h"
#include "simulator/recording/deviation.h"
#include "simulator/recording/model_machine.h"

#include <cstdint>

namespace tarnSimulator {

// Gives the accesses of a recording to the model and notes where the recorded EC answered otherwise, or more
// than `factor` times slower.
//
// What comes from outside is adopted and not judged: accessory, events, and every value before the host or
// an earlier look has determined it. What the EC measures may change by itself; that is noted as such.
class Comparison
{
public:
    explicit Comparison(double factor);

    void take(const DecodedAccess &access);
    // An access that was not possible, which the model would have answered.
    void take(const Oddity &oddity);
    // Nothing comes after this.
    void finish();

    // Answers that could have been wrong.
    [[nodiscard]] std::uint64_t compared() const { return judged; }
    [[nodiscard]] const DeviationList &deviations() const { return found; }

private:
    struct Rule;
    static const Rule rules[];

    void takeWrite(const DecodedAccess &access);
    void judgeTimes(const DecodedAccess &access);
    void judgeWait(const DecodedAccess &access, const char *what, std::uint64_t waitUs);

    void judgeKept(const DecodedAccess &access);
    void judgeMeasured(const DecodedAccess &access);
    void judgeVersion(const DecodedAccess &access);
    void judgeLimitInForce(const DecodedAccess &access);
    void judgeMailboxData(const DecodedAccess &access);
    void judgeCommandByte(const DecodedAccess &access);
    void judgeEepromStatus(const DecodedAccess &access);
    void judgeEvent(const DecodedAccess &access);
    void adoptValue(const DecodedAccess &access);
    void adoptLinkStatus(const DecodedAccess &access);
    void adoptAccessoryCode(const DecodedAccess &access);

    // Whether the value is as expected; one that nothing has determined yet is adopted.
    [[nodiscard]] bool isAsExpected(const DecodedAccess &access);
    [[nodiscard]] Deviation difference(const DecodedAccess &access, Deviation::Kind kind);
    void endSuspense(std::optional<bool> isOtherAccessory);

    const double factor;
    const std::uint64_t allowedWaitUs;
    ModelMachine model;
    BusyWatch mailbox;
    BusyWatch eeprom;
    std::uint64_t judged = 0;
    DeviationList found;
};

} // namespace tarnSimulator
