#include "platform/windows/fatal_message_watch.h"

#include <QtGlobal>

namespace tarnPlatform {
namespace {

FatalMessageWatch::Tell tellOfIt;
QtMessageHandler passOn = nullptr;

void note(QtMsgType type, const QMessageLogContext &context, const QString &message)
{
    if (type == QtFatalMsg)
        tellOfIt(message);
    passOn(type, context, message);
}

} // namespace

// The default handler stands in for a moment: a message may come on another thread before it is known whom to
// pass it on to.
FatalMessageWatch::FatalMessageWatch(const Tell &tell)
{
    tellOfIt = tell;
    passOn = qInstallMessageHandler(nullptr);
    qInstallMessageHandler(note);
}

FatalMessageWatch::~FatalMessageWatch()
{
    qInstallMessageHandler(passOn);
}

} // namespace tarnPlatform
