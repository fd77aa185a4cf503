#pragma once

#include <QObject>
#include <QString>

namespace tarnPlatform {
template <typename Object> class ProcessWide;
}

namespace tarnAccessoryManager {

// The KVane accessory and the host's own battery as the EC knows them. The serial number and the LED write
// hold ecAccessMutex for their mailbox exchange (any thread); the five readers take no lock and log nothing:
// only the monitor calls them, and it holds the lock.
class KvaneAccessoryManager : public QObject
{
    Q_OBJECT

public:
    static KvaneAccessoryManager *instance();
    ~KvaneAccessoryManager() override;

    // 14 hexadecimal digits in upper case, or "default" when the serial number could not be read.
    QString getKvaneSnCode();
    // One byte of the value is used.
    void setKVaneLedLight(quint32 value);

    // The LED byte, or -1.
    int getKVaneLedLight();
    // 0 or 1; 0 also when the read fails. The power profiles read the same byte differently: any set bit
    // counts as charging.
    int getKvaneChargingStatus();
    // The level as the EC gives it, 255 when the read fails.
    int getKvaneBatteryNum();
    // 0 or 1; 0 also when the read fails.
    int getTarnChargingStatus();
    // The level as the EC gives it, 255 when the read fails.
    int getTarnBatteryNum();

private:
    friend class tarnPlatform::ProcessWide<KvaneAccessoryManager>;
    KvaneAccessoryManager();
};

} // namespace tarnAccessoryManager
