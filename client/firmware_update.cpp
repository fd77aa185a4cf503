#include "firmware_update.h"

#include "request.h"

#include <QDir>
#include <QFileInfo>

#include <algorithm>

namespace tarnClient {

namespace {

using std::chrono::milliseconds;

// Often enough for the time shown to count every second.
constexpr milliseconds progressPeriod(200);
// The pause before a request is repeated; the service's 500 ms between messages come on top.
constexpr milliseconds askingPause(500);
constexpr QLatin1StringView untouchedText("Nothing has been touched.");

// Not QString::arg(), because some of the texts have no "%1".
QString filledIn(QLatin1StringView text, const QString &value)
{
    return text.toString().replace(QLatin1StringView("%1"), value);
}

// Advises the plain command, because its request carries only the file's name: any user can send it.
QString otherUserText(const OtherUser &user, QLatin1StringView command, const QString &fileName)
{
    return QStringLiteral("tarnctl runs as %1, but the user at the console is %2, and the service \"Tarn "
                          "Service\" looks for the file in the download folder of that user.\n"
                          "Put it there and send: tarnctl %3 \"%4\"\n"
                          "A service that %1 has started with -exec looks in the folder of %1: for that, go "
                          "on with --force.")
        .arg(user.own, user.atConsole, command, fileName);
}

} // namespace

FirmwareUpdate::FirmwareUpdate(const ToolOptions &toolOptions, ToolStreams &toolStreams,
    const UpdatePlan &updatePlan, const DownloadPlace &place)
    : Session(toolOptions, toolStreams)
    , plan(updatePlan)
    , otherUser(place.otherUser)
    , firmware(place.folder)
    , progress(streams, options.json)
{
    connect(&client, &PipeClient::documentReceived, this, &FirmwareUpdate::handleDocument);
    connect(&client, &PipeClient::serviceGone, this, &FirmwareUpdate::handleServiceGone);
    connect(&deadline, &ReplyDeadline::expired, this, &FirmwareUpdate::handleExpiry);
    connect(&interrupt, &InterruptPoll::raised, this, &FirmwareUpdate::handleInterrupt);
    connect(&progressTimer, &QTimer::timeout, this, &FirmwareUpdate::showProgress);
    if (options.verbose) {
        connect(&client, &PipeClient::garbageReceived, this, [this](const QByteArray &bytes) {
            progress.clear();
            remarkGarbage(bytes);
        });
    }
}

ExitCode FirmwareUpdate::run(const QString &file)
{
    if (const std::optional<QString> objection = StagedFirmware::objection(file, plan.kind)) {
        streams.complain(*objection);
        return ExitCode::Usage;
    }
    // The service would flash a file of that name in the other user's folder in place of this one.
    if (otherUser && !options.force) {
        streams.complain(otherUserText(*otherUser, plan.steps.back().command, QFileInfo(file).fileName()));
        return ExitCode::Usage;
    }
    if (!connectService())
        return ExitCode::NoService;
    if (!placeFile(file))
        return ExitCode::Usage;
    if (!options.json)
        streams.remark(plan.notice.toString());
    clock.start();
    progressTimer.start(progressPeriod);
    beginStep();
    return waitForFinish();
}

bool FirmwareUpdate::placeFile(const QString &file)
{
    if (const std::optional<QString> objection = firmware.place(file)) {
        streams.complain(*objection);
        return false;
    }
    if (!firmware.isCopy()) {
        streams.remark(
            QStringLiteral("The service takes this file out of the download folder; keep a copy of it:\n%1")
                .arg(QDir::toNativeSeparators(firmware.path())));
    }
    return true;
}

void FirmwareUpdate::beginStep()
{
    while (options.force && step().isPrecaution)
        ++stepIndex;
    stepBegan = elapsed();
    progress.begin(step().phases, stepBegan);
    sendRequest();
}

void FirmwareUpdate::sendRequest()
{
    TypedCommand command {step().command.toString()};
    if (step().takesFile)
        command.data = firmware.name();
    const Request request = buildRequest(command);
    tag = request.tag;
    if (interrupt.isRaised()) {
        end(ExitCode::NoAnswer,
            QStringLiteral("Interrupted before %1 was sent.\n%2").arg(command.name, untouchedText));
        return;
    }
    deadline.start(timeoutFor(findCommand(command.name)));
    if (!client.send(request.bytes))
        handleServiceGone();
}

void FirmwareUpdate::handleDocument(const QByteArray &bytes)
{
    if (isFinished())
        return;
    if (options.verbose)
        progress.clear();
    if (const std::optional<Message> answer = takeAnswer(tag, bytes))
        handleAnswer(*answer);
}

void FirmwareUpdate::handleAnswer(const Message &answer)
{
    const QString value = answer.value(dataKey);
    if (step().tellsVersion)
        versionBefore = value;
    const bool isAgreed = step().wanted.isEmpty() || value == step().wanted;
    const bool isLast = stepIndex + 1 == plan.steps.size();
    if (!isAgreed && asksAgain()) {
        versionBefore.reset(); // the version of another accessory
        deadline.stop();
        QTimer::singleShot(askingPause, this, [this] {
            if (!isFinished())
                sendRequest();
        });
    } else if (!isAgreed) {
        endRefused(answer);
    } else if (isLast) {
        endWell(answer);
    } else {
        ++stepIndex;
        beginStep();
    }
}

bool FirmwareUpdate::asksAgain() const
{
    const milliseconds limit =
        std::min(step().repeatedFor, timeoutFor(findCommand(step().command.toString())));
    return elapsed() - stepBegan < limit;
}

void FirmwareUpdate::handleExpiry()
{
    endUnfinished(noAnswerText(step().command.toString(), deadline.timeout()));
}

void FirmwareUpdate::handleServiceGone()
{
    end(ExitCode::NoService,
        QStringLiteral("The service went away before it answered %1.\n%2\nStart it again with ./run, or the "
                       "service \"Tarn Service\" on Windows.")
            .arg(step().command, step().serviceGoneText));
}

void FirmwareUpdate::handleInterrupt()
{
    endUnfinished(QStringLiteral("Interrupted before the service answered %1.").arg(step().command));
}

void FirmwareUpdate::showProgress()
{
    progress.show(elapsed());
}

void FirmwareUpdate::endWell(const Message &answer)
{
    progress.end();
    if (options.json)
        print(answer.json());
    if (!plan.versionKey.isEmpty()) {
        endFlashed(answer.value(plan.versionKey));
        return;
    }
    if (!options.json) {
        print(plan.doneText.toString());
        streams.remark(plan.adviceText.toString());
    }
    finish(ExitCode::Done);
}

// The service reports success when the flasher has reported no error; the version shows what runs now.
void FirmwareUpdate::endFlashed(const QString &version)
{
    const bool isUnknown = version.isEmpty();
    const bool isChecked = options.expectedVersion.has_value();
    if (version == plan.nothingRunsVersion) {
        end(ExitCode::ServiceFailed, filledIn(plan.nothingRunsText, version));
        return;
    }
    if (isChecked && version != *options.expectedVersion) {
        const QString text = isUnknown ? plan.noVersionText.toString() : plan.otherVersionText.toString();
        end(ExitCode::ServiceFailed, isUnknown ? text : text.arg(version, *options.expectedVersion));
        return;
    }
    if (!options.json)
        print(filledIn(isUnknown ? plan.noVersionText : plan.doneText, version));
    if (!options.json && !isUnknown && !isChecked) {
        const bool isOfBefore = versionBefore == version;
        streams.remark((isOfBefore ? plan.sameVersionText : plan.adviceText).toString());
    }
    finish(ExitCode::Done);
}

void FirmwareUpdate::endRefused(const Message &answer)
{
    if (options.json)
        print(answer.json());
    // Judged by the time and not by whether the file is still there, because the service may have copied the
    // file and failed to delete it.
    const bool isUntouched = elapsed() - stepBegan < step().untouchedBefore;
    QString text = filledIn(isUntouched ? step().untouchedText : step().refusedText, answer.value(dataKey));
    if (step().takesFile && !firmware.isThere() && !firmware.isCopy()) {
        text += QStringLiteral("\nThe file has left the download folder; the service keeps it in the folder "
                               "function beside its program.");
    }
    end(ExitCode::ServiceFailed, text);
}

void FirmwareUpdate::endUnfinished(const QString &reason)
{
    QString text = reason + u'\n' + step().goesOnText;
    if (step().takesFile) {
        if (firmware.isCopy() && firmware.isThere()) {
            text += QStringLiteral("\nThe copy stays in the download folder until the service takes it: %1")
                        .arg(QDir::toNativeSeparators(firmware.path()));
        }
        firmware.leave();
    }
    end(ExitCode::NoAnswer, text);
}

void FirmwareUpdate::end(ExitCode code, const QString &text)
{
    if (isFinished())
        return;
    progress.end();
    streams.complain(text);
    finish(code);
}

const UpdateStep &FirmwareUpdate::step() const
{
    return plan.steps[stepIndex];
}

milliseconds FirmwareUpdate::elapsed() const
{
    return milliseconds(clock.elapsed());
}

} // namespace tarnClient
