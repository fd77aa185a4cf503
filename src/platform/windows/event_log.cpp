#include "platform/windows/event_log.h"

#include "platform/windows/wide_text.h"

#include "events.h"

#include <QRegularExpression>

namespace tarnPlatform {
namespace {

// The whole sentence is the event's insertion, so that a viewer shows it as well where the source is not
// registered and it does not find the program's message table.
void reportError(
    const ServiceFunctions &functions, const QString &service, DWORD event, const QString &sentence)
{
    const HANDLE log = functions.registerEventSource(nullptr, wideText(service));
    if (!log)
        return;
    // A viewer would take a percent sign before a number for an insertion of its own.
    static const QRegularExpression percent(QStringLiteral("%(?=[0-9%])"));
    const QString plain = QString(sentence).replace(percent, QStringLiteral("% "));
    const wchar_t *insertions[] = {wideText(plain)};
    functions.reportEvent(log, EVENTLOG_ERROR_TYPE, 0, event, nullptr, 1, 0, insertions, nullptr);
    functions.deregisterEventSource(log);
}

} // namespace

void reportStartFailure(const ServiceFunctions &functions, const QString &service, const QString &reason)
{
    reportError(functions, service, TARN_EVENT_START_FAILED,
        QStringLiteral("The Service failed to start [%1]").arg(reason.trimmed()));
}

void reportFatalEnd(const ServiceFunctions &functions, const QString &service, const QString &reason)
{
    reportError(functions, service, TARN_EVENT_FATAL_END,
        QStringLiteral("The Service ends because of an error [%1]").arg(reason.trimmed()));
}

} // namespace tarnPlatform
