#include "panel/client/question_queue.h"

#include "panel/client/service_link.h"

#include <algorithm>

namespace tarnPanel {

QuestionQueue::QuestionQueue(ServiceLink &serviceLink)
    : link(serviceLink)
{
    connect(&link, &ServiceLink::changed, this, [this] {
        // At the next connection everything is asked anew.
        if (!link.isConnected())
            entries.clear();
        goOn();
    });
}

void QuestionQueue::add(const QString &command, const Question &question)
{
    const auto same = std::ranges::find(entries, command, &Entry::command);
    if (same != entries.end()) {
        same->isForUser = same->isForUser || isForUser;
        return;
    }
    entries.append({command, question, isForUser});
    goOn();
}

void QuestionQueue::goOn()
{
    if (isAsking || entries.isEmpty() || !link.isConnected() || !link.updateText().isEmpty())
        return;
    isAsking = true;
    const Entry next = entries.takeFirst();
    if (next.isForUser)
        link.addToSession({}, {next.command});
    next.question([this] {
        isAsking = false;
        goOn();
    });
}

} // namespace tarnPanel
