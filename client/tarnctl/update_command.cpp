#include "update_command.h"

#include "answer_text.h"
#include "no_answer_text.h"

#include <QFileInfo>

namespace tarnctl {

namespace {

using std::chrono::milliseconds;
using tarn::Client;
using tarn::FirmwareOutcome;
using tarn::FirmwareResult;
using tarn::FirmwareUpdate;

// Often enough for the time shown to count every second.
constexpr milliseconds progressPeriod(200);

ExitCode exitCodeOf(FirmwareOutcome outcome)
{
    switch (outcome) {
    case FirmwareOutcome::Done:
        return ExitCode::Done;
    case FirmwareOutcome::BadFile:
    case FirmwareOutcome::OtherUser:
        return ExitCode::Usage;
    case FirmwareOutcome::NoKvane:
    case FirmwareOutcome::Refused:
    case FirmwareOutcome::Failed:
        return ExitCode::ServiceFailed;
    case FirmwareOutcome::NoAnswer:
    case FirmwareOutcome::Abandoned:
        return ExitCode::NoAnswer;
    case FirmwareOutcome::ServiceGone:
    case FirmwareOutcome::NotSent:
        break;
    }
    return ExitCode::NoService;
}

} // namespace

UpdateCommand::UpdateCommand(const ToolOptions &toolOptions, ToolStreams &toolStreams,
    const tarn::UpdateSetting &updateSetting, const QString &downloadFolder, const tarn::ClientTimes &times)
    : ClientTask(toolOptions, toolStreams, times)
    , setting(updateSetting)
    , update(&client, setting)
    , progress(streams, options.json)
{
    updateOptions.downloadFolder = downloadFolder;
    updateOptions.expectedVersion = options.expectedVersion;
    updateOptions.skipPrecautions = options.force;
    updateOptions.limit = options.timeout;
    updateOptions.programName = QStringLiteral("tarnctl");
    connect(&update, &FirmwareUpdate::ownFileUsed, this, &UpdateCommand::warnOfOwnFile);
    connect(&update, &FirmwareUpdate::started, this, &UpdateCommand::showStart);
    connect(&update, &FirmwareUpdate::requestFollows, this, &UpdateCommand::heedInterrupt);
    connect(&update, &FirmwareUpdate::phaseChanged, this, &UpdateCommand::showPhase);
    connect(&update, &FirmwareUpdate::finished, this, &UpdateCommand::end);
    connect(&interrupt, &InterruptPoll::raised, &update, &FirmwareUpdate::abandon);
    connect(&progressTimer, &QTimer::timeout, this, [this] { progress.show(update.elapsed()); });
    if (options.verbose)
        remarkOtherMessages();
}

ExitCode UpdateCommand::run(const QString &file)
{
    fileName = QFileInfo(file).fileName();
    if (const std::optional<FirmwareResult> objection = update.objection(file, updateOptions)) {
        end(*objection);
        return waitForFinish();
    }
    if (connectClient())
        update.start(file, updateOptions);
    return waitForFinish();
}

bool UpdateCommand::connectClient()
{
    QEventLoop attempt;
    connect(&client, &Client::stateChanged, &attempt, [&attempt](Client::State state) {
        if (state == Client::State::Connected)
            attempt.quit();
    });
    connect(&client, &Client::connectingFailed, &attempt, &QEventLoop::quit);
    client.open();
    attempt.exec();
    if (client.state() == Client::State::Connected)
        return true;
    finishWithoutService();
    return false;
}

void UpdateCommand::remark(const QString &text)
{
    progress.clear();
    ClientTask::remark(text);
}

void UpdateCommand::warnOfOwnFile(const QString &path)
{
    streams.remark(
        QStringLiteral("The service takes this file out of the download folder; keep a copy of it:\n%1")
            .arg(path));
}

void UpdateCommand::showStart()
{
    if (!options.json)
        streams.remark(update.notice());
    progressTimer.start(progressPeriod);
}

void UpdateCommand::showPhase(const QString &text, milliseconds now)
{
    progress.begin(text, now);
}

void UpdateCommand::heedInterrupt()
{
    if (interrupt.isRaised())
        update.abandon();
}

void UpdateCommand::end(const FirmwareResult &result)
{
    progressTimer.stop();
    progress.end();
    if (options.json && !result.answer.isEmpty())
        print(compactJson(result.answer));
    const bool isDone = result.outcome == FirmwareOutcome::Done;
    if (isDone && !options.json)
        print(result.text);
    if (isDone && !options.json && !result.advice.isEmpty())
        streams.remark(result.advice);
    // It is when the reader of the output has closed it.
    if (!isDone && !isFinished())
        streams.complain(failureText(result));
    finish(exitCodeOf(result.outcome));
}

QString UpdateCommand::failureText(const FirmwareResult &result) const
{
    if (result.outcome == FirmwareOutcome::OtherUser)
        return otherUserText(result);
    QStringList lines {whatHappened(result), result.advice, ownAdvice(result.outcome)};
    lines.removeAll(QString());
    return lines.join(u'\n');
}

QString UpdateCommand::whatHappened(const FirmwareResult &result) const
{
    if (result.outcome == FirmwareOutcome::NoAnswer)
        return noAnswerText(result.command, result.text);
    if (result.outcome != FirmwareOutcome::Abandoned)
        return result.text;
    const QString text = result.wasSent ? QStringLiteral("Interrupted before the service answered %1.")
                                        : QStringLiteral("Interrupted before %1 was sent.");
    return text.arg(result.command);
}

QString UpdateCommand::ownAdvice(FirmwareOutcome outcome)
{
    switch (outcome) {
    case FirmwareOutcome::NoKvane:
        return QStringLiteral("--force sends the request all the same.");
    case FirmwareOutcome::ServiceGone:
    case FirmwareOutcome::NotSent:
        return QStringLiteral("Start it again with ./run, or the service \"Tarn Service\" on Windows.");
    default:
        return {};
    }
}

// Advises the plain command, because its request carries only the file's name: any user can send it.
QString UpdateCommand::otherUserText(const FirmwareResult &result) const
{
    return QStringLiteral("tarnctl runs as %1, but the user at the console is %2, and the service \"Tarn "
                          "Service\" looks for the file in the download folder of that user.\n"
                          "Put it there and send: tarnctl %3 \"%4\"\n"
                          "A service that %1 has started with -exec looks in the folder of %1: for that, go "
                          "on with --force.")
        .arg(result.ownUser, result.consoleUser, setting.plan.steps.back().command, fileName);
}

} // namespace tarnctl
