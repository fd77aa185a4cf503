#include "accessory/ec_power_mode_manager.h"

#include "device/ec_access_lock.h"
#include "device/ec_dirver_controller_hal.h"
#include "device/ec_registers.h"
#include "platform/waits.h"

#include <QDebug>

namespace tarnAccessoryManager {
namespace {

using namespace std::chrono_literals;
using namespace tarnDeviceInfos;

constexpr auto latchTime = 10ms;
constexpr quint8 unreadFlag = 0x64;
constexpr int otherProfile = 3;

// The EC's flags do not follow the profile numbers: high is 4.
struct ProfileFlag
{
    int profile;
    quint8 flag;
    const char *text;
};
constexpr ProfileFlag profileFlags[] = {
    {0, TARN_POWER_MODE_HIGH, "tarn power mode is high."},
    {1, TARN_POWER_MODE_BALANCE, "tarn power mode is balance."},
    {2, TARN_POWER_MODE_LOW, "tarn power mode is low."},
};

quint8 flagOf(quint32 profile)
{
    for (const ProfileFlag &row : profileFlags) {
        if (static_cast<quint32>(row.profile) == profile)
            return row.flag;
    }
    return TARN_POWER_MODE_UNKNOWN;
}

} // namespace

int EcPowerModeManager::getTarnPowerMode()
{
    qDebug() << "ready to get tarn power mode.";
    const EcAccess access;
    if (!access)
        return otherProfile;
    qDebug() << "begin to get tarn power mode.";
    quint8 flag = unreadFlag;
    if (EcDirverControllerHal::instance()->readXdata(EC_TARN_POWER_MODE, &flag) != 0) {
        qDebug() << "get tarn power mode failed.";
        return otherProfile;
    }
    qDebug() << "get tarn power mode successed, mode flag is " << flag;
    for (const ProfileFlag &row : profileFlags) {
        if (row.flag == flag) {
            qDebug() << row.text;
            return row.profile;
        }
    }
    qDebug() << "tarn power mode is other.";
    return otherProfile;
}

bool EcPowerModeManager::setTarnPowerMode(quint32 profile)
{
    qDebug() << "ready to set tarn power mode.";
    const EcAccess access;
    if (!access)
        return false;
    qDebug() << "begin to set tarn power mode.";
    EcDirverControllerHal *ec = EcDirverControllerHal::instance();
    const quint8 flag = flagOf(profile);
    if (ec->writeXdata(EC_TARN_POWER_MODE, flag) != 0) {
        qDebug() << "set tarn power mode failed when write setVar.";
        return false;
    }
    tarnPlatform::sleepFor(latchTime);
    quint8 readBack = unreadFlag;
    if (ec->readXdata(EC_TARN_POWER_MODE, &readBack) != 0) {
        qDebug() << "set tarn power mode failed when read getVar.";
        return false;
    }
    if (readBack != flag) {
        qDebug() << "set tarn power mode failed, setVar != getVar.";
        return false;
    }
    qDebug() << "set tarn power mode successed with " << profile;
    return true;
}

} // namespace tarnAccessoryManager
