#include "firmware_update.h"

#include "request.h"

#include <QDir>

namespace tarnClient {

namespace {

using std::chrono::milliseconds;

// Often enough that no second is left out.
constexpr milliseconds progressPeriod(200);
constexpr QLatin1StringView untouchedText("Nothing has been touched.");

// For texts that may or may not have a place for the value.
QString filledIn(QLatin1StringView text, const QString &value)
{
    return text.toString().replace(QLatin1StringView("%1"), value);
}

} // namespace

FirmwareUpdate::FirmwareUpdate(
    const ToolOptions &options, ToolStreams &streams, const UpdatePlan &plan, const QString &downloadFolder)
    : Session(options, streams)
    , m_plan(plan)
    , m_firmware(downloadFolder)
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
    if (const std::optional<QString> objection = StagedFirmware::objection(file)) {
        m_streams.complain(*objection);
        return ExitCode::Usage;
    }
    if (!connectService()) {
        return ExitCode::NoService;
    }
    if (!placeFile(file)) {
        return ExitCode::Usage;
    }
    if (!m_options.json) {
        m_streams.remark(m_plan.notice.toString());
    }
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
    if (m_options.force && step().isPrecaution) {
        ++m_stepIndex;
    }
    TypedCommand command {step().command.toString()};
    if (step().takesFile) {
        command.data = m_firmware.name();
    }
    const Request request = buildRequest(command);
    m_tag = request.tag;
    if (m_interrupt.isRaised()) {
        const QLatin1StringView state =
            m_stepIndex == 0 ? untouchedText : m_plan.steps[m_stepIndex - 1].goesOnText;
        end(ExitCode::NoAnswer,
            QStringLiteral("Interrupted before %1 was sent.\n%2").arg(command.name, state));
        return;
    }
    m_progress.begin(step().phases, elapsed());
    m_deadline.start(timeoutFor(findCommand(command.name)));
    if (!m_client.send(request.bytes)) {
        handleServiceGone();
    }
}

void FirmwareUpdate::handleDocument(const QByteArray &bytes)
{
    if (isFinished()) {
        return;
    }
    if (m_options.verbose) {
        m_progress.clear();
    }
    if (const std::optional<Message> answer = takeAnswer(m_tag, bytes)) {
        handleAnswer(*answer);
    }
}

void FirmwareUpdate::handleAnswer(const Message &answer)
{
    const bool isAgreed = answer.value(dataKey) == step().wanted;
    const bool isLast = m_stepIndex + 1 == m_plan.steps.size();
    if (!isAgreed) {
        endRefused(answer);
    } else if (isLast) {
        endWell(answer);
    } else {
        ++m_stepIndex;
        beginStep();
    }
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
    if (m_options.json) {
        print(answer.json());
        finish(ExitCode::Done);
        return;
    }
    const QString version = m_plan.versionKey.isEmpty() ? QString() : answer.value(m_plan.versionKey);
    const bool lacksVersion = !m_plan.versionKey.isEmpty() && version.isEmpty();
    print(filledIn(lacksVersion ? m_plan.noVersionText : m_plan.doneText, version));
    m_streams.remark(m_plan.adviceText.toString());
    finish(ExitCode::Done);
}

void FirmwareUpdate::endRefused(const Message &answer)
{
    if (m_options.json) {
        print(answer.json());
    }
    const bool isUntouched = step().takesFile && m_firmware.isThere();
    QString text = filledIn(isUntouched ? step().untouchedText : step().refusedText, answer.value(dataKey));
    if (step().takesFile && !isUntouched && !m_firmware.isCopy()) {
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
    if (isFinished()) {
        return;
    }
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
