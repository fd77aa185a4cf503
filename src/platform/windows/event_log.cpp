#include "platform/windows/event_log.h"

#include "platform/windows/wide_text.h"

namespace tarnPlatform {

void reportStartFailure(const ServiceFunctions &functions, const QString &service, const QString &reason)
{
    const HANDLE log = functions.registerEventSource(nullptr, wideText(service));
    if (!log)
        return;
    const QString message = QStringLiteral("The Service failed to start [%1]").arg(reason.trimmed());
    // Without a message file of its own the viewer shows the text as the event's only insertion.
    const wchar_t *insertions[] = {wideText(message)};
    functions.reportEvent(log, EVENTLOG_ERROR_TYPE, 0, 0, nullptr, 1, 0, insertions, nullptr);
    functions.deregisterEventSource(log);
}

} // namespace tarnPlatform
