#include "typed_line.h"

#include "help_text.h"

#include <algorithm>
#include <iterator>

namespace tarnctl {

namespace {

struct Word
{
    QLatin1StringView text;
    TypedAction action;
};

// All other words are sent as commands.
constexpr Word words[] = {
    {QLatin1StringView(""), TypedAction::Nothing},
    {QLatin1StringView("help"), TypedAction::Help},
    {QLatin1StringView("reconnect"), TypedAction::Reconnect},
    {QLatin1StringView("quit"), TypedAction::Quit},
    {QLatin1StringView("exit"), TypedAction::Quit},
};

} // namespace

TypedAction typedAction(const TypedCommand &command)
{
    const auto *const found = std::find_if(std::begin(words), std::end(words),
        [&command](const Word &word) { return word.text == command.name; });
    return found == std::end(words) ? TypedAction::Send : found->action;
}

QString typedHelp(const TypedCommand &command)
{
    if (!command.data)
        return typingHelp();
    return topicHelp(*command.data).value_or(unknownCommandText(*command.data));
}

std::optional<QString> typedObjection(const TypedCommand &command)
{
    const bool isCommand = tarn::findCommand(command.name) != nullptr;
    if (!isCommand && topicHelp(command.name)) {
        return QStringLiteral("\"%1\" cannot be typed here; run \"tarnctl %1\" by itself.").arg(command.name);
    }
    return commandObjection(command);
}

std::optional<QString> unsentText(const QStringList &lines)
{
    QStringList unsent;
    for (const QString &line : lines) {
        if (typedAction(parseTypedLine(line)) == TypedAction::Send)
            unsent << line.trimmed();
    }
    if (unsent.isEmpty())
        return std::nullopt;
    const QString text = QStringLiteral("Not sent any more: ") + unsent.first();
    if (unsent.size() == 1)
        return text;
    return text + QStringLiteral(", and %1 after it.").arg(unsent.size() - 1);
}

} // namespace tarnctl
