#pragma once

#include <QString>
#include <QtGlobal>

#include <functional>

namespace tarnPlatform {

// While this object lives, the function gets every message of Qt's logging, on the thread that wrote it and
// before the message goes, unchanged, where it went without this object. What the function itself logs it
// does not get: Qt writes that to its standard output of messages only. Several objects may live at once;
// each is destroyed when no thread uses it any more.
class MessageTap
{
public:
    using Listener = std::function<void(QtMsgType type, const QString &message)>;

    explicit MessageTap(Listener function);
    ~MessageTap();
    MessageTap(const MessageTap &) = delete;
    MessageTap &operator=(const MessageTap &) = delete;

    const Listener listener;
};

} // namespace tarnPlatform
