#include "accessory/ec_power_mode_manager.h"

#include "accessory/power_profiles.h"
#include "device/ec_access_lock.h"
#include "device/ec_dirver_controller_hal.h"
#include "device/ec_registers.h"
#include "platform/waits.h"

#include <QDebug>

namespace tarnAccessoryManager {
namespace {

using namespace tarnDeviceInfos;

constexpr quint8 unreadFlag = 0x64;

} // namespace

int EcPowerModeManager::getTarnPowerMode()
{
    qDebug() << "ready to get tarn power mode.";
    const EcAccess access;
    if (!access)
        return noProfile;
    qDebug() << "begin to get tarn power mode.";
    quint8 flag = unreadFlag;
    if (EcDirverControllerHal::instance()->readXdata(EC_TARN_POWER_MODE, &flag) != 0) {
        qDebug() << "get tarn power mode failed.";
        return noProfile;
    }
    qDebug() << "get tarn power mode successed, mode flag is " << flag;
    if (const PowerProfile *profile = profileOfFlag(flag)) {
        qDebug() << profileText("tarn power mode is %1.", profile->name).constData();
        return profile->number;
    }
    qDebug() << "tarn power mode is other.";
    return noProfile;
}

bool EcPowerModeManager::setTarnPowerMode(quint32 number)
{
    qDebug() << "ready to set tarn power mode.";
    const EcAccess access;
    if (!access)
        return false;
    qDebug() << "begin to set tarn power mode.";
    EcDirverControllerHal *ec = EcDirverControllerHal::instance();
    const PowerProfile *profile = profileOfNumber(number);
    const quint8 flag = profile ? profile->ecFlag : TARN_POWER_MODE_UNKNOWN;
    if (ec->writeXdata(EC_TARN_POWER_MODE, flag) != 0) {
        qDebug() << "set tarn power mode failed when write setVar.";
        return false;
    }
    tarnPlatform::sleepFor(EC_LATCH_TIME);
    quint8 readBack = unreadFlag;
    if (ec->readXdata(EC_TARN_POWER_MODE, &readBack) != 0) {
        qDebug() << "set tarn power mode failed when read getVar.";
        return false;
    }
    if (readBack != flag) {
        qDebug() << "set tarn power mode failed, setVar != getVar.";
        return false;
    }
    qDebug() << "set tarn power mode successed with " << number;
    return true;
}

} // namespace tarnAccessoryManager
