#pragma once

#include "accessory/ec_power_mode_manager.h"
#include "accessory/power_profiles.h"
#include "device/ec_access_lock.h"
#include "device/ec_dirver_controller_hal.h"
#include "device/ec_registers.h"
#include "support/simulated_machine.h"

namespace tarnTest {

// What the driver says of a read that is never answered, and how long that takes: the time of an access, a
// thousand looks and the reload of the port library.
inline const QStringList unansweredRead {"ec reader not normal, begin to reload dll.", "Library is kill",
    "open out32Func and inp32Func is sucessful!", "Library loaded second"};
inline constexpr int accessTime = 20;
inline constexpr int unansweredReadTime = accessTime + 5000 + 500;
// A refused write is given up after a thousand looks, without a line in the log.
inline constexpr int refusedWriteTime = accessTime + 5000;

inline constexpr const char *profileFileName = "powermodeconfig.xml";

// The profiles that tests take as examples.
inline constexpr int highProfile = tarnAccessoryManager::profileOfName("high")->number;
inline constexpr int balanceProfile = tarnAccessoryManager::profileOfName("balance")->number;
inline constexpr int lowProfile = tarnAccessoryManager::profileOfName("low")->number;
// The least number beyond those of all profiles.
inline constexpr quint32 numberBeyondProfiles = [] {
    int greatest = tarnAccessoryManager::noProfile;
    for (const tarnAccessoryManager::PowerProfile &profile : tarnAccessoryManager::powerProfiles)
        greatest = std::max(greatest, profile.number);
    return static_cast<quint32>(greatest + 1);
}();
// PL1 of a profile on the supply that the simulated computer starts with.
[[nodiscard]] constexpr int usualPl1(int profile)
{
    return tarnAccessoryManager::profileOfNumber(profile)->fullSupply.pl1;
}

// What the manager says of the profile in force before a restore, and after one that failed.
inline constexpr int neverRestored = -10;
inline constexpr int restoreFailed = -2;

// A simulated machine on which the test sees whether the EC is held: it must be free again after each test.
class EcLockTest : public MachineTest
{
protected:
    EcLockTest()
    {
        // As a client's start leaves it; in automatic mode the EC takes no limits.
        machine.computer.setPowerControl(tarnDeviceInfos::PL_CTRL_MANUAL);
        machine.clock.onWait = [this](milliseconds) {
            (tarnDeviceInfos::ecAccessMutex.isLocked() ? waitsWithLock : waitsWithoutLock)++;
        };
    }

    void TearDown() override { EXPECT_FALSE(tarnDeviceInfos::ecAccessMutex.isLocked()); }

    // Every access to the EC contains waits.
    [[nodiscard]] bool lockHeldThroughout() const { return waitsWithLock > 0 && waitsWithoutLock == 0; }
    [[nodiscard]] bool lockNeverTaken() const { return waitsWithLock == 0 && waitsWithoutLock > 0; }

    void setRegister(quint16 address, quint8 value) { machine.state->xdata[address] = value; }
    [[nodiscard]] int reg(quint16 address) const { return machine.state->xdata[address]; }

private:
    int waitsWithLock = 0;
    int waitsWithoutLock = 0;
};

// The power manager on the simulated machine, with the log and the traffic of its creation out of the way.
class PowerModeTest : public EcLockTest
{
protected:
    PowerModeTest()
        : manager(tarnAccessoryManager::EcPowerModeManager::instance())
    {
        tarnDeviceInfos::EcDirverControllerHal::instance();
        machine.log.clear();
    }

    // The milliseconds since the start of the test.
    [[nodiscard]] int elapsed() const { return static_cast<int>(machine.clock.now().count()); }

    tarnAccessoryManager::EcPowerModeManager *manager;
};

} // namespace tarnTest
