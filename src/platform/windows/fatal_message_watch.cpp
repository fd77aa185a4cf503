#include "platform/windows/fatal_message_watch.h"

#include <QtGlobal>

namespace tarnPlatform {
namespace {

FatalMessageWatch::Report reportFatal;
QtMessageHandler previousHandler = nullptr;

void handleMessage(QtMsgType type, const QMessageLogContext &context, const QString &message)
{
    if (type == QtFatalMsg)
        reportFatal(message);
    previousHandler(type, context, message);
}

} // namespace

// The default handler is installed for a moment, because a message may come on another thread before
// previousHandler is set.
FatalMessageWatch::FatalMessageWatch(const Report &report)
{
    reportFatal = report;
    previousHandler = qInstallMessageHandler(nullptr);
    qInstallMessageHandler(handleMessage);
}

FatalMessageWatch::~FatalMessageWatch()
{
    qInstallMessageHandler(previousHandler);
}

} // namespace tarnPlatform
