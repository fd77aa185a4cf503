#include "firmware_update.h"

#include "request.h"

#include <QDir>
#include <QFileInfo>

#include <algorithm>

namespace tarnClient {

namespace {

using std::chrono::milliseconds;

// Often enough that no second is left out.
constexpr milliseconds progressPeriod(200);
// Between two questions for what is not so yet; the service's own 500 ms come on top.
constexpr milliseconds askingPause(500);
constexpr QLatin1StringView untouchedText("Nothing has been touched.");

// For texts that may or may not have a place for the value.
QString filledIn(QLatin1StringView text, const QString &value)
{
    return text.toString().replace(QLatin1StringView("%1"), value);
}

// The service takes the name alone, so a file that lies there already can be flashed by anybody.
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

FirmwareUpdate::FirmwareUpdate(
    const ToolOptions &options, ToolStreams &streams, const UpdatePlan &plan, const DownloadPlace &place)
    : Session(options, streams)
    , m_plan(plan)
    , m_otherUser(place.otherUser)
    , m_firmware(place.folder)
    , m_progress(streams, options.json)
{
    connect(&m_client, &PipeClient::documentReceived, this, &FirmwareUpdate::handleDocument);
    connect(&m_client, &PipeClient::serviceGone, this, &FirmwareUpdate::handleServiceGone);
    connect(&m_deadline, &ReplyDeadline::expired, this, &FirmwareUpdate::handleExpiry);
    connect(&m_interrupt, &InterruptPoll::raised, this, &FirmwareUpdate::handleInterrupt);
    connect(&m_progressTimer, &QTimer::timeout, this, &FirmwareUpdate::showProgress);
    if (m_options.verbose) {
        connect(&m_client, &PipeClient::garbageReceived, this, [this](const QByteArray &bytes) {
            m_progress.clear();
            remarkGarbage(bytes);
        });
    }
}

ExitCode FirmwareUpdate::run(const QString &file)
{
    if (const std::optional<QString> objection = StagedFirmware::objection(file, m_plan.kind)) {
        m_streams.complain(*objection);
        return ExitCode::Usage;
    }
    // A file of that name in the other folder would be flashed in place of this one.
    if (m_otherUser && !m_options.force) {
        m_streams.complain(
            otherUserText(*m_otherUser, m_plan.steps.back().command, QFileInfo(file).fileName()));
        return ExitCode::Usage;
    }
    if (!connectService())
        return ExitCode::NoService;
    if (!placeFile(file))
        return ExitCode::Usage;
    if (!m_options.json)
        m_streams.remark(m_plan.notice.toString());
    m_clock.start();
    m_progressTimer.start(progressPeriod);
    beginStep();
    return waitForFinish();
}

bool FirmwareUpdate::placeFile(const QString &file)
{
    if (const std::optional<QString> objection = m_firmware.place(file)) {
        m_streams.complain(*objection);
        return false;
    }
    if (!m_firmware.isCopy()) {
        m_streams.remark(
            QStringLiteral("The service takes this file out of the download folder; keep a copy of it:\n%1")
                .arg(QDir::toNativeSeparators(m_firmware.path())));
    }
    return true;
}

void FirmwareUpdate::beginStep()
{
    while (m_options.force && step().isPrecaution)
        ++m_stepIndex;
    m_stepBegan = elapsed();
    m_progress.begin(step().phases, m_stepBegan);
    sendRequest();
}

void FirmwareUpdate::sendRequest()
{
    TypedCommand command {step().command.toString()};
    if (step().takesFile)
        command.data = m_firmware.name();
    const Request request = buildRequest(command);
    m_tag = request.tag;
    if (m_interrupt.isRaised()) {
        end(ExitCode::NoAnswer,
            QStringLiteral("Interrupted before %1 was sent.\n%2").arg(command.name, untouchedText));
        return;
    }
    m_deadline.start(timeoutFor(findCommand(command.name)));
    if (!m_client.send(request.bytes))
        handleServiceGone();
}

void FirmwareUpdate::handleDocument(const QByteArray &bytes)
{
    if (isFinished())
        return;
    if (m_options.verbose)
        m_progress.clear();
    if (const std::optional<Message> answer = takeAnswer(m_tag, bytes))
        handleAnswer(*answer);
}

void FirmwareUpdate::handleAnswer(const Message &answer)
{
    const QString value = answer.value(dataKey);
    if (step().tellsVersion)
        m_versionBefore = value;
    const bool isAgreed = step().wanted.isEmpty() || value == step().wanted;
    const bool isLast = m_stepIndex + 1 == m_plan.steps.size();
    if (!isAgreed && asksAgain()) {
        m_versionBefore.reset(); // that of something else
        m_deadline.stop();
        QTimer::singleShot(askingPause, this, [this] {
            if (!isFinished())
                sendRequest();
        });
    } else if (!isAgreed) {
        endRefused(answer);
    } else if (isLast) {
        endWell(answer);
    } else {
        ++m_stepIndex;
        beginStep();
    }
}

bool FirmwareUpdate::asksAgain() const
{
    const milliseconds patience =
        std::min(step().patience, timeoutFor(findCommand(step().command.toString())));
    return elapsed() - m_stepBegan < patience;
}

void FirmwareUpdate::handleExpiry()
{
    endUnfinished(noAnswerText(step().command.toString(), m_deadline.timeout()));
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
    m_progress.show(elapsed());
}

void FirmwareUpdate::endWell(const Message &answer)
{
    m_progress.end();
    if (m_options.json)
        print(answer.json());
    if (!m_plan.versionKey.isEmpty()) {
        endFlashed(answer.value(m_plan.versionKey));
        return;
    }
    if (!m_options.json) {
        print(m_plan.doneText.toString());
        m_streams.remark(m_plan.adviceText.toString());
    }
    finish(ExitCode::Done);
}

// The service takes an update for done when the flasher has not complained; the version tells more.
void FirmwareUpdate::endFlashed(const QString &version)
{
    const bool isUnknown = version.isEmpty();
    const bool isChecked = m_options.expectedVersion.has_value();
    if (version == m_plan.nothingRunsVersion) {
        end(ExitCode::ServiceFailed, filledIn(m_plan.nothingRunsText, version));
        return;
    }
    if (isChecked && version != *m_options.expectedVersion) {
        const QString text = isUnknown ? m_plan.noVersionText.toString() : m_plan.otherVersionText.toString();
        end(ExitCode::ServiceFailed, isUnknown ? text : text.arg(version, *m_options.expectedVersion));
        return;
    }
    if (!m_options.json)
        print(filledIn(isUnknown ? m_plan.noVersionText : m_plan.doneText, version));
    if (!m_options.json && !isUnknown && !isChecked) {
        const bool isOfBefore = m_versionBefore == version;
        m_streams.remark((isOfBefore ? m_plan.sameVersionText : m_plan.adviceText).toString());
    }
    finish(ExitCode::Done);
}

void FirmwareUpdate::endRefused(const Message &answer)
{
    if (m_options.json)
        print(answer.json());
    // Not whether the file is still there: the service may have copied it and then be kept from deleting it.
    const bool isUntouched = elapsed() - m_stepBegan < step().untouchedBefore;
    QString text = filledIn(isUntouched ? step().untouchedText : step().refusedText, answer.value(dataKey));
    if (step().takesFile && !m_firmware.isThere() && !m_firmware.isCopy()) {
        text += QStringLiteral("\nThe file has left the download folder; the service keeps it in the folder "
                               "function beside its program.");
    }
    end(ExitCode::ServiceFailed, text);
}

void FirmwareUpdate::endUnfinished(const QString &reason)
{
    QString text = reason + u'\n' + step().goesOnText;
    if (step().takesFile) {
        if (m_firmware.isCopy() && m_firmware.isThere()) {
            text += QStringLiteral("\nThe copy stays in the download folder until the service takes it: %1")
                        .arg(QDir::toNativeSeparators(m_firmware.path()));
        }
        m_firmware.leave();
    }
    end(ExitCode::NoAnswer, text);
}

void FirmwareUpdate::end(ExitCode code, const QString &text)
{
    if (isFinished())
        return;
    m_progress.end();
    m_streams.complain(text);
    finish(code);
}

const UpdateStep &FirmwareUpdate::step() const
{
    return m_plan.steps[m_stepIndex];
}

milliseconds FirmwareUpdate::elapsed() const
{
    return milliseconds(m_clock.elapsed());
}

} // namespace tarnClient
