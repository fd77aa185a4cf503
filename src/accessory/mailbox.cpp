#include "accessory/mailbox.h"

#include "device/ec_dirver_controller_hal.h"
#include "device/ec_registers.h"
#include "platform/waits.h"

#include <QDebug>

namespace tarnAccessoryManager {
namespace {

using tarnDeviceInfos::EcDirverControllerHal;

constexpr quint8 unreadCommand = 0xF0; // the value after a failed read: the command counts as not finished

void readCommandByte(const MailboxPoll &poll, quint8 *command)
{
    if (EcDirverControllerHal::instance()->readXdata(tarnDeviceInfos::XEC_RGB_CMD, command) == 0)
        qDebug() << poll.done << *command;
    else
        qWarning() << poll.failed;
}

} // namespace

bool writeMailbox(const MailboxWrite &write)
{
    const QByteArray name = write.name;
    if (EcDirverControllerHal::instance()->writeXdata(write.address, write.value) != 0) {
        qWarning() << ("Failed to write " + name + ": ").constData() << write.value << write.failedEnd;
        return false;
    }
    qDebug() << ("Success to write " + name + ": ").constData() << write.value << write.doneEnd;
    return true;
}

bool writeMailboxColour(const MailboxWrite (&colour)[3], const MailboxWrite &command)
{
    for (const MailboxWrite &byte : colour) {
        if (!writeMailbox(byte))
            return false;
        tarnPlatform::sleepFor(mailboxPause);
    }
    return writeMailbox(command);
}

void awaitMailbox(const MailboxPoll &poll)
{
    quint8 command = unreadCommand;
    readCommandByte(poll, &command);
    for (int look = 0; command != 0 && look < poll.maximumPolls; ++look) {
        tarnPlatform::sleepFor(poll.pause);
        qDebug() << poll.again;
        readCommandByte(poll, &command);
    }
}

} // namespace tarnAccessoryManager
