#include "command_check.h"

#include "name_distance.h"

#include <algorithm>

namespace tarnctl {

namespace {

constexpr int mostSuggestions = 3;

// The number of wrong letters that is tolerated: one in three, but at least two.
qsizetype toleranceFor(qsizetype length)
{
    return std::max<qsizetype>(2, length / 3);
}

} // namespace

TypedCommand parseTypedLine(const QString &line)
{
    const QString trimmed = line.trimmed();
    const auto blank = std::find_if(trimmed.cbegin(), trimmed.cend(), [](QChar c) { return c.isSpace(); });
    if (blank == trimmed.cend())
        return {trimmed};
    const auto nameLength = blank - trimmed.cbegin();
    return {trimmed.left(nameLength), trimmed.mid(nameLength).trimmed()};
}

QStringList nearestCommands(const QString &name)
{
    struct Candidate
    {
        qsizetype distance;
        QString name;
    };
    QList<Candidate> candidates;
    const QString wanted = name.toLower();
    for (const tarn::CommandEntry &entry : tarn::commandCatalogue()) {
        const QString known = entry.name.toString();
        const qsizetype distance = nameDistance(wanted, known.toLower());
        const bool isPart = wanted.size() >= 3 && known.contains(wanted, Qt::CaseInsensitive);
        if (isPart || distance <= toleranceFor(wanted.size()))
            candidates.append({distance, known});
    }
    std::stable_sort(candidates.begin(), candidates.end(),
        [](const Candidate &a, const Candidate &b) { return a.distance < b.distance; });
    QStringList names;
    for (const Candidate &candidate : candidates.mid(0, mostSuggestions))
        names << candidate.name;
    return names;
}

QString unknownCommandText(const QString &name)
{
    const QString text = QStringLiteral("There is no command \"%1\".").arg(name);
    const QStringList near = nearestCommands(name);
    if (near.isEmpty())
        return text + QStringLiteral("\n\"tarnctl --help\" and \"tarnctl commands\" list them all.");
    return text + QStringLiteral(" Did you mean %1?").arg(near.join(QLatin1StringView(", ")));
}

std::optional<QString> commandObjection(const TypedCommand &command)
{
    const tarn::CommandEntry *entry = tarn::findCommand(command.name);
    if (entry == nullptr)
        return unknownCommandText(command.name);
    const std::optional<QString> objection = entry->data.objection(command.name, command.data);
    if (!objection)
        return std::nullopt;
    return *objection
        + QStringLiteral("\nSee \"tarnctl help %1\"; --force sends it as it is.").arg(command.name);
}

} // namespace tarnctl
