#include "support/reply_rules.h"

#include "support/command_samples.h"

#include <QJsonDocument>
#include <QRegularExpression>

#include <algorithm>

namespace tarnTest {

using tarn::CommandEntry;

namespace {

constexpr char failed[] = "failed";
constexpr char outcomes[] = "successed|failed";

struct NotificationRule
{
    const char *command;
    const char *values; // a regular expression for the whole value
};
const NotificationRule notificationRules[] = {
    {"changeAccessoryType", accessoryNames()},
    {"getKVaneLedLight", R"(-1|\d{1,3})"},
    {"getKvaneChargingStatus", "0|1"},
    {"getKvaneBatteryNum", R"(\d{1,3})"},
    {"getTarnChargingStatus", "0|1"},
    {"getTarnBatteryNum", R"(\d{1,3})"},
    {"disengagedGraphics", ""},
};

bool matches(const QString &value, const char *values)
{
    const QString pattern = QRegularExpression::anchoredPattern(QString::fromLatin1(values));
    return QRegularExpression(pattern).match(value).hasMatch();
}

enum class Ec {
    MayAnswer,
    CannotBeHad,
};

bool allows(const AnswerValues &rule, const QString &value, Ec ec)
{
    if (rule.withoutEc && value == QLatin1String(rule.withoutEc))
        return true;
    return (!rule.withoutEc || ec == Ec::MayAnswer) && matches(value, rule.values);
}

// What the command may add to a request with these data, or change in it: the rows for the data, then the
// other rows, then what follows from the catalogue. The first of a key holds.
std::vector<AnswerValues> answersOf(const CommandEntry &command, const QString &data)
{
    std::vector<AnswerValues> answers;
    const auto add = [&answers](const AnswerValues &added) {
        if (std::none_of(answers.begin(), answers.end(),
                [&added](const AnswerValues &answer) { return answer.key == added.key; }))
            answers.push_back(added);
    };
    if (!command.outcomeKey.isEmpty() && badData(command).contains(data))
        add({command.outcomeKey, failed});
    const CommandSample &sample = sampleOf(command.name);
    for (const AnswerValues &row : sample.answers) {
        if (!row.data.isEmpty() && data == row.data)
            add(row);
    }
    for (const AnswerValues &row : sample.answers) {
        if (row.data.isEmpty())
            add(row);
    }
    if (!command.outcomeKey.isEmpty())
        add({.key = command.outcomeKey, .values = outcomes, .withoutEc = failed});
    return answers;
}

QString faultOf(const QJsonObject &request, const QString &reply, Ec ec)
{
    const QString data = request.value("data").toString();
    const CommandEntry *command = tarn::findCommand(request.value("cmd").toString());
    const bool isSilent = command && !command->unansweredData.isEmpty() && data == command->unansweredData;
    if (!command || isSilent)
        return reply.isEmpty() ? QString() : QStringLiteral("an answer where none is due");
    QJsonObject answer = QJsonDocument::fromJson(reply.toUtf8()).object();
    if (QString::fromUtf8(QJsonDocument(answer).toJson(QJsonDocument::Compact)) != reply)
        return QStringLiteral("not one compact JSON object");

    const bool hasFailed = !command->outcomeKey.isEmpty() && answer.value(command->outcomeKey) == failed;
    QJsonObject rest = request;
    for (const AnswerValues &rule : answersOf(*command, data)) {
        const bool isAbsent = rule.onlyAfterSuccess && hasFailed;
        if (answer.contains(rule.key) == isAbsent)
            return QStringLiteral("field ") + rule.key;
        if (!isAbsent
            && (!answer.value(rule.key).isString() || !allows(rule, answer.value(rule.key).toString(), ec)))
            return QStringLiteral("value of ") + rule.key;
        answer.remove(rule.key);
        rest.remove(rule.key);
    }
    return answer == rest ? QString() : QStringLiteral("fields that differ from the request's");
}

} // namespace

QString faultOfReply(const QJsonObject &request, const QString &reply)
{
    return faultOf(request, reply, Ec::MayAnswer);
}

QString faultOfReplyWithoutEc(const QJsonObject &request, const QString &reply)
{
    return faultOf(request, reply, Ec::CannotBeHad);
}

QString faultOfNotification(const QString &message)
{
    const QJsonObject fields = QJsonDocument::fromJson(message.toUtf8()).object();
    if (fields.keys() != QStringList({"cmd", "data"}))
        return QStringLiteral("fields");
    const QString command = fields.value("cmd").toString();
    const auto *rule = std::find_if(std::begin(notificationRules), std::end(notificationRules),
        [&command](const NotificationRule &row) { return command == QLatin1String(row.command); });
    if (rule == std::end(notificationRules))
        return QStringLiteral("command");
    return matches(fields.value("data").toString(), rule->values) ? QString() : QStringLiteral("value");
}

} // namespace tarnTest
