#include "accessory/kvane_accessory_manager.h"

#include "accessory/mailbox.h"
#include "device/ec_access_lock.h"
#include "device/ec_dirver_controller_hal.h"
#include "device/ec_registers.h"
#include "platform/process_wide.h"
#include "platform/waits.h"

#include <QDebug>

#include <array>
#include <optional>

namespace tarnAccessoryManager {
namespace {

using namespace tarnDeviceInfos;
using tarnPlatform::sleepFor;

constexpr quint8 unreadLevel = 0xFF;

using SerialNumber = std::array<quint8, KVANE_SN_LENGTH>;

QString unreadSerialNumber()
{
    return QStringLiteral("default");
}

bool readSerialNumber(SerialNumber &bytes)
{
    quint16 position = 0;
    for (quint8 &byte : bytes) {
        const quint16 address = KVANE_SN_BYTES + position++;
        const QByteArray number = QByteArray::number(position);
        if (EcDirverControllerHal::instance()->readXdata(address, &byte) != 0) {
            qWarning() << ("read kvane sn code " + number + " from xdata failed.").constData();
            return false;
        }
        qDebug() << ("read kvane sn code " + number + " from xdata successed with: ").constData() << byte;
    }
    return true;
}

// The EC stores the number with its last byte first.
QString serialNumberText(const SerialNumber &bytes)
{
    QString text;
    for (auto byte = bytes.crbegin(); byte != bytes.crend(); ++byte)
        text += QStringLiteral("%1%2").arg(*byte >> 4, 0, 16).arg(*byte & 0x0F, 0, 16);
    return text.toUpper();
}

std::optional<quint8> readByte(quint16 address)
{
    quint8 value = 0;
    const bool isRead = EcDirverControllerHal::instance()->readXdata(address, &value) == 0;
    return isRead ? std::optional(value) : std::nullopt;
}

int readBit(quint16 address, quint8 bit)
{
    return (readByte(address).value_or(0) & bit) != 0 ? 1 : 0;
}

} // namespace

KvaneAccessoryManager *KvaneAccessoryManager::instance()
{
    return tarnPlatform::ProcessWide<KvaneAccessoryManager>::instance();
}

KvaneAccessoryManager::KvaneAccessoryManager()
{
    qDebug() << "KvaneAccessoryManager object is created.";
}

KvaneAccessoryManager::~KvaneAccessoryManager()
{
    qDebug() << "KvaneAccessoryManager object is killed.";
}

QString KvaneAccessoryManager::getKvaneSnCode()
{
    qDebug() << "start to get kvane sn code.";
    const EcAccess access;
    if (!access)
        return unreadSerialNumber();
    sleepFor(mailboxPause);
    if (EcDirverControllerHal::instance()->writeXdata(XEC_RGB_CMD, APP_EC_KVANE_SN_READ) != 0) {
        qDebug() << "begin to read kvane sn code failed.";
        return unreadSerialNumber();
    }
    qDebug() << "ready to read kvane sn code.";
    sleepFor(mailboxPause);
    SerialNumber bytes {};
    if (!readSerialNumber(bytes))
        return unreadSerialNumber();
    QString text = serialNumberText(bytes);
    qDebug() << "Kvane SN code:" << text;
    return text;
}

void KvaneAccessoryManager::setKVaneLedLight(quint32 value)
{
    qDebug() << "start to set kvane led light.";
    const EcAccess access;
    if (!access)
        return;
    sleepFor(mailboxPause);
    EcDirverControllerHal *ec = EcDirverControllerHal::instance();
    if (ec->writeXdata(XEC_RGB_RED, static_cast<quint8>(value)) != 0) {
        qDebug() << "begin to set kvane led light failed.";
        return;
    }
    qDebug() << "ready to set kvane led light." << value;
    sleepFor(mailboxPause);
    if (ec->writeXdata(XEC_RGB_CMD, APP_EC_KVANE_LED_WRITE) != 0)
        qDebug() << "finish to set kvane led light failed.";
    else
        qDebug() << "finish to set kvane led light." << value;
}

int KvaneAccessoryManager::getKVaneLedLight()
{
    EcDirverControllerHal *ec = EcDirverControllerHal::instance();
    if (ec->writeXdata(XEC_RGB_CMD, APP_EC_KVANE_LED_READ) != 0)
        return -1;
    sleepFor(mailboxPause);
    quint8 light = 0;
    return ec->readXdata(XEC_RGB_RED, &light) == 0 ? light : -1;
}

int KvaneAccessoryManager::getKvaneChargingStatus()
{
    return readBit(EC_KVANE_CHARGING_STATUS, KVANE_CHARGING_BIT);
}

int KvaneAccessoryManager::getKvaneBatteryNum()
{
    return readByte(EC_KVANE_BATTERY_NUM).value_or(unreadLevel);
}

int KvaneAccessoryManager::getTarnChargingStatus()
{
    return readBit(EC_TARN_CHARGING_STATUS, TARN_CHARGING_BIT);
}

int KvaneAccessoryManager::getTarnBatteryNum()
{
    return readByte(EC_TARN_BATTERY_NUM).value_or(unreadLevel);
}

} // namespace tarnAccessoryManager
