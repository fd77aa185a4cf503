#pragma once

#include "pipe/outbox/message_format.h"

#include <QJsonObject>
#include <QString>

// How handlers read their request and write their reply: the request object itself with fields added.
namespace tarnPipeServer {

inline QString requestData(const QJsonObject &request)
{
    return request.value(QStringLiteral("data")).toString();
}

// "successed" is the protocol's own spelling.
inline QString outcome(bool success)
{
    return success ? QStringLiteral("successed") : QStringLiteral("failed");
}

inline QString replyWith(QJsonObject &request, const QString &key, const QString &value)
{
    request.insert(key, value);
    return messageText(request);
}

inline QString replyData(QJsonObject &request, const QString &value)
{
    return replyWith(request, QStringLiteral("data"), value);
}

inline QString replyResult(QJsonObject &request, bool success)
{
    return replyWith(request, QStringLiteral("result"), outcome(success));
}

} // namespace tarnPipeServer
