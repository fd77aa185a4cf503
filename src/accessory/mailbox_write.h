#pragma once

#include <QtGlobal>

namespace tarnAccessoryManager {

// One byte for the application mailbox with the log's words around its value.
struct MailboxWrite
{
    quint16 address;
    quint8 value;
    const char *done;
    const char *doneEnd;
    const char *failed;
    const char *failedEnd;
};

// Writes the byte and logs how it went; ecAccessMutex is held by the caller.
[[nodiscard]] bool writeMailbox(const MailboxWrite &write);

} // namespace tarnAccessoryManager
