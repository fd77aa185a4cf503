#pragma once

#include "command_catalogue.h"

#include <QByteArray>
#include <QJsonObject>

#include <optional>

namespace tarnClient {

// One JSON object from the service: an answer or a notification.
class Message
{
public:
    explicit Message(QJsonObject object);
    // Nothing when the bytes are no JSON object.
    [[nodiscard]] static std::optional<Message> parse(const QByteArray &bytes);

    [[nodiscard]] bool answers(const QString &tag) const;
    // An answer to a request of tarnctl, sent by this process or another one.
    [[nodiscard]] bool hasTag() const;
    // Every field of the request comes back in it, unchanged.
    [[nodiscard]] bool echoes(const QJsonObject &request) const;
    [[nodiscard]] QString command() const;
    // A field's value as text; empty when there is none.
    [[nodiscard]] QString value(QLatin1StringView key) const;

    // The answer in plain text, several lines where the command has several answer keys. A null entry stands
    // for a command that this tool does not know.
    [[nodiscard]] QString answerText(const CommandEntry *entry) const;
    // Command and value in one line.
    [[nodiscard]] QString lineText(const CommandEntry *entry) const;
    [[nodiscard]] QString notificationText() const;
    [[nodiscard]] bool tellsFailure(const CommandEntry *entry) const;

    // Compact JSON without the tag.
    [[nodiscard]] QByteArray json() const;

private:
    [[nodiscard]] QStringList answerLines(const CommandEntry *entry) const;

    QJsonObject object;
};

} // namespace tarnClient
