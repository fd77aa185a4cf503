#include "accessory/mailbox_write.h"

#include "device/ec_dirver_controller_hal.h"

#include <QDebug>

namespace tarnAccessoryManager {

bool writeMailbox(const MailboxWrite &write)
{
    using tarnDeviceInfos::EcDirverControllerHal;
    if (EcDirverControllerHal::instance()->writeXdata(write.address, write.value) != 0) {
        qWarning() << write.failed << write.value << write.failedEnd;
        return false;
    }
    qDebug() << write.done << write.value << write.doneEnd;
    return true;
}

} // namespace tarnAccessoryManager
