#pragma once

#include "client/command_catalogue.h"

#include <QStringList>

#include <optional>

namespace tarnctl {

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

// The commands that the user may have meant, the nearest first; at most three.
[[nodiscard]] QStringList nearestCommands(const QString &name);

// "There is no command ..." with the names that may have been meant.
[[nodiscard]] QString unknownCommandText(const QString &name);

} // namespace tarnctl
