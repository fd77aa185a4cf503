#pragma once

#include <QJsonObject>
#include <QString>

namespace tarnCampaign {

// Empty when the reply may be what the service says to the request, else what is wrong with it.
[[nodiscard]] QString faultOfReply(const QJsonObject &request, const QString &reply);

// The same for a message that was not asked for.
[[nodiscard]] QString faultOfNotification(const QString &message);

} // namespace tarnCampaign
