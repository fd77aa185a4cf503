#include "command_catalogue.h"

#include <algorithm>

namespace tarn {

namespace {

constexpr std::chrono::seconds unknownCommandLimit(10);

} // namespace

const CommandEntry *findCommand(const QString &name)
{
    const QList<CommandEntry> &catalogue = commandCatalogue();
    const auto found = std::find_if(catalogue.cbegin(), catalogue.cend(),
        [&name](const CommandEntry &entry) { return entry.name == name; });
    return found == catalogue.cend() ? nullptr : &*found;
}

std::chrono::milliseconds usualLimit(const QString &command)
{
    const CommandEntry *entry = findCommand(command);
    return entry == nullptr ? unknownCommandLimit : entry->timeout;
}

bool isNeverAnswered(const QString &command, const QString &data)
{
    const CommandEntry *entry = findCommand(command);
    return entry != nullptr && !entry->unansweredData.isEmpty() && data == entry->unansweredData;
}

} // namespace tarn
