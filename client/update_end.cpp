#include "update_end.h"

#include <QDir>

namespace tarn {

namespace {

constexpr QLatin1StringView untouchedAdvice("Nothing has been touched.");

// Not QString::arg(), because not every text has both.
QString filled(QLatin1StringView text, const QString &first, const QString &second)
{
    return text.toString().replace(QLatin1StringView("%2"), second).replace(QLatin1StringView("%1"), first);
}

} // namespace

UpdateEnd::UpdateEnd(const UpdatePlan &updatePlan, const UpdateStep &updateStep,
    const FirmwareUpdateOptions &updateOptions, const StagedFirmware &stagedFirmware)
    : plan(updatePlan)
    , step(updateStep)
    , options(updateOptions)
    , firmware(stagedFirmware)
{ }

FirmwareResult UpdateEnd::done(const Reply &reply, const std::optional<QString> &versionBefore) const
{
    FirmwareResult result = made(FirmwareOutcome::Done, false);
    result.wasSent = true;
    result.answer = reply.answer();
    result.versionBefore = versionBefore;
    if (!plan.versionKey.isEmpty()) {
        result.versionAfter = reply.answer().value(plan.versionKey).toVariant().toString();
        judgeVersion(result);
        return result;
    }
    result.text = plan.done.what;
    result.advice = plan.done.advice;
    return result;
}

// The service reports success when the flasher has reported no error; the version shows what runs now.
void UpdateEnd::judgeVersion(FirmwareResult &result) const
{
    const QString version = result.versionAfter;
    const auto tell = [&](FirmwareOutcome outcome, const UpdateText &text) {
        result.outcome = outcome;
        result.text = filled(text.what, version, options.expectedVersion.value_or(QString()));
        result.advice = text.advice;
    };
    const bool isOther = options.expectedVersion && version != *options.expectedVersion;
    if (version == plan.nothingRunsVersion)
        return tell(FirmwareOutcome::Failed, plan.nothingRuns);
    if (version.isEmpty())
        return tell(isOther ? FirmwareOutcome::Failed : FirmwareOutcome::Done, {plan.noVersionText, {}});
    if (isOther)
        return tell(FirmwareOutcome::Failed, plan.otherVersion);
    tell(FirmwareOutcome::Done, plan.done);
    if (options.expectedVersion)
        result.advice.clear();
    else if (result.versionBefore == version)
        result.advice = plan.sameVersionAdvice;
}

FirmwareResult UpdateEnd::refused(const Reply &reply) const
{
    // Judged by the time and not by whether the file is still there, because the service may have copied the
    // file and failed to delete it.
    const bool isEarly = reply.waited() < step.untouchedBefore;
    FirmwareResult result = made(FirmwareOutcome::Failed, isEarly || !step.takesFile);
    if (!step.takesFile)
        result.outcome = FirmwareOutcome::NoKvane;
    else if (isEarly)
        result.outcome = FirmwareOutcome::Refused;
    result.wasSent = true;
    result.answer = reply.answer();
    const UpdateText &text = isEarly ? step.untouched : step.refused;
    result.text = filledIn(text.what, reply.value());
    result.advice = filledIn(text.advice, reply.value());
    if (step.takesFile && !firmware.isThere() && !firmware.isCopy()) {
        result.advice +=
            QStringLiteral("\nThe file has left the download folder; the service keeps it in the folder "
                           "function beside its program.");
    }
    return result;
}

FirmwareResult UpdateEnd::noAnswer(const Reply &reply) const
{
    return goingOn(FirmwareOutcome::NoAnswer, reply.reason());
}

FirmwareResult UpdateEnd::abandoned(bool wasSent) const
{
    if (wasSent) {
        return goingOn(FirmwareOutcome::Abandoned,
            QStringLiteral("The update was given up before the service answered %1.").arg(step.command));
    }
    FirmwareResult result = made(FirmwareOutcome::Abandoned, true);
    result.text = QStringLiteral("The update was given up before %1 was sent.").arg(step.command);
    result.advice = untouchedAdvice;
    return result;
}

FirmwareResult UpdateEnd::serviceGone() const
{
    FirmwareResult result = made(FirmwareOutcome::ServiceGone, !step.takesFile);
    result.wasSent = true;
    result.text = QStringLiteral("The service went away before it answered %1.").arg(step.command);
    result.advice = step.serviceGoneAdvice;
    return result;
}

FirmwareResult UpdateEnd::notSent(const QString &reason) const
{
    FirmwareResult result = made(FirmwareOutcome::NotSent, true);
    result.text = reason;
    result.advice = untouchedAdvice;
    return result;
}

FirmwareResult UpdateEnd::made(FirmwareOutcome outcome, bool isUntouched) const
{
    FirmwareResult result;
    result.outcome = outcome;
    result.isUntouched = isUntouched;
    result.command = step.command;
    return result;
}

FirmwareResult UpdateEnd::goingOn(FirmwareOutcome outcome, const QString &text) const
{
    FirmwareResult result = made(outcome, !step.takesFile);
    result.wasSent = true;
    result.text = text;
    result.advice = step.goesOnAdvice;
    if (step.takesFile && firmware.isCopy() && firmware.isThere()) {
        result.advice +=
            QStringLiteral("\nThe copy stays in the download folder until the service takes it: %1")
                .arg(QDir::toNativeSeparators(firmware.path()));
    }
    return result;
}

QString UpdateEnd::filledIn(QLatin1StringView text, const QString &value) const
{
    return filled(text, value, options.programName);
}

} // namespace tarn
