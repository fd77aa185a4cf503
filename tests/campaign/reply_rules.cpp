#include "reply_rules.h"

#include <QJsonDocument>
#include <QRegularExpression>

#include <algorithm>
#include <iterator>

namespace tarnCampaign {
namespace {

constexpr char outcomes[] = "successed|failed";
constexpr char version[] = R"(|\d{1,3}\.\d{2,6})";
constexpr char byteOrNothing[] = R"(|\d{1,3})";
constexpr char byte[] = R"(\d{1,3})";
constexpr char colours[] = "white|red|yellow|green|cyan|blue|purplishred|shutdown";

// What a command may add to its request, or change in it. Several rows: all of them.
struct ReplyRule
{
    const char *command;
    const char *data; // the rule is for requests with this; null: any other
    const char *key;
    const char *values; // a regular expression for the whole value
};
constexpr ReplyRule replyRules[] = {
    {"getAccessoryType", nullptr, "data", "dock|graphics|k_vane|disconnected|"},
    {"getMcuVersion", nullptr, "data", version},
    {"getHardwareVersion", nullptr, "data", byteOrNothing},
    {"getAccessoryCode", nullptr, "data", byteOrNothing},
    {"getMcuUpdateParameters", nullptr, "mcuVer", version},
    {"getMcuUpdateParameters", nullptr, "hardwareVer", byteOrNothing},
    {"getMcuUpdateParameters", nullptr, "accessoryCode", byteOrNothing},
    {"powerModeControl", "first", "result", "0|1|2|-2|-10"},
    {"powerModeControl", nullptr, "result", outcomes},
    {"getDockLedStatus", nullptr, "data", "on|off|unknown"},
    {"setDockLedStatus", nullptr, "result", outcomes},
    {"getGraphicsRGB", nullptr, "data", colours},
    {"setGraphicsRGB", "on", "data", "white|red|yellow|green|cyan|blue|purplishred"},
    {"setGraphicsRGB", "on", "result", outcomes},
    {"setGraphicsRGB", nullptr, "result", outcomes},
    {"requestMcuUpdate", nullptr, "mcuVer", version}, // only after a success
    {"requestMcuUpdate", nullptr, "data", outcomes},
    {"requestEnterMcuUpdateMode", nullptr, "data", outcomes},
    {"requestLeaveMcuUpdateMode", nullptr, "data", version},
    {"requestEcUpdate", nullptr, "data", "failed"}, // no EC firmware to be found in the campaign
    {"setSmartChargingStatus", nullptr, "result", outcomes},
    {"getSmartChargingStatus", nullptr, "data", "ON|OFF|failed"},
    {"getTarnPowerMode", nullptr, "data", "high|balance|low|hide"},
    {"setTarnPowerMode", nullptr, "result", outcomes},
    {"getTarnKvaneSnCode", nullptr, "data", "default|[0-9A-F]{14}"},
    {"getKVaneLedLight", nullptr, "data", R"(-1|\d{1,3})"},
    {"getKvaneChargingStatus", nullptr, "data", "0|1|251"},
    {"getKvaneBatteryNum", nullptr, "data", byte},
    {"getTarnChargingStatus", nullptr, "data", "0|1|251"},
    {"getTarnBatteryNum", nullptr, "data", byte},
};
constexpr const char *echoes[] = {"setKVaneLedLight", "requestBeginGraphicsMcuUpdate"};

constexpr ReplyRule notificationRules[] = {
    {"changeAccessoryType", nullptr, "data", "dock|graphics|k_vane|disconnected"},
    {"getKVaneLedLight", nullptr, "data", R"(-1|\d{1,3})"},
    {"getKvaneChargingStatus", nullptr, "data", "0|1"},
    {"getKvaneBatteryNum", nullptr, "data", byte},
    {"getTarnChargingStatus", nullptr, "data", "0|1"},
    {"getTarnBatteryNum", nullptr, "data", byte},
    {"disengagedGraphics", nullptr, "data", ""},
};

bool matches(const QString &value, const char *values)
{
    const QString pattern = QRegularExpression::anchoredPattern(QString::fromLatin1(values));
    return QRegularExpression(pattern).match(value).hasMatch();
}

bool hasOwnRule(const QString &command, const QString &data)
{
    return std::any_of(std::begin(replyRules), std::end(replyRules), [&](const ReplyRule &rule) {
        return command == QLatin1String(rule.command) && rule.data && data == QLatin1String(rule.data);
    });
}

bool isAnswered(const QString &command)
{
    const auto isCommand = [&command](const auto *name) {
        return command == QLatin1String(name);
    };
    return std::any_of(std::begin(echoes), std::end(echoes), isCommand)
        || std::any_of(std::begin(replyRules), std::end(replyRules),
            [&](const ReplyRule &rule) { return isCommand(rule.command); });
}

} // namespace

QString faultOfReply(const QJsonObject &request, const QString &reply)
{
    const QString command = request.value("cmd").toString();
    const QString data = request.value("data").toString();
    const bool isFarewell = command == "powerModeControl" && data == "last";
    if (isFarewell || !isAnswered(command))
        return reply.isEmpty() ? QString() : QStringLiteral("an answer where none is due");
    QJsonObject answer = QJsonDocument::fromJson(reply.toUtf8()).object();
    if (QString::fromUtf8(QJsonDocument(answer).toJson(QJsonDocument::Compact)) != reply)
        return QStringLiteral("not one compact JSON object");

    QJsonObject rest = request;
    const bool hasOwn = hasOwnRule(command, data);
    for (const ReplyRule &rule : replyRules) {
        const bool isFor = rule.data ? data == QLatin1String(rule.data) : !hasOwn;
        if (command != QLatin1String(rule.command) || !isFor)
            continue;
        const QString key = QLatin1String(rule.key);
        const bool isAbsent = key == "mcuVer" && answer.value("data") == "failed";
        if (answer.contains(key) == isAbsent)
            return "field " + key;
        if (!isAbsent
            && (!answer.value(key).isString() || !matches(answer.value(key).toString(), rule.values)))
            return "value of " + key;
        answer.remove(key);
        rest.remove(key);
    }
    return answer == rest ? QString() : QStringLiteral("fields that differ from the request's");
}

QString faultOfNotification(const QString &message)
{
    const QJsonObject fields = QJsonDocument::fromJson(message.toUtf8()).object();
    if (fields.keys() != QStringList({"cmd", "data"}))
        return QStringLiteral("fields");
    const QString command = fields.value("cmd").toString();
    const auto *rule = std::find_if(std::begin(notificationRules), std::end(notificationRules),
        [&command](const ReplyRule &row) { return command == QLatin1String(row.command); });
    if (rule == std::end(notificationRules))
        return QStringLiteral("command");
    return matches(fields.value("data").toString(), rule->values) ? QString() : QStringLiteral("value");
}

} // namespace tarnCampaign
