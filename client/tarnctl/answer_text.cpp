#include "answer_text.h"

#include "client/command_catalogue.h"
#include "client/request.h"

#include <QJsonDocument>

namespace tarnctl {

namespace {

// Shown for commands whose answer is the request without anything added.
constexpr QLatin1StringView doneText("done");

QString textIn(const QJsonObject &answer, QLatin1StringView key)
{
    return answer.value(key).toVariant().toString();
}

QStringList wholeAnswer(const QJsonObject &answer)
{
    return {QString::fromUtf8(compactJson(answer))};
}

QStringList answerLines(const QString &command, const QJsonObject &answer)
{
    const tarn::CommandEntry *entry = tarn::findCommand(command);
    if (entry == nullptr) {
        return answer.contains(tarn::resultKey) ? QStringList {textIn(answer, tarn::resultKey)}
                                                : wholeAnswer(answer);
    }
    if (entry->answerKeys.isEmpty())
        return {doneText.toString()};
    QStringList lines;
    for (const QLatin1StringView key : entry->answerKeys) {
        if (!answer.contains(key))
            continue;
        const bool isPlain = key == tarn::dataKey || key == tarn::resultKey;
        lines << (isPlain ? textIn(answer, key)
                          : key.toString() + QLatin1StringView(": ") + textIn(answer, key));
    }
    // None of the expected keys came.
    return lines.isEmpty() ? wholeAnswer(answer) : lines;
}

} // namespace

QString answerText(const QString &command, const QJsonObject &answer)
{
    return answerLines(command, answer).join(u'\n');
}

QString answerLine(const QString &command, const QJsonObject &answer)
{
    return command + u' ' + answerLines(command, answer).join(QLatin1StringView(", "));
}

QString lateAnswerLine(const QJsonObject &answer)
{
    return answerLine(textIn(answer, tarn::commandKey), answer);
}

QString notificationLine(const tarn::Notification &notification)
{
    return (notification.name + u' ' + notification.data).trimmed();
}

QByteArray compactJson(const QJsonObject &message)
{
    return QJsonDocument(message).toJson(QJsonDocument::Compact);
}

QByteArray compactJson(const tarn::Notification &notification)
{
    return compactJson(
        QJsonObject {{tarn::commandKey, notification.name}, {tarn::dataKey, notification.data}});
}

} // namespace tarnctl
