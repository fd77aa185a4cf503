#include "simulator/recording/busy_watch.h"

#include "simulator/value_text.h"

#include <algorithm>

namespace tarnSimulator {

namespace {

// An operation that is seen at work for so long and never seen to be done is not slow but hangs.
constexpr std::uint64_t hangsUs = 200'000;

} // namespace

void BusyWatch::begin(const DecodedAccess &command, std::uint8_t busyValue)
{
    operation = {busyValue, command.number, command.endUs, command.takenUs.value_or(command.endUs), 0};
}

// The EC shows its state at some time after the last byte of the address.
void BusyWatch::seeBusy(const DecodedAccess &look)
{
    if (look.addressUs > operation->takenUs)
        operation->busyUs = std::max(operation->busyUs, look.addressUs - operation->takenUs);
}

void BusyWatch::seeDone(DeviationList &deviations)
{
    if (operation && operation->busyUs > allowed)
        deviations.add(slow());
    operation.reset();
}

bool BusyWatch::giveUp(DeviationList &deviations)
{
    if (!operation || operation->busyUs < hangsUs) {
        const bool isSlow = operation && operation->busyUs > allowed;
        seeDone(deviations);
        return isSlow;
    }
    Deviation deviation = slow();
    deviation.kind = Deviation::Kind::WrongValue;
    deviation.what = name + " stayed at " + hexText(operation->busyValue, 2) + ", the operation never ended";
    deviations.add(deviation);
    operation.reset();
    return true;
}

Deviation BusyWatch::slow() const
{
    Deviation deviation;
    deviation.kind = Deviation::Kind::Timing;
    deviation.what = name + " was busy";
    deviation.number = operation->number;
    deviation.us = operation->us;
    deviation.longestUs = operation->busyUs;
    deviation.allowedUs = allowed;
    return deviation;
}

} // namespace tarnSimulator
