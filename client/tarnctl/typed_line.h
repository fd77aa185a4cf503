#pragma once

#include "command_check.h"

namespace tarnctl {

// What is to be done with a line that is typed into a watch.
enum class TypedAction { Nothing, Help, Reconnect, Quit, Send };

[[nodiscard]] TypedAction typedAction(const TypedCommand &command);
// The answer to "help" and "help COMMAND".
[[nodiscard]] QString typedHelp(const TypedCommand &command);
// As commandObjection(), also for words that tarnctl itself carries out, but not here.
[[nodiscard]] std::optional<QString> typedObjection(const TypedCommand &command);
// Says which commands among the lines have not been sent; nothing when none is left.
[[nodiscard]] std::optional<QString> unsentText(const QStringList &lines);

} // namespace tarnctl
