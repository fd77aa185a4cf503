#include "message.h"

#include "request.h"

#include <QJsonDocument>

namespace tarnClient {

namespace {

constexpr QLatin1StringView commandKey("cmd");
constexpr QLatin1StringView resultKey("result");
constexpr QLatin1StringView failedValue("failed");
// Shown for commands whose answer is the request without anything added.
constexpr QLatin1StringView doneText("done");

} // namespace

Message::Message(QJsonObject content)
    : object(std::move(content))
{ }

std::optional<Message> Message::parse(const QByteArray &bytes)
{
    const QJsonDocument document = QJsonDocument::fromJson(bytes);
    if (!document.isObject())
        return std::nullopt;
    return Message(document.object());
}

bool Message::answers(const QString &tag) const
{
    return !tag.isEmpty() && object.value(tagKey).toString() == tag;
}

bool Message::hasTag() const
{
    return object.contains(tagKey);
}

bool Message::echoes(const QJsonObject &request) const
{
    for (auto field = request.constBegin(); field != request.constEnd(); ++field) {
        if (object.value(field.key()) != field.value())
            return false;
    }
    return !request.isEmpty();
}

QString Message::command() const
{
    return object.value(commandKey).toString();
}

QString Message::value(QLatin1StringView key) const
{
    return object.value(key).toVariant().toString();
}

QStringList Message::answerLines(const CommandEntry *entry) const
{
    if (entry == nullptr) {
        if (object.contains(resultKey))
            return {value(resultKey)};
        return {QString::fromUtf8(json())};
    }
    if (entry->answerKeys.isEmpty())
        return {doneText.toString()};
    QStringList lines;
    for (const QLatin1StringView key : entry->answerKeys) {
        if (!object.contains(key))
            continue;
        const bool isPlain = key == dataKey || key == resultKey;
        lines << (isPlain ? value(key) : key.toString() + QLatin1StringView(": ") + value(key));
    }
    // An answer with none of the expected keys is shown as a whole.
    return lines.isEmpty() ? QStringList {QString::fromUtf8(json())} : lines;
}

QString Message::answerText(const CommandEntry *entry) const
{
    return answerLines(entry).join(u'\n');
}

QString Message::lineText(const CommandEntry *entry) const
{
    return command() + u' ' + answerLines(entry).join(QLatin1StringView(", "));
}

QString Message::notificationText() const
{
    const bool isUsual = object.size() == 2 && object.contains(commandKey) && object.contains(dataKey);
    if (!isUsual)
        return QString::fromUtf8(json());
    return (command() + u' ' + value(dataKey)).trimmed();
}

bool Message::tellsFailure(const CommandEntry *entry) const
{
    const QLatin1StringView key = entry == nullptr ? resultKey : entry->outcomeKey;
    return !key.isEmpty() && value(key) == failedValue;
}

QByteArray Message::json() const
{
    QJsonObject shown = object;
    shown.remove(tagKey);
    return QJsonDocument(shown).toJson(QJsonDocument::Compact);
}

} // namespace tarnClient
