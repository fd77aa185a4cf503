#include "device/ec_access_lock.h"
#include "device/ec_dirver_controller_hal.h"
#include "device/ec_registers.h"
#include "device/monitor/ec_dirver_reader.h"
#include "platform/waits.h"

#include <QDebug>

// Data of the attached accessory, read when a client asks.
namespace tarnDeviceInfos {
namespace {

using namespace std::chrono_literals;
using tarnPlatform::sleepFor;

constexpr auto pauseBetweenReads = 50ms;

QString &appendRegister(quint16 address, const char *label, QString &out)
{
    const EcAccess access;
    quint8 value = 255;
    if (!access || EcDirverControllerHal::instance()->readXdata(address, &value) != 0)
        return out;
    out.append(QString::number(value));
    qDebug() << label << out;
    return out;
}

} // namespace

QString &EcDirverReader::getAccessoryCode(QString &out)
{
    return appendRegister(ACCESSORY_CODE, "Accessory Code is: ", out);
}

QString &EcDirverReader::getHardwareVersion(QString &out)
{
    return appendRegister(HARDWARE_VERSION, "Hardware Version is: ", out);
}

QString &EcDirverReader::getMcuVersion(QString &out)
{
    const EcAccess access;
    EcDirverControllerHal *ec = EcDirverControllerHal::instance();
    quint8 major = 255;
    if (!access || ec->readXdata(MCU_VERSION_MAJOR, &major) != 0)
        return out;
    sleepFor(pauseBetweenReads);
    quint8 minor = 255;
    if (ec->readXdata(MCU_VERSION_MINOR, &minor) != 0)
        return out;
    sleepFor(pauseBetweenReads);
    quint8 patch = 255;
    if (ec->readXdata(MCU_VERSION_PATCH, &patch) != 0)
        return out;
    // Minor and patch are joined without a dot, because clients parse that format.
    out.append(QStringLiteral("%1.%2%3").arg(major).arg(minor).arg(patch));
    qDebug() << "Mcu Version is: " << out;
    return out;
}

quint8 EcDirverReader::getHandShakeStatus()
{
    const EcAccess access;
    quint8 status = 255;
    if (access && EcDirverControllerHal::instance()->readXdata(MCU_LINK_STATUS, &status) == 0)
        qDebug() << "get hank shake status successful!";
    else
        qDebug() << "get hank shake status failed!";
    return status;
}

} // namespace tarnDeviceInfos
