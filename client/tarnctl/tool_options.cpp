#include "tool_options.h"

#include <QCommandLineParser>
#include <QRegularExpression>

namespace tarnctl {

namespace {

using std::chrono::milliseconds;

constexpr QLatin1StringView defaultPipeName("tarnPipe");
// Timers count milliseconds in an int, which holds 24 days.
constexpr int longestDays = 7;
constexpr int longestSeconds = longestDays * 24 * 3600;

const QString jsonOption = QStringLiteral("json");
const QString verboseOption = QStringLiteral("verbose");
const QString forceOption = QStringLiteral("force");
const QString reconnectOption = QStringLiteral("reconnect");
const QString timeoutOption = QStringLiteral("timeout");
const QString forOption = QStringLiteral("for");
const QString countOption = QStringLiteral("count");
const QString expectOption = QStringLiteral("expect");
const QString outputOption = QStringLiteral("output");
const QString connectOption = QStringLiteral("connect");
const QString serialNumbersOption = QStringLiteral("serial-numbers");
const QString withoutRecordingOption = QStringLiteral("without-recording");
const QString pipeOption = QStringLiteral("pipe");
const QString helpOption = QStringLiteral("help");
const QString versionOption = QStringLiteral("version");

void declareOptions(QCommandLineParser &parser)
{
    const QString value = QStringLiteral("value");
    parser.addOptions({
        {jsonOption, QString()},
        {{QStringLiteral("v"), verboseOption}, QString()},
        {forceOption, QString()},
        {reconnectOption, QString()},
        {timeoutOption, QString(), value},
        {forOption, QString(), value},
        {countOption, QString(), value},
        {expectOption, QString(), value},
        {outputOption, QString(), value},
        {connectOption, QString()},
        {serialNumbersOption, QString()},
        {withoutRecordingOption, QString()},
        {pipeOption, QString(), value},
        {{QStringLiteral("h"), helpOption}, QString()},
        {versionOption, QString()},
    });
}

std::optional<milliseconds> readSeconds(
    const QCommandLineParser &parser, const QString &option, QString &error)
{
    if (!parser.isSet(option))
        return std::nullopt;
    bool converted = false;
    const double wanted = parser.value(option).toDouble(&converted);
    // Written so that "nan" is refused as well.
    const bool inRange = converted && wanted > 0 && wanted <= longestSeconds;
    if (!inRange) {
        error = QStringLiteral("--%1 takes a number of seconds above 0 and up to %2 (%3 days), not \"%4\".")
                    .arg(option, QString::number(longestSeconds), QString::number(longestDays),
                        parser.value(option));
        return std::nullopt;
    }
    return std::max(milliseconds(1), std::chrono::round<milliseconds>(std::chrono::duration<double>(wanted)));
}

std::optional<int> readCount(const QCommandLineParser &parser, QString &error)
{
    if (!parser.isSet(countOption))
        return std::nullopt;
    bool converted = false;
    const int count = parser.value(countOption).toInt(&converted);
    if (!converted || count < 1) {
        error = QStringLiteral("--count takes a whole number above 0, not \"%1\".")
                    .arg(parser.value(countOption));
        return std::nullopt;
    }
    return count;
}

std::optional<QString> readVersion(const QCommandLineParser &parser, QString &error)
{
    static const QRegularExpression form(QStringLiteral("\\A[0-9]+\\.[0-9]+\\z"));
    if (!parser.isSet(expectOption))
        return std::nullopt;
    const QString version = parser.value(expectOption);
    if (!form.match(version).hasMatch()) {
        error =
            QStringLiteral("--expect takes a version as getMcuVersion gives it, such as 1.23, not \"%1\".")
                .arg(version);
    }
    return version;
}

} // namespace

ParsedOptions parseOptions(const QStringList &arguments)
{
    QCommandLineParser parser;
    declareOptions(parser);
    ParsedOptions parsed;
    if (!parser.parse(arguments)) {
        parsed.error = parser.errorText();
        return parsed;
    }
    ToolOptions &options = parsed.options;
    options.pipeName = parser.isSet(pipeOption) ? parser.value(pipeOption) : defaultPipeName.toString();
    options.timeout = readSeconds(parser, timeoutOption, parsed.error);
    options.duration = readSeconds(parser, forOption, parsed.error);
    options.count = readCount(parser, parsed.error);
    options.expectedVersion = readVersion(parser, parsed.error);
    if (parser.isSet(outputOption))
        options.reportFile = parser.value(outputOption);
    options.connects = parser.isSet(connectOption);
    options.withSerialNumbers = parser.isSet(serialNumbersOption);
    options.withoutRecording = parser.isSet(withoutRecordingOption);
    options.json = parser.isSet(jsonOption);
    options.verbose = parser.isSet(verboseOption);
    options.force = parser.isSet(forceOption);
    options.reconnect = parser.isSet(reconnectOption);
    options.help = parser.isSet(helpOption);
    options.version = parser.isSet(versionOption);
    options.words = parser.positionalArguments();
    if (options.pipeName.isEmpty())
        parsed.error = QStringLiteral("--pipe takes a name.");
    if (options.reportFile && options.reportFile->isEmpty())
        parsed.error = QStringLiteral("--output takes the name of a file.");
    return parsed;
}

} // namespace tarnctl
