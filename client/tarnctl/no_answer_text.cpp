#include "no_answer_text.h"

#include "client/command_catalogue.h"

namespace tarnctl {

namespace {

QLatin1StringView possibleReasons(const tarn::CommandEntry *entry)
{
    if (entry == nullptr) {
        return QLatin1StringView("This service may not know the command, or another client may have taken "
                                 "the answer");
    }
    if (!entry->needsEc)
        return QLatin1StringView("Another client may have taken it");
    // The reserved EC comes first, because neither waiting nor a new connection helps against it.
    return QLatin1StringView(
        "First see whether the EC is reserved: after an EC update or requestStartEcUpdate "
        "it stays so until the service is restarted, after requestEnterMcuUpdateMode until "
        "requestLeaveMcuUpdateMode.\n"
        "Else another client may have taken the answer, an update or the tool of an earlier "
        "one may still run, or the EC may be stuck");
}

} // namespace

QString noAnswerText(const QString &command, const QString &libraryText)
{
    return QStringLiteral("%1\n%2: look at the service's log, or try again with a longer --timeout.")
        .arg(libraryText, possibleReasons(tarn::findCommand(command)));
}

} // namespace tarnctl
