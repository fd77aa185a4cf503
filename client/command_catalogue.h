#pragma once

#include "data_rule.h"

#include <QList>
#include <QString>

#include <chrono>

namespace tarn {

// One command of the service as this tool knows it. All that the tool does with a command follows from its
// row.
struct CommandEntry
{
    QLatin1StringView name;
    QLatin1StringView summary;
    // The part of the machine that the command is about.
    QLatin1StringView concerns;
    DataRule data {};
    // Reply keys in the order in which they are shown; none: the service sends the request back unchanged.
    QList<QLatin1StringView> answerKeys {};
    QLatin1StringView answerMeaning;
    // The answer key whose value "failed" means that the service could not do it; empty where no key says so.
    QLatin1StringView outcomeKey {};
    // The data for which the service sends no answer.
    QLatin1StringView unansweredData {};
    std::chrono::milliseconds timeout;
    // Not answered while the EC is reserved.
    bool needsEc = true;
    QLatin1StringView example;
    QLatin1StringView note {};
};

// All commands of the service.
[[nodiscard]] const QList<CommandEntry> &commandCatalogue();
// Null when there is no command of that name.
[[nodiscard]] const CommandEntry *findCommand(const QString &name);
// How long its answer is waited for, also for a command that is not in the catalogue.
[[nodiscard]] std::chrono::milliseconds usualLimit(const QString &command);
// True for a request to which the service never sends an answer.
[[nodiscard]] bool isNeverAnswered(const QString &command, const QString &data);

} // namespace tarn
