#include "update_sequence.h"

#include "command_catalogue.h"
#include "queued_request.h"
#include "update_objection.h"

#include <QDir>
#include <QPromise>
#include <QThreadPool>

#include <algorithm>

namespace tarn {

namespace {

using std::chrono::milliseconds;

using Objection = std::optional<FirmwareResult>;

// On a thread of its own, because reading and copying take as long as the disks and networks need. A sequence
// that is deleted meanwhile leaves the last share of the firmware to that thread, which then removes the
// copy.
QFuture<Objection> stage(const QString &file, const UpdateSetting &setting,
    const FirmwareUpdateOptions &options, std::shared_ptr<StagedFirmware> firmware)
{
    const auto promise = std::make_shared<QPromise<Objection>>();
    promise->start();
    QThreadPool::globalInstance()->start([=, share = std::move(firmware)]() mutable {
        Objection objection = updateObjection(file, options, setting);
        if (!objection) {
            if (const std::optional<QString> problem = share->place(file))
                objection = badFileResult(*problem);
        }
        share.reset();
        promise->addResult(objection);
        promise->finish();
    });
    return promise->future();
}

const UpdatePhase *phaseAt(std::span<const UpdatePhase> phases, milliseconds time)
{
    const UpdatePhase *found = nullptr;
    for (const UpdatePhase &phase : phases) {
        if (phase.begins <= time)
            found = &phase;
    }
    return found;
}

} // namespace

UpdateSequence::UpdateSequence(Client *tarnClient, const UpdateSetting &updateSetting,
    const FirmwareUpdateOptions &updateOptions, QObject *parent)
    : QObject(parent)
    , client(tarnClient)
    , setting(updateSetting)
    , options(updateOptions)
    , firmware(std::make_shared<StagedFirmware>(options.downloadFolder))
{
    phaseTimer.setSingleShot(true);
    phaseTimer.setTimerType(Qt::PreciseTimer);
    askingTimer.setSingleShot(true);
    askingTimer.setTimerType(Qt::PreciseTimer);
    connect(&staging, &QFutureWatcherBase::finished, this, &UpdateSequence::handleStaged);
    connect(&reply, &QFutureWatcherBase::progressValueChanged, this, &UpdateSequence::noteProgress);
    connect(&reply, &QFutureWatcherBase::finished, this, &UpdateSequence::handleReply);
    connect(&phaseTimer, &QTimer::timeout, this, &UpdateSequence::showPhase);
    connect(&askingTimer, &QTimer::timeout, this, &UpdateSequence::sendRequest);
}

UpdateSequence::~UpdateSequence()
{
    if (isOver)
        return;
    if (step().takesFile && isGoingOn())
        firmware->leave();
    reply.cancel();
}

void UpdateSequence::start(const QString &file)
{
    while (options.skipPrecautions && step().isPrecaution)
        ++stepIndex;
    staging.setFuture(stage(file, setting, options, firmware));
}

void UpdateSequence::handleStaged()
{
    if (isOver) // given up before this was delivered
        return;
    if (const Objection objection = staging.result())
        return end(*objection);
    if (isGivenUp)
        return end(ending().abandoned(false));
    const QString path = QDir::toNativeSeparators(firmware->path());
    if (!firmware->isCopy() && !stillRunsAfter([this, &path] { emit ownFileUsed(path); }))
        return;
    clock.start();
    if (stillRunsAfter([this] { emit started(); }))
        beginStep();
}

void UpdateSequence::beginStep()
{
    stepBegan.reset();
    phaseTimer.stop();
    shownPhase = nullptr;
    hasAsked = false;
    if (isGivenUp)
        return end(ending().abandoned(false));
    const QString command = step().command.toString();
    if (stillRunsAfter([this, &command] { emit requestFollows(command); }))
        sendRequest();
}

void UpdateSequence::sendRequest()
{
    if (!client)
        return end(ending().notSent(QStringLiteral("The connection to the service is no longer kept.")));
    hasAsked = true;
    reply.setFuture(client->send(
        step().command.toString(), step().takesFile ? firmware->name() : QString(), options.limit));
}

// Until it is written the request may wait behind others, or for a connection.
void UpdateSequence::noteProgress(int value)
{
    if (isOver || value != writtenProgress || stepBegan)
        return;
    stepBegan = elapsed();
    showPhase();
}

void UpdateSequence::handleReply()
{
    if (isOver)
        return;
    // A future that somebody else has cancelled has no reply.
    const Reply ended = reply.isCanceled() ? Reply() : reply.result();
    switch (ended.outcome()) {
    case Outcome::Answered:
    case Outcome::Failed:
        return handleAnswer(ended);
    case Outcome::ServiceGone:
        return end(ended.wasSent() ? ending().serviceGone() : ending().notSent(ended.reason()));
    case Outcome::Refused:
        return end(ending().notSent(ended.reason()));
    case Outcome::Sent:
    case Outcome::NoAnswer:
        return endGoingOn(ending().noAnswer(ended));
    }
}

void UpdateSequence::handleAnswer(const Reply &answer)
{
    const QString value = answer.value();
    if (step().tellsVersion)
        versionBefore = value;
    const bool isAgreed = step().wanted.isEmpty() || value == step().wanted;
    const bool isLast = stepIndex + 1 == setting.plan.steps.size();
    if (!isAgreed && asksAgain()) {
        versionBefore.reset(); // the version of another accessory
        askAgain();
    } else if (!isAgreed) {
        end(ending().refused(answer));
    } else if (isLast) {
        end(ending().done(answer, versionBefore));
    } else {
        ++stepIndex;
        beginStep();
    }
}

void UpdateSequence::askAgain()
{
    hasAsked = false;
    if (isGivenUp)
        end(ending().abandoned(false));
    else
        askingTimer.start(setting.askingPause);
}

void UpdateSequence::abandon()
{
    isGivenUp = true;
    if (isOver || !staging.isFinished())
        return;
    if (hasAsked && reply.isFinished()) // the answer is there, but has not been delivered
        handleReply();
    else if (isSent())
        endGoingOn(ending().abandoned(true));
    else
        end(ending().abandoned(false));
}

// The phases count from the writing of the request, the time that is told from the start of the update.
void UpdateSequence::showPhase()
{
    const milliseconds time = sinceStepBegan();
    const UpdatePhase *phase = phaseAt(step().phases, time);
    const auto next = std::find_if(step().phases.begin(), step().phases.end(),
        [time](const UpdatePhase &later) { return later.begins > time; });
    if (next != step().phases.end())
        phaseTimer.start(next->begins - time);
    if (phase == nullptr || phase == shownPhase)
        return;
    shownPhase = phase;
    emit phaseChanged(phase->text.toString(), elapsed());
}

// Nobody waits any more, and a request that was written is carried out: the service may still take the copy.
void UpdateSequence::endGoingOn(const FirmwareResult &result)
{
    if (step().takesFile)
        firmware->leave();
    end(result);
}

void UpdateSequence::end(FirmwareResult result)
{
    if (isOver)
        return;
    isOver = true;
    phaseTimer.stop();
    askingTimer.stop();
    reply.cancel();
    firmware.reset();
    result.versionBefore = versionBefore;
    emit finished(result);
}

// False when a slot has ended the sequence or deleted it.
bool UpdateSequence::stillRunsAfter(const std::function<void()> &emission)
{
    const QPointer<UpdateSequence> self(this);
    emission();
    return self && !self->isOver;
}

milliseconds UpdateSequence::sinceStepBegan() const
{
    const milliseconds now = elapsed();
    return now - stepBegan.value_or(now);
}

bool UpdateSequence::asksAgain() const
{
    const CommandEntry *entry = findCommand(step().command.toString());
    const milliseconds limit = options.limit.value_or(entry == nullptr ? step().repeatedFor : entry->timeout);
    return sinceStepBegan() < std::min(step().repeatedFor, limit);
}

bool UpdateSequence::isSent() const
{
    return hasAsked && reply.progressValue() == writtenProgress;
}

// The service may still carry out the request of this step.
bool UpdateSequence::isGoingOn() const
{
    if (!isSent() || !reply.isFinished() || reply.isCanceled())
        return isSent();
    const Outcome outcome = reply.result().outcome();
    return outcome == Outcome::Sent || outcome == Outcome::NoAnswer;
}

milliseconds UpdateSequence::elapsed() const
{
    return milliseconds(clock.isValid() ? clock.elapsed() : 0);
}

const UpdateStep &UpdateSequence::step() const
{
    return setting.plan.steps[stepIndex];
}

UpdateEnd UpdateSequence::ending() const
{
    return {setting.plan, step(), options, *firmware};
}

} // namespace tarn
