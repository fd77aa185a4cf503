#include "command_check.h"

#include <algorithm>

namespace tarnClient {

TypedCommand parseTypedLine(const QString &line)
{
    const QString trimmed = line.trimmed();
    const auto blank = std::find_if(trimmed.cbegin(), trimmed.cend(), [](QChar c) { return c.isSpace(); });
    if (blank == trimmed.cend())
        return {trimmed};
    const auto nameLength = blank - trimmed.cbegin();
    return {trimmed.left(nameLength), trimmed.mid(nameLength).trimmed()};
}

QString unknownCommandText(const QString &name)
{
    const QString text = QStringLiteral("There is no command \"%1\".").arg(name);
    const QStringList near = nearestCommands(name);
    if (near.isEmpty())
        return text + QStringLiteral("\n\"tarnctl commands\" lists them all.");
    return text + QStringLiteral(" Did you mean %1?").arg(near.join(QLatin1StringView(", ")));
}

std::optional<QString> commandObjection(const TypedCommand &command)
{
    const CommandEntry *entry = findCommand(command.name);
    if (entry == nullptr)
        return unknownCommandText(command.name);
    const std::optional<QString> objection = entry->data.objection(command.name, command.data);
    if (!objection)
        return std::nullopt;
    return *objection
        + QStringLiteral("\nSee \"tarnctl help %1\"; --force sends it as it is.").arg(command.name);
}

} // namespace tarnClient
