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

// Splits a typed line: the first word is the command, the rest, trimmed, is its data.
[[nodiscard]] TypedCommand parseTypedLine(const QString &line);

// Why the command must not be sent and what the user can do; nothing when it can be sent.
[[nodiscard]] std::optional<QString> commandObjection(const TypedCommand &command);

// "There is no command ..." with the names that may have been meant.
[[nodiscard]] QString unknownCommandText(const QString &name);

} // namespace tarnClient
