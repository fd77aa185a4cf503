#pragma once

#include "command_check.h"

#include "tarn/reply.h"

namespace tarnctl {

// What watch says when a command gets no answer, and when it ends.

[[nodiscard]] bool isNeverAnswered(const TypedCommand &command);
// The service has gone, and watch ends.
[[nodiscard]] QString lastGoneText(const std::optional<TypedCommand> &pending, bool isWritten);
[[nodiscard]] QString reconnectText(
    const std::optional<TypedCommand> &pending, bool isWritten, bool isConnected);
// The command without an answer and those that have not been sent, with the lines that are left; nothing when
// there are none.
[[nodiscard]] std::optional<QString> unfinishedText(
    const std::optional<TypedCommand> &pending, bool isWritten, QStringList lines);
// Why the command has no answer.
[[nodiscard]] QString complaintText(
    const tarn::Reply &reply, const TypedCommand &command, bool isStillConnected);

} // namespace tarnctl
