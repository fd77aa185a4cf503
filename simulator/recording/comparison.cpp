#include "simulator/recording/comparison.h"

#include "device/ec_registers.h"
#include "simulator/register_table.h"

#include <algorithm>
#include <iterator>

namespace tarnSimulator {

using namespace tarnDeviceInfos;

namespace {

constexpr double usPerMs = 1000;
// Between two looks of the host at the status. The model answers at the first one.
constexpr std::uint64_t lookIntervalUs = 5000;
// The model's clock has whole milliseconds.
constexpr std::uint64_t clockStepUs = 1000;

std::uint64_t allowedBusyUs(double factor, std::uint32_t busyMs)
{
    return static_cast<std::uint64_t>(factor * usPerMs * busyMs) + clockStepUs;
}

} // namespace

// How the answers of a register are judged; the others by what writes of the host do.
struct Comparison::Rule
{
    std::uint16_t address;
    void (Comparison::*judge)(const DecodedAccess &access);
};

const Comparison::Rule Comparison::rules[] = {
    {MCU_LINK_STATUS, &Comparison::adoptLinkStatus},
    {ACCESSORY_CODE, &Comparison::adoptAccessoryCode},
    {HARDWARE_VERSION, &Comparison::judgeVersion},
    {MCU_VERSION_MAJOR, &Comparison::judgeVersion},
    {MCU_VERSION_MINOR, &Comparison::judgeVersion},
    {MCU_VERSION_PATCH, &Comparison::judgeVersion},
    {XEC_APP_EVENT, &Comparison::judgeEvent},
    {XEC_APP_EVENT_DATA, &Comparison::adoptValue},
    {XEC_APP_CMD, &Comparison::judgeCommandByte},
    {KVANE_SN_BYTES, &Comparison::judgeMailboxData},
    {KVANE_SN_BYTES + 1, &Comparison::judgeMailboxData},
    {KVANE_SN_BYTES + 2, &Comparison::judgeMailboxData},
    {KVANE_SN_BYTES + 3, &Comparison::judgeMailboxData},
    {KVANE_SN_BYTES + 4, &Comparison::judgeMailboxData},
    {KVANE_SN_BYTES + 5, &Comparison::judgeMailboxData},
    {KVANE_SN_BYTES + 6, &Comparison::judgeMailboxData},
    {EEP_STATUS, &Comparison::judgeEepromStatus},
    {EC_POWERMODE_PL1_CHECK, &Comparison::judgeLimitInForce},
    {EC_POWERMODE_PL2_CHECK, &Comparison::judgeLimitInForce},
    {EC_POWERMODE_PL4_CHECK, &Comparison::judgeLimitInForce},
};

Comparison::Comparison(double slownessFactor)
    : factor(slownessFactor)
    , allowedWaitUs(static_cast<std::uint64_t>(factor * static_cast<double>(lookIntervalUs)))
    , mailbox(addressText(XEC_APP_CMD), allowedBusyUs(factor, model.mailboxBusyMs()))
    , eeprom(addressText(EEP_STATUS), allowedBusyUs(factor, model.eepromBusyMs()))
{ }

void Comparison::take(const DecodedAccess &access)
{
    model.setNowMs(access.endUs / static_cast<std::uint64_t>(usPerMs));
    judgeTimes(access);
    if (access.kind == DecodedAccess::Kind::Write) {
        takeWrite(access);
        return;
    }
    const auto *const rule = std::find_if(std::begin(rules), std::end(rules),
        [&access](const Rule &row) { return row.address == access.address; });
    if (rule != std::end(rules)) {
        (this->*rule->judge)(access);
        return;
    }
    const Register *row = findRegister(access.address);
    const bool isMeasured = row != nullptr && row->hostWrites == HostWrites::Ignored;
    isMeasured ? judgeMeasured(access) : judgeKept(access);
}

void Comparison::take(const Oddity &oddity)
{
    if (!oddity.isBroken)
        return;
    Deviation deviation;
    deviation.what = oddity.text;
    deviation.number = oddity.number;
    deviation.us = oddity.us;
    found.add(deviation);
}

// The last answers of an accessory stay in doubt when the host does not look any more which one it is.
void Comparison::finish()
{
    static_cast<void>(mailbox.giveUp(found));
    static_cast<void>(eeprom.giveUp(found));
    found.dropSuspended();
}

void Comparison::takeWrite(const DecodedAccess &access)
{
    if (access.isRefused) {
        model.forget(access.address);
        return;
    }
    if (access.address == EEP_CMD && eeprom.giveUp(found))
        model.forgetEepromOperation();
    if (access.address == XEC_APP_CMD)
        static_cast<void>(mailbox.giveUp(found));
    model.write(access.address, access.value);
    if (access.address == EEP_CMD)
        eeprom.begin(access, EEP_STATUS_BUSY);
    if (access.address == XEC_APP_CMD && access.value != 0)
        mailbox.begin(access, access.value);
}

void Comparison::judgeTimes(const DecodedAccess &access)
{
    judgeWait(access, "IBF stayed set after a byte", access.acceptanceWaitUs);
    judgeWait(access, "a read was answered late", access.answerWaitUs);
}

void Comparison::judgeWait(const DecodedAccess &access, const char *what, std::uint64_t waitUs)
{
    if (waitUs <= allowedWaitUs)
        return;
    Deviation deviation;
    deviation.kind = Deviation::Kind::Timing;
    deviation.what = what;
    deviation.number = access.number;
    deviation.us = access.startUs;
    deviation.longestUs = waitUs;
    deviation.allowedUs = allowedWaitUs;
    found.add(deviation);
}

void Comparison::judgeKept(const DecodedAccess &access)
{
    if (!isAsExpected(access))
        found.add(difference(access, Deviation::Kind::WrongValue));
}

void Comparison::judgeMeasured(const DecodedAccess &access)
{
    if (isAsExpected(access))
        return;
    found.add(difference(access, Deviation::Kind::Measurement));
    model.adopt(access.address, access.value);
}

// While the accessory is being changed, its version may change before its code does.
void Comparison::judgeVersion(const DecodedAccess &access)
{
    if (model.isVersionFree()) {
        adoptValue(access);
        return;
    }
    if (isAsExpected(access))
        return;
    found.suspend(difference(access, Deviation::Kind::Measurement));
    model.adopt(access.address, access.value);
}

void Comparison::judgeLimitInForce(const DecodedAccess &access)
{
    model.isLimitOfHost(access.address) ? judgeKept(access) : judgeMeasured(access);
}

// The answer may be that of another accessory, which the host has not noticed yet.
void Comparison::judgeMailboxData(const DecodedAccess &access)
{
    if (!isAsExpected(access))
        found.suspend(difference(access, Deviation::Kind::WrongValue));
}

void Comparison::judgeCommandByte(const DecodedAccess &access)
{
    if (mailbox.isRunning() && access.value == mailbox.busyValue()) {
        mailbox.seeBusy(access);
        return;
    }
    mailbox.seeDone(found);
    if (model.isKnown(access.address) || access.value == 0)
        judgeKept(access);
}

void Comparison::judgeEepromStatus(const DecodedAccess &access)
{
    if (access.value == EEP_STATUS_BUSY && (eeprom.isRunning() || !model.isKnown(access.address))) {
        if (eeprom.isRunning())
            eeprom.seeBusy(access);
        return;
    }
    eeprom.seeDone(found);
    if (isAsExpected(access))
        return;
    found.add(difference(access, Deviation::Kind::WrongValue));
    model.forgetEepromOperation();
}

// An event that the host has not cleared yet may be followed by another one, but it does not go by itself.
void Comparison::judgeEvent(const DecodedAccess &access)
{
    const bool hasGone = access.value == APP_EVENT_NONE && model.isKnown(access.address)
        && model.read(access.address) != APP_EVENT_NONE;
    if (hasGone)
        found.add(difference(access, Deviation::Kind::WrongValue));
    adoptValue(access);
}

void Comparison::adoptValue(const DecodedAccess &access)
{
    model.adopt(access.address, access.value);
}

void Comparison::adoptLinkStatus(const DecodedAccess &access)
{
    endSuspense(model.seeLinkStatus(access.value, {access.addressUs, access.endUs}));
}

void Comparison::adoptAccessoryCode(const DecodedAccess &access)
{
    endSuspense(model.seeAccessoryCode(access.value, {access.addressUs, access.endUs}));
}

bool Comparison::isAsExpected(const DecodedAccess &access)
{
    if (!model.isKnown(access.address)) {
        model.adopt(access.address, access.value);
        return true;
    }
    ++judged;
    return model.read(access.address) == access.value;
}

Deviation Comparison::difference(const DecodedAccess &access, Deviation::Kind kind)
{
    Deviation deviation;
    deviation.kind = kind;
    deviation.what = valueDifference(access, model.read(access.address));
    deviation.number = access.number;
    deviation.us = access.startUs;
    return deviation;
}

void Comparison::endSuspense(std::optional<bool> isOtherAccessory)
{
    if (!isOtherAccessory)
        return;
    if (*isOtherAccessory)
        found.dropSuspended();
    else
        found.addSuspended();
}

} // namespace tarnSimulator
