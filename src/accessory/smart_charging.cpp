#include "accessory/ec_power_mode_manager.h"

#include "device/ec_access_lock.h"
#include "device/ec_dirver_controller_hal.h"
#include "device/ec_registers.h"

#include <QDebug>

namespace tarnAccessoryManager {

using namespace tarnDeviceInfos;

bool EcPowerModeManager::getSmartChargingStatus()
{
    return readSmartCharging().has_value();
}

std::optional<bool> EcPowerModeManager::readSmartCharging()
{
    const EcAccess access;
    if (!access)
        return std::nullopt;
    qDebug() << "Begin to get smart charge status.";
    const int value = EcDirverControllerHal::instance()->readEeprom(EEP_SMART_CHARGING);
    if (value == SMART_CHARGING_OFF) {
        smartChargingOn = false;
        qDebug() << "Get smart charge status successed with: " << value << ", status is OFF: " << false
                 << ".";
        return false;
    }
    if (value == SMART_CHARGING_ON) {
        smartChargingOn = true;
        qDebug() << "Get smart charge status successed with: " << value << ", status is ON: " << true << ".";
        return true;
    }
    smartChargingOn = false;
    qDebug() << "Get smart charge status failed with " << value;
    return std::nullopt;
}

bool EcPowerModeManager::setSmartChargingStatus(bool on)
{
    const EcAccess access;
    if (!access)
        return false;
    qDebug() << (on ? "Begin to set smart charging ON." : "Begin to set smart charging OFF.");
    const quint8 value = on ? SMART_CHARGING_ON : SMART_CHARGING_OFF;
    if (EcDirverControllerHal::instance()->writeEeprom(EEP_SMART_CHARGING, value) != 0) {
        qDebug() << "Set smart charging status: " << on << " failed.";
        return false;
    }
    qDebug() << "Set smart charging status: " << on << " successed.";
    smartChargingOn = on;
    return true;
}

} // namespace tarnAccessoryManager
