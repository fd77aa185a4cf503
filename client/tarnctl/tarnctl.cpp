#include "tarnctl.h"

#include "check/check_command.h"
#include "diagnose/diagnose_command.h"
#include "help_text.h"
#include "one_shot.h"
#include "raw_exchange.h"
#include "record_command.h"
#include "update_command.h"
#include "watch.h"

#include <QStandardPaths>

#include <algorithm>
#include <iterator>
#include <string>

namespace tarnctl {

namespace {

// A command that tarnctl itself carries out; any other word is a command of the service.
struct Verb
{
    QLatin1StringView name;
    int fewestArguments;
    int mostArguments;
    bool takesLimits;
    ExitCode (*run)(const ToolOptions &, const QStringList &arguments, ToolStreams &);
};

ExitCode refuse(ToolStreams &streams, const QString &text)
{
    streams.complain(text);
    return ExitCode::Usage;
}

ExitCode show(ToolStreams &streams, const QString &text)
{
    // A failed write is ignored: the reader of the output has closed it.
    static_cast<void>(streams.printLine(text));
    return ExitCode::Done;
}

ExitCode runHelp(const ToolOptions &, const QStringList &arguments, ToolStreams &streams)
{
    if (arguments.isEmpty())
        return show(streams, generalHelp());
    const std::optional<QString> text = topicHelp(arguments.first());
    return text ? show(streams, *text) : refuse(streams, unknownCommandText(arguments.first()));
}

ExitCode runCommands(const ToolOptions &, const QStringList &, ToolStreams &streams)
{
    return show(streams, commandNames());
}

ExitCode runWatch(const ToolOptions &options, const QStringList &, ToolStreams &streams)
{
    return Watch(options, streams).run();
}

ExitCode runRaw(const ToolOptions &options, const QStringList &arguments, ToolStreams &streams)
{
    QByteArray bytes = arguments.first().toUtf8();
    if (bytes == "-") {
        const std::string all(std::istreambuf_iterator<char>(*streams.input), {});
        bytes = QByteArray::fromStdString(all);
    }
    if (bytes.isEmpty())
        return refuse(streams, QStringLiteral("raw was given no bytes, so there is nothing to send."));
    return RawExchange(options, streams, bytes).run();
}

// The service looks for the file in the download folder.
ExitCode runUpdate(
    tarn::FirmwareKind kind, const ToolOptions &options, const QStringList &arguments, ToolStreams &streams)
{
    return UpdateCommand(options, streams, {tarn::updatePlan(kind)},
        QStandardPaths::writableLocation(QStandardPaths::DownloadLocation))
        .run(arguments.first());
}

ExitCode runUpdateMcu(const ToolOptions &options, const QStringList &arguments, ToolStreams &streams)
{
    return runUpdate(tarn::FirmwareKind::Mcu, options, arguments, streams);
}

ExitCode runUpdateEc(const ToolOptions &options, const QStringList &arguments, ToolStreams &streams)
{
    return runUpdate(tarn::FirmwareKind::Ec, options, arguments, streams);
}

ExitCode runDiagnose(const ToolOptions &options, const QStringList &, ToolStreams &streams)
{
    return runDiagnosis(options, streams, Computer::ofSystem());
}

ExitCode runRecordSwitch(const ToolOptions &, const QStringList &arguments, ToolStreams &streams)
{
    return runRecord(arguments.first(), streams, Computer::ofSystem());
}

ExitCode runCheckComputer(const ToolOptions &options, const QStringList &arguments, ToolStreams &streams)
{
    return CheckCommand(options, streams, Computer::ofSystem()).run(arguments);
}

constexpr int anyNumber = 1000;

constexpr Verb verbs[] = {
    {QLatin1StringView("help"), 0, 1, false, runHelp},
    {QLatin1StringView("commands"), 0, 0, false, runCommands},
    {QLatin1StringView("watch"), 0, 0, true, runWatch},
    {QLatin1StringView("raw"), 1, 1, true, runRaw},
    {QLatin1StringView("update-mcu"), 1, 1, false, runUpdateMcu},
    {QLatin1StringView("update-ec"), 1, 1, false, runUpdateEc},
    {QLatin1StringView("diagnose"), 0, 0, false, runDiagnose},
    {QLatin1StringView("check-computer"), 0, anyNumber, false, runCheckComputer},
    {QLatin1StringView("record"), 1, 1, false, runRecordSwitch},
};

const Verb *findVerb(const QString &name)
{
    const auto *const found = std::find_if(
        std::begin(verbs), std::end(verbs), [&name](const Verb &verb) { return verb.name == name; });
    return found == std::end(verbs) ? nullptr : found;
}

ExitCode runVerb(const Verb &verb, const ToolOptions &options, ToolStreams &streams)
{
    const QStringList arguments = options.words.mid(1);
    if (arguments.size() < verb.fewestArguments || arguments.size() > verb.mostArguments) {
        const QString text =
            QStringLiteral("%1 takes %2.")
                .arg(verb.name.toString(),
                    verb.mostArguments == 0 ? QStringLiteral("nothing more")
                                            : QStringLiteral("one argument (quote it if it has blanks)"));
        return refuse(streams, text + QStringLiteral("\nSee \"tarnctl help %1\".").arg(verb.name.toString()));
    }
    return verb.run(options, arguments, streams);
}

ExitCode runServiceCommand(const ToolOptions &options, ToolStreams &streams)
{
    constexpr int mostWords = 2;
    TypedCommand command {options.words.first()};
    if (options.words.size() > mostWords) {
        return refuse(streams,
            QStringLiteral("%1 takes one data argument; quote it if it has blanks.\nSee "
                           "\"tarnctl help %1\".")
                .arg(command.name));
    }
    if (options.words.size() == mostWords)
        command.data = options.words.last();
    const std::optional<QString> objection = options.force ? std::nullopt : commandObjection(command);
    if (objection)
        return refuse(streams, *objection);
    return OneShot(options, streams, command).run();
}

ExitCode runOptions(const ToolOptions &options, ToolStreams &streams)
{
    if (options.version)
        return show(streams, QStringLiteral("tarnctl " TARNCTL_VERSION));
    if (options.help)
        return runHelp(options, options.words.mid(0, 1), streams);
    if (options.words.isEmpty())
        return refuse(streams, QStringLiteral("No command was given.\n") + usageText());
    const Verb *verb = findVerb(options.words.first());
    const bool hasLimits = options.count || options.duration;
    if (hasLimits && (verb == nullptr || !verb->takesLimits)) {
        return refuse(streams,
            QStringLiteral("--count and --for belong to watch and raw.\nUse --timeout to limit "
                           "the wait for an answer."));
    }
    if (options.reconnect && (verb == nullptr || verb->run != runWatch))
        return refuse(streams, QStringLiteral("--reconnect belongs to watch."));
    if (options.expectedVersion && (verb == nullptr || verb->run != runUpdateMcu))
        return refuse(streams, QStringLiteral("--expect belongs to update-mcu."));
    const bool isDiagnosis = verb != nullptr && verb->run == runDiagnose;
    const bool isCheck = verb != nullptr && verb->run == runCheckComputer;
    if ((options.reportFile || options.connects) && !isDiagnosis)
        return refuse(streams, QStringLiteral("--output and --connect belong to diagnose."));
    if (options.withSerialNumbers && !isCheck && !isDiagnosis)
        return refuse(streams, QStringLiteral("--serial-numbers belongs to diagnose and check-computer."));
    if (options.withSerialNumbers && isDiagnosis && !options.reportFile)
        return refuse(streams, QStringLiteral("--serial-numbers belongs to --output."));
    if (options.withoutRecording && !isCheck)
        return refuse(streams, QStringLiteral("--without-recording belongs to check-computer."));
    return verb == nullptr ? runServiceCommand(options, streams) : runVerb(*verb, options, streams);
}

} // namespace

int runTarnctl(const QStringList &arguments, ToolStreams streams)
{
    const ParsedOptions parsed = parseOptions(arguments);
    const ExitCode code = parsed.error.isEmpty()
        ? runOptions(parsed.options, streams)
        : refuse(streams, parsed.error + QStringLiteral("\nSee \"tarnctl --help\"."));
    return static_cast<int>(code);
}

} // namespace tarnctl
