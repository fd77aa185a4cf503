#include "platform/message_tap.h"

#include <mutex>
#include <shared_mutex>
#include <vector>

namespace tarnPlatform {
namespace {

struct Taps
{
    std::shared_mutex mutex;
    std::vector<const MessageTap *> all;
    QtMessageHandler previousHandler = nullptr;
};

// Never destroyed, because threads may log until the process has ended.
Taps &taps()
{
    static auto *taps = new Taps;
    return *taps;
}

void handleMessage(QtMsgType type, const QMessageLogContext &context, const QString &message)
{
    {
        const std::shared_lock lock(taps().mutex);
        for (const MessageTap *tap : taps().all)
            tap->listener(type, message);
    }
    taps().previousHandler(type, context, message);
}

} // namespace

// The default handler is installed for a moment, because a message may come on another thread before
// previousHandler is set.
MessageTap::MessageTap(Listener function)
    : listener(std::move(function))
{
    const std::unique_lock lock(taps().mutex);
    if (taps().all.empty()) {
        taps().previousHandler = qInstallMessageHandler(nullptr);
        qInstallMessageHandler(handleMessage);
    }
    taps().all.push_back(this);
}

MessageTap::~MessageTap()
{
    const std::unique_lock lock(taps().mutex);
    std::erase(taps().all, this);
    if (taps().all.empty())
        qInstallMessageHandler(taps().previousHandler);
}

} // namespace tarnPlatform
