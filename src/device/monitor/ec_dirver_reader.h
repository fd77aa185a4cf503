#pragma once

#include <QMutex>
#include <QString>
#include <QThread>

#include <array>
#include <atomic>

namespace tarnPlatform {
template <typename Object> class ProcessWide;
}

namespace tarnDeviceInfos {

// Watches the accessory connector through the EC: names what is attached, notifies the client of changes and
// runs the work of each cycle. The loop runs on this thread; the synchronous reads are for handler threads
// and wait for ecAccessMutex; the lock-free accessors are for any thread.
class EcDirverReader : public QThread
{
    Q_OBJECT

public:
    static EcDirverReader *instance();
    ~EcDirverReader() override;

    // Thread body: runs until requestEnd().
    void run() override;
    void getAccessoryTypeForFirst();
    // One attach/detach check; ecAccessMutex is held by the caller.
    void pollAccessory();

    // Append the value to out and return it; out stays as it is when the EC does not answer.
    QString &getAccessoryCode(QString &out);
    QString &getHardwareVersion(QString &out);
    QString &getMcuVersion(QString &out);
    // The link status byte, 255 when it could not be read.
    quint8 getHandShakeStatus();

    // Stops or resumes the loop's EC work for a firmware update of the EC. Returns with the EC locked in both
    // cases, because once an EC update has begun, EC traffic comes back only with a restart.
    void setEcUpdating(bool updating);
    [[nodiscard]] bool isEcUpdating() const { return ecUpdating; }

    // Pauses the loop while the accessory's MCU is in its boot loader; the caller takes and releases
    // ecAccessMutex.
    void setMcuUpdating(bool updating) { mcuUpdating = updating; }

    // Asks the loop to end at its next wait or lock.
    void requestEnd() { endRequested = true; }

    // A name of accessory_table.h, or empty for an accessory that is not known.
    [[nodiscard]] QString accessoryName() const;
    [[nodiscard]] quint8 accessoryKind() const { return mcuLinkModel; }
    // The values last sent to the client; 251 (0 for the light) when none was read yet.
    [[nodiscard]] int sentKVaneLedLight() const { return sent[LedLight]; }
    [[nodiscard]] int sentKvaneChargingStatus() const { return sent[KvaneChargingStatus]; }
    [[nodiscard]] int sentKvaneBatteryNum() const { return sent[KvaneBatteryNum]; }
    [[nodiscard]] int sentTarnChargingStatus() const { return sent[TarnChargingStatus]; }
    [[nodiscard]] int sentTarnBatteryNum() const { return sent[TarnBatteryNum]; }

Q_SIGNALS:
    // Never emitted, because the loop calls the graphics manager directly. Kept, because their names are part
    // of the meta-object that other code connects to.
    void graphicsConnectSignal();
    void startKVaneBatteryTimer();
    void stopKVaneBatteryTimer();

protected:
    bool event(QEvent *event) override;

private:
    friend class tarnPlatform::ProcessWide<EcDirverReader>;
    // In the order in which they are read and announced.
    enum Watched : std::size_t {
        LedLight,
        KvaneChargingStatus,
        KvaneBatteryNum,
        TarnChargingStatus,
        TarnBatteryNum,
        WatchedCount
    };

    EcDirverReader();

    void runCycle();
    void detectAttachedAccessory();
    void handleDetach(quint8 linkStatus);
    void handleChange(quint8 code);
    void announceAccessory(const char *name);
    void announceValue(Watched value);
    void announceChangedValues();
    [[nodiscard]] bool isPaused() const { return ecUpdating || mcuUpdating || readerPaused; }

    std::array<std::atomic<int>, WatchedCount> sent {0, 251, 251, 251, 251};
    std::atomic<quint8> mcuLinkModel {0}; // accessory code; 251 when not known at first detection
    quint8 mcuLinkStatus = 0;
    std::atomic<bool> ecUpdating {false};
    std::atomic<bool> mcuUpdating {false};
    std::atomic<bool> readerPaused {false}; // never set
    bool graphicsConnected = false;
    // 251 and 215 both stand for a value not read yet.
    std::array<int, WatchedCount> latest {0, 251, 251, 251, 215};

    QMutex updateMutex; // guards updateHoldsEcLock
    bool updateHoldsEcLock = false;
    std::atomic<bool> endRequested {false};
};

} // namespace tarnDeviceInfos
