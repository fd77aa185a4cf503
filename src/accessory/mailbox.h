#pragma once

#include <QtGlobal>

#include <chrono>

namespace tarnAccessoryManager {

// The time that the EC's firmware needs between two steps of a mailbox exchange.
inline constexpr std::chrono::milliseconds mailboxPause {10};

// One byte for the application mailbox. The log names the byte before its value and the register after it.
struct MailboxWrite
{
    quint16 address;
    quint8 value;
    const char *name;
    const char *doneEnd;
    const char *failedEnd;
};

// Writes the byte and logs how it went; ecAccessMutex is held by the caller.
[[nodiscard]] bool writeMailbox(const MailboxWrite &write);

// Writes the three bytes of a colour with a pause after each, then the command on which the EC takes them;
// that it does is not checked. Stops at the first failure, so the command never follows a missing byte.
[[nodiscard]] bool writeMailboxColour(const MailboxWrite (&colour)[3], const MailboxWrite &command);

// How a getter waits for the EC to take its command, with the log texts.
struct MailboxPoll
{
    std::chrono::milliseconds pause;
    int maximumPolls;
    const char *done;
    const char *failed;
    const char *again;
};

// Reads the command byte until the EC has cleared it. Running out of polls is no error: the answer is
// read in any case, and may be there. ecAccessMutex is held by the caller.
void awaitMailbox(const MailboxPoll &poll);

} // namespace tarnAccessoryManager
