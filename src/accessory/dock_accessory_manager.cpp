#include "accessory/dock_accessory_manager.h"

#include "accessory/mailbox.h"
#include "device/ec_access_lock.h"
#include "device/ec_dirver_controller_hal.h"
#include "device/ec_registers.h"
#include "platform/process_wide.h"
#include "platform/waits.h"

#include <QDebug>

namespace tarnAccessoryManager {
namespace {

using namespace tarnDeviceInfos;
using tarnPlatform::sleepFor;

constexpr quint8 unreadByte = 0xF0; // neither on nor off

constexpr MailboxPoll commandPoll = {
    mailboxPause,
    20,
    "read ecRGBCmdDataDock from xdata successed with: ",
    "read ecRGBCmdDataDock from xdata failed.",
    "read ecRGBCmdDataDock from xdata until it is 0.",
};

} // namespace

DockAccessoryManager *DockAccessoryManager::instance()
{
    return tarnPlatform::ProcessWide<DockAccessoryManager>::instance();
}

DockAccessoryManager::DockAccessoryManager()
{
    qDebug() << "DockAccessoryManager object is created.";
}

DockAccessoryManager::~DockAccessoryManager()
{
    qDebug() << "DockAccessoryManager object is killed.";
}

int DockAccessoryManager::getDockLedStatus()
{
    qDebug() << "start to get dock led setting.";
    const EcAccess access;
    if (!access)
        return -1;
    if (!writeMailbox(
            {XEC_RGB_CMD, APP_EC_RGB_READ, "APP_EC_RGB_READ", "to XEC_RGB_CMD.", "to XEC_RGB_CMD."}))
        return -1;
    sleepFor(mailboxPause);
    awaitMailbox(commandPoll);
    sleepFor(mailboxPause);

    quint8 red = unreadByte;
    if (EcDirverControllerHal::instance()->readXdata(XEC_RGB_RED, &red) != 0) {
        qWarning() << "read rgbRedVerDock from xdata failed.";
        return -2;
    }
    qDebug() << "read rgbRedVerDock from xdata successed with: " << red;
    if (red == 1) {
        qDebug() << "dock led is on.";
        return 1;
    }
    if (red == 0) {
        qDebug() << "dock led is off.";
        return 0;
    }
    qDebug() << "unexpected rgbRedVerDock:" << red;
    return -3;
}

int DockAccessoryManager::setDockLedStatus(quint32 value)
{
    qDebug() << "start to set dock led setting.";
    const EcAccess access;
    if (!access)
        return -2;
    const MailboxWrite colours[] = {
        {XEC_RGB_RED, static_cast<quint8>(value), "rgbColorRedDock", "to XEC_RGB_RED.", "to XEC_RGB_RED."},
        {XEC_RGB_GREEN, 0, "rgbColorGreenDock", "to XEC_RGB_GREEN.", "to XEC_RGB_GREEN."},
        {XEC_RGB_BLUE, 0, "rgbColorBlueDock", "to XEC_RGB_BLUE.", "to XEC_RGB_BLUE."},
    };
    if (!writeMailboxColour(colours,
            {XEC_RGB_CMD, APP_EC_RGB_WRITE, "APP_EC_RGB_WRITE", "to XEC_RGB_CMD.", "to XEC_RGB_CMD."}))
        return -2;
    qDebug() << "Set dock led status successed：" << value;
    return 0;
}

} // namespace tarnAccessoryManager
