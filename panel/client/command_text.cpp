#include "panel/client/command_text.h"

#include "client/command_catalogue.h"

#include <algorithm>

namespace tarnPanel {

TypedText typedText(const QString &line)
{
    const QString trimmed = line.trimmed();
    const auto blank = std::ranges::find_if(trimmed, [](QChar c) { return c.isSpace(); });
    if (blank == trimmed.cend())
        return {trimmed, {}};
    const auto length = blank - trimmed.cbegin();
    return {trimmed.left(length), trimmed.mid(length).trimmed()};
}

QString objectionTo(const TypedText &typed)
{
    const tarn::CommandEntry *entry = tarn::findCommand(typed.name);
    if (entry == nullptr) {
        return QStringLiteral("There is no command \"%1\"; the service would not answer it.").arg(typed.name);
    }
    const std::optional<QString> data = typed.data.isNull() ? std::nullopt : std::optional(typed.data);
    return entry->data.objection(typed.name, data).value_or(QString());
}

QString summaryOf(const QString &name)
{
    const tarn::CommandEntry *entry = tarn::findCommand(name);
    if (entry == nullptr)
        return {};
    QString text = QStringLiteral("%1. Concerns: %2.").arg(entry->summary, entry->concerns);
    if (entry->data.kind != tarn::DataKind::None)
        text += QStringLiteral(" Takes: %1.").arg(entry->data.description());
    return entry->note.isEmpty() ? text : text + u' ' + entry->note;
}

QStringList completionsOf(const QString &line)
{
    const bool hasName = line.contains(u' ');
    const QString name = typedText(line).name;
    QStringList lines;
    for (const tarn::CommandEntry &entry : tarn::commandCatalogue()) {
        if (!hasName)
            lines << entry.name.toString();
        if (!hasName || entry.name != name)
            continue;
        for (const QLatin1StringView word : entry.data.choices)
            lines << entry.name + u' ' + word;
    }
    return lines;
}

} // namespace tarnPanel
