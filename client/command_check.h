#pragma once

#include "command_catalogue.h"

#include <optional>

namespace tarnClient {

// A command as the user gave it, on the command line or typed while watching.
struct TypedCommand
{
    QString name;
    std::optional<QString> data {};
};

// Splits a typed line: the first word is the command, the rest without outer blanks its data.
[[nodiscard]] TypedCommand parseTypedLine(const QString &line);

// What keeps the command from being sent, with what to do next; nothing when it is fine.
[[nodiscard]] std::optional<QString> commandObjection(const TypedCommand &command);

// "There is no command ..." with the names that may have been meant.
[[nodiscard]] QString unknownCommandText(const QString &name);

} // namespace tarnClient
