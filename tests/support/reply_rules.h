#pragma once

#include <QJsonObject>
#include <QString>

namespace tarnTest {

// Empty when the reply may be what the service says to the request, else what is wrong with it. The request's
// data are good or bad data of the command's samples.
[[nodiscard]] QString faultOfReply(const QJsonObject &request, const QString &reply);

// The same when the EC could not be had: nothing of it is known, and nothing is done.
[[nodiscard]] QString faultOfReplyWithoutEc(const QJsonObject &request, const QString &reply);

// The same for a message that was not asked for.
[[nodiscard]] QString faultOfNotification(const QString &message);

} // namespace tarnTest
