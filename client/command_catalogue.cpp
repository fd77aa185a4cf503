#include "command_catalogue.h"

#include "name_distance.h"

#include <algorithm>

namespace tarnClient {

namespace {

constexpr int mostSuggestions = 3;

// The number of wrong letters that is tolerated: one in three, but at least two.
qsizetype toleranceFor(qsizetype length)
{
    return std::max<qsizetype>(2, length / 3);
}

} // namespace

const CommandEntry *findCommand(const QString &name)
{
    const QList<CommandEntry> &catalogue = commandCatalogue();
    const auto found = std::find_if(catalogue.cbegin(), catalogue.cend(),
        [&name](const CommandEntry &entry) { return entry.name == name; });
    return found == catalogue.cend() ? nullptr : &*found;
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
    for (const CommandEntry &entry : commandCatalogue()) {
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

} // namespace tarnClient
