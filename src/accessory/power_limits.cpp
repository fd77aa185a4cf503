#include "accessory/ec_power_mode_manager.h"

#include "accessory/power_profiles.h"
#include "device/ec_access_lock.h"
#include "device/ec_dirver_controller_hal.h"
#include "device/ec_registers.h"
#include "platform/waits.h"

#include <QDebug>

namespace tarnAccessoryManager {

namespace {

using namespace std::chrono_literals;
using namespace tarnDeviceInfos;
using tarnPlatform::sleepFor;

constexpr auto checkPause = 5ms;
constexpr int tolerance = 10; // watts either way, inclusive
constexpr quint8 supplyModeOnKvane = 3;

// One limit with the register that reads it back.
struct LimitStep
{
    quint16 address;
    quint16 checkAddress;
    quint8 PowerLimits::*value;
    const char *attempt;
    const char *done;
};
constexpr LimitStep limitSteps[] = {
    {EC_POWERMODE_PL1, EC_POWERMODE_PL1_CHECK, &PowerLimits::pl1, "set ec PL1 to ",
        "set ec PL1 successed with "},
    {EC_POWERMODE_PL2, EC_POWERMODE_PL2_CHECK, &PowerLimits::pl2, "set ec PL2 to ",
        "set ec PL2 successed with "},
    {EC_POWERMODE_PL4, EC_POWERMODE_PL4_CHECK, &PowerLimits::pl4, "set ec PL4 to ",
        "set ec PL4 successed with "},
};

void setFanMode(quint8 fanMode)
{
    if (EcDirverControllerHal::instance()->writeXdata(EC_FAN_MODE, fanMode) == 0)
        qDebug() << "set fan mode successed with " << fanMode;
    else
        qDebug() << "set fan mode failed with " << fanMode;
}

PowerLimits chooseLimits(const PowerProfile &profile, quint8 supplyMode, EcPowerModeManager &manager)
{
    switch (supplyMode) {
    case 0:
    case 2:
        return profile.fullSupply;
    case 1:
        return profile.weakSupply;
    case supplyModeOnKvane:
        return manager.readKvaneChargingStatus() ? profile.kvaneCharging : profile.kvaneNotCharging;
    default:
        return profile.fallback;
    }
}

} // namespace

int EcPowerModeManager::setEcPowerModeHigh()
{
    return applyProfile(*profileOfName("high"));
}

int EcPowerModeManager::setEcPowerModeBalance()
{
    return applyProfile(*profileOfName("balance"));
}

int EcPowerModeManager::setEcPowerModeLow()
{
    return applyProfile(*profileOfName("low"));
}

int EcPowerModeManager::setEcPowerLimit(quint16 address, quint8 value)
{
    qDebug() << "ready to set ec powerlimit.";
    qDebug() << "begin to set ec powerlimit." << value;
    const int result = EcDirverControllerHal::instance()->writeXdata(address, value);
    if (result == 0) {
        qDebug() << "write ecPowerLimit: " << value << "to EC_POWERMODE_PL.";
        return 0;
    }
    if (result == -1)
        qDebug() << "write ecPowerLimit: " << value << "failed.";
    else
        qDebug() << "write ecPowerLimit failed with unexpected circumstances.";
    return -1;
}

int EcPowerModeManager::checkEcPowerLimit(quint16 address, quint8 expected)
{
    qDebug() << "ready to check ec powerlimit.";
    sleepFor(checkPause);
    quint8 value = 0x64;
    const int result = EcDirverControllerHal::instance()->readXdata(address, &value);
    if (result != 0) {
        if (result == -1)
            qDebug() << "set ec powerlimit to " << expected << "failed when check again.";
        else
            qDebug() << "check ec powerlimit failed with unexpected circumstances.";
        return -2;
    }
    if (expected - tolerance <= value && value <= expected + tolerance) {
        qDebug() << "set ec powerlimit successed with " << value;
        return 0;
    }
    qDebug() << "set ec powerlimit to " << expected << "failed with " << value;
    return -1;
}

quint8 EcPowerModeManager::readKvaneChargingStatus()
{
    quint8 status = 0xFF;
    if (EcDirverControllerHal::instance()->readXdata(EC_KVANE_CHARGING_STATUS, &status) != 0) {
        qDebug() << "get kvane charging status failed with " << status;
        return 0;
    }
    qDebug() << "get kvane charging status successed with " << status << ", status is " << (status != 0);
    return status;
}

int EcPowerModeManager::applyProfile(const PowerProfile &profile)
{
    qDebug() << profileText("set ec powermode to %1 begin.", profile.name).constData();
    const EcAccess access;
    if (!access)
        return -2;

    PowerLimits limits = profile.fallback;
    quint8 fanMode = profile.fanMode;
    quint8 supplyMode = 0x6F;
    if (EcDirverControllerHal::instance()->readXdata(EC_POWER_SUPPLY_MODE, &supplyMode) != 0) {
        qDebug() << "Read power supply mode failed with " << supplyMode;
    } else {
        qDebug() << "Read power supply mode successed with " << supplyMode;
        limits = chooseLimits(profile, supplyMode, *this);
        if (supplyMode == supplyModeOnKvane)
            fanMode = profile.fanModeOnKvane;
    }
    sleepFor(EC_LATCH_TIME);

    for (const LimitStep &step : limitSteps) {
        const quint8 watts = limits.*step.value;
        if (setEcPowerLimit(step.address, watts) != 0) {
            qWarning() << step.attempt << watts << " failed when write.";
            return -2;
        }
        if (checkEcPowerLimit(step.checkAddress, watts) != 0) {
            qWarning() << step.attempt << watts << " failed when check again.";
            return -1;
        }
        qDebug() << step.done << watts;
        sleepFor(EC_LATCH_TIME);
    }

    qDebug()
        << profileText("set ec powermode to %1 finish, now begin to set fan mode ", profile.name).constData()
        << fanMode;
    setFanMode(fanMode);
    return 0;
}

} // namespace tarnAccessoryManager
