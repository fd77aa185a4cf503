#pragma once

#include <QObject>

#include <atomic>
#include <optional>

namespace tarnPlatform {
template <typename Object> class ProcessWide;
}

namespace tarnAccessoryManager {

struct PowerProfile;
struct BalanceRestore;

// The performance profiles (power_profiles.h), the file that remembers one, smart charging and the device
// power mode. Any thread. Each public operation that touches the EC holds ecAccessMutex for its whole run,
// except where it says that the caller does.
class EcPowerModeManager : public QObject
{
    Q_OBJECT

public:
    static EcPowerModeManager *instance();
    ~EcPowerModeManager() override;

    // power_limits.cpp. 0 applied; -1 a read-back check failed, -2 a limit write failed. What was written
    // before a failure stays written; the fan mode never changes the result.
    int setEcPowerModeHigh();
    int setEcPowerModeBalance();
    int setEcPowerModeLow();
    // Writes one limit in watts; lock held by the caller. 0 or -1.
    int setEcPowerLimit(quint16 address, quint8 value);
    // Reads one limit back; lock held by the caller. 0 within 10 W; -1 out of tolerance, -2 read failed.
    int checkEcPowerLimit(quint16 address, quint8 expected);
    // The whole KVane charging byte, 0 when the read fails; lock held by the caller.
    quint8 readKvaneChargingStatus();
    // power_control_mode.cpp. 0 verified; -1 write or read-back failed, -2 the EC reports another mode.
    int setEcPowerCtrlMode(quint8 mode);

    // saved_power_mode.cpp. 0 applied, even if the file could not be written; -1 not applied, file
    // untouched; -2 no such profile.
    int setEcPowerMode(quint32 number);
    // 0 restored; -1 applied but not saved, -2 not applied.
    int restorePowerModeAtStart();
    // The client has started: manual control and the saved profile.
    void powerModeFirstRun();
    // The client is closing: automatic control, five attempts.
    void powerModeLastRun();
    // The profile that the last restore applied, even if a client has chosen another since; -2 after a failed
    // restore, -10 before any.
    [[nodiscard]] int currentPowerMode() const { return powerMode; }
    [[nodiscard]] int lastRestoreResult() const { return lastPowerModeResult; }

    // smart_charging.cpp. True when the state could be read; isSmartChargingOn() then tells it.
    bool getSmartChargingStatus();
    // On, off, or empty when the EC's answer is neither.
    std::optional<bool> readSmartCharging();
    // True when the EC stored it.
    bool setSmartChargingStatus(bool on);
    [[nodiscard]] bool isSmartChargingOn() const { return smartChargingOn; }

    // device_power_mode.cpp. The flag that tells the EC the user's profile; independent of the limits.
    // The number of the profile; noProfile for another flag and for one that cannot be read.
    int getTarnPowerMode();
    // True when the EC reads back what was written.
    bool setTarnPowerMode(quint32 profile);

private:
    friend class tarnPlatform::ProcessWide<EcPowerModeManager>;
    EcPowerModeManager();

    int applyProfile(const PowerProfile &profile);
    int restoreBalance(const BalanceRestore &reason);
    int restoreSavedProfile(const PowerProfile &profile);

    std::atomic<int> powerMode {-10};
    std::atomic<int> lastPowerModeResult {0};
    std::atomic<bool> smartChargingOn {false};
};

} // namespace tarnAccessoryManager
