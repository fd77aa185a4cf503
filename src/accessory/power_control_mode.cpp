#include "accessory/ec_power_mode_manager.h"

#include "device/ec_access_lock.h"
#include "device/ec_dirver_controller_hal.h"
#include "device/ec_registers.h"
#include "platform/waits.h"

#include <QDebug>

namespace tarnAccessoryManager {
namespace {

using namespace tarnDeviceInfos;

const char *controlModeText(quint8 mode)
{
    switch (mode) {
    case PL_CTRL_AUTO:
        return "ec powerctrlmode is auto mode: ";
    case PL_CTRL_MANUAL:
        return "ec powerctrlmode is manual mode: ";
    case PL_CTRL_UNLIMITED:
        return "ec powerctrlmode is unlimited mode: ";
    default:
        return "ec powerctrlmode read with unexpected circumstances: ";
    }
}

} // namespace

int EcPowerModeManager::setEcPowerCtrlMode(quint8 mode)
{
    qDebug() << "ready to set ec powerctrlmode. ";
    const EcAccess access;
    if (!access)
        return -1;
    qDebug() << "begin to set ec powerctrlmode. ";
    EcDirverControllerHal *ec = EcDirverControllerHal::instance();
    if (const int result = ec->writeXdata(EC_POWERMODE_PL_CTRL, mode); result != 0) {
        if (result == -1)
            qDebug() << "write ecPowerCtrlMode: " << mode << "failed.";
        else
            qDebug() << "write ecPowerCtrlMode failed with unexpected circumstances.";
        return -1;
    }
    qDebug() << "write ecPowerCtrlMode: " << mode << "to EC_POWERMODE_PL_CTRL.";
    tarnPlatform::sleepFor(EC_LATCH_TIME);

    qDebug() << "ready to get ec powerctrlmode.";
    quint8 readBack = 0x64;
    if (const int result = ec->readXdata(EC_POWERMODE_PL_CTRL, &readBack); result != 0) {
        if (result == -1)
            qDebug() << "get ec powerctrlmode failed.";
        else
            qDebug() << "get ec powerctrlmode failed with unexpected circumstances.";
        return -1;
    }
    qDebug() << "get ec powerctrlmode successed.";
    qDebug() << controlModeText(readBack) << readBack;
    if (readBack != mode) {
        qDebug() << "set ec powerctrlmode failed with unexpected number.  Expect: " << mode
                 << "but :" << readBack;
        return -2;
    }
    qDebug() << "set ec powerctrlmode successed:" << mode;
    return 0;
}

} // namespace tarnAccessoryManager
