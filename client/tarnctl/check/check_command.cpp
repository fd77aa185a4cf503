#include "check_command.h"

#include "log_watch.h"
#include "person.h"
#include "recording_place.h"
#include "saved_notes.h"
#include "service_talk.h"
#include "step_run.h"

#include "platform/paths.h"

#include <QDir>
#include <QFileInfo>

#include <algorithm>
#include <iterator>
#include <utility>

namespace tarnctl {

namespace {

using Part = CheckPart;

struct PartText
{
    Part part;
    QLatin1StringView question; // empty: it begins without one
};
constexpr PartText partTexts[] = {
    {Part::Reading, QLatin1StringView()},
    {Part::Changing,
        QLatin1StringView(
            "\nThe next steps change lights, the power mode, smart charging and power profiles, for "
            "moments,\nand put back what was there before. Go on?")},
    {Part::Hands,
        QLatin1StringView(
            "\nNow hands are needed: accessories are plugged in and unplugged. Leave out what you do "
            "not have. Go on?")},
};

constexpr QLatin1StringView introduction(
    R"(This checks the computer together with Tarn Service: first it only reads, then it asks before it changes
anything, and at the end it asks you to plug things in. It never touches firmware. Ctrl+C ends it at any time and
puts back what was changed; do not close the window before that, because nothing is put back then.

The service talks to one program only: close the application now, and leave it closed until the check has ended.
Then press Enter.)");

constexpr QLatin1StringView noRecordingText(
    R"(The service records nothing, so nobody could look into a fault later.
1. As administrator: tarnctl record on
2. Restart the service: sc.exe stop "Tarn Service", then sc.exe start "Tarn Service"
3. Ten seconds later begin again: tarnctl check-computer
To check without a recording: tarnctl --without-recording check-computer)");

} // namespace

CheckCommand::CheckCommand(const ToolOptions &toolOptions, ToolStreams &toolStreams, Computer &computer,
    DeviceNotes::List deviceList, const CheckTimes &checkTimes)
    : options(toolOptions)
    , streams(toolStreams)
    , devices(std::move(deviceList))
    , times(checkTimes)
    , examined(examine(computer, toolOptions.pipeName, QDateTime::currentDateTime()))
    , functionFolder(QFileInfo(examined.installation.path(tarnPlatform::path::recordingSwitch)).path())
{ }

ExitCode CheckCommand::run(const QStringList &stepNames)
{
    if (options.json)
        return refuse(QStringLiteral("check-computer has no JSON form."));
    if (!choose(stepNames))
        return ExitCode::Usage;
    if (!findRecording())
        return refuse(noRecordingText.toString());
    Person person(streams);
    if (!findTarget(person))
        return ExitCode::Usage;
    if (!person.waitForEnter(introduction.toString()))
        return refuse(QStringLiteral("Nothing was checked."));
    return check(person);
}

bool CheckCommand::choose(const QStringList &stepNames)
{
    steps = checkSteps();
    QStringList known;
    for (const CheckStep &step : std::as_const(steps))
        known << step.name.toString();
    for (const QString &name : stepNames) {
        if (!known.contains(name)) {
            streams.complain(QStringLiteral("check-computer has no step \"%1\". The steps are:\n%2")
                                 .arg(name, known.join(u'\n')));
            return false;
        }
    }
    if (!stepNames.isEmpty())
        steps.removeIf([&stepNames](const CheckStep &step) { return !stepNames.contains(step.name); });
    return true;
}

bool CheckCommand::findRecording()
{
    recording = growingRecording(functionFolder, times.growth);
    recordingsBefore = recordingsIn(functionFolder);
    baseName = recording.isEmpty() ? examined.now.toString(QStringLiteral("'ec-'yyyyMMdd-HHmmss-zzz"))
                                   : QFileInfo(recording).completeBaseName();
    return !recording.isEmpty() || options.withoutRecording;
}

bool CheckCommand::findTarget(Person &person)
{
    targetFolder = functionFolder;
    if (isWritable(targetFolder))
        return true;
    targetFolder = QDir::currentPath();
    const QString question =
        QStringLiteral(
            "The report cannot be written to %1; as administrator it could.\nWrite it into this folder "
            "instead: %2?")
            .arg(QDir::toNativeSeparators(functionFolder), QDir::toNativeSeparators(targetFolder));
    if (person.ask(question) == Person::Answer::Yes && isWritable(targetFolder))
        return true;
    streams.complain(QStringLiteral("There is no folder for the report. Nothing was checked."));
    return false;
}

ExitCode CheckCommand::check(Person &person)
{
    ServiceTalk talk(options.pipeName, times.client, options.timeout, journal);
    const QString problem = talk.connectToService();
    if (!problem.isEmpty()) {
        streams.complain(problem);
        return ExitCode::NoService;
    }
    LogWatch log(examined.installation.path(tarnPlatform::path::logFolder));
    noteSaved(examined.installation, journal);
    DeviceNotes notes(devices, journal);
    for (const QString &line : notes.noteChanges())
        person.say(line);
    person.announceInterrupt();
    StepRun run(person, talk, log, notes, journal, times);
    static_cast<void>(run.findAccessory());
    for (const PartText &part : partTexts)
        runPart(part.part, person, run);
    return finish(person, run);
}

void CheckCommand::runPart(CheckPart part, Person &person, StepRun &run)
{
    const bool hasSteps =
        std::any_of(steps.begin(), steps.end(), [part](const CheckStep &step) { return step.part == part; });
    if (!hasSteps || run.mustEnd())
        return;
    const auto *const text = std::find_if(std::begin(partTexts), std::end(partTexts),
        [part](const PartText &each) { return each.part == part; });
    const bool isWanted =
        text->question.isEmpty() || person.ask(text->question.toString()) == Person::Answer::Yes;
    if (part == Part::Hands && isWanted && run.findAccessory() == graphicsAccessory)
        beginWithTheBox(steps);
    runSteps(part, isWanted, person, run);
}

void CheckCommand::runSteps(CheckPart part, bool isWanted, Person &person, StepRun &run)
{
    for (qsizetype number = 0; number < steps.size(); ++number) {
        const CheckStep &step = steps.at(number);
        if (step.part != part)
            continue;
        if (!isWanted || run.mustEnd()) {
            outcomes << StepOutcome {step.name.toString(), CheckVerdict::Skipped};
            continue;
        }
        person.say(QStringLiteral("\n[%1/%2] %3: %4")
                       .arg(QString::number(number + 1), QString::number(steps.size()), step.name.toString(),
                           step.title.toString()));
        const CheckVerdict verdict = run.run(step);
        person.say(QStringLiteral("  => ") + wordOf(verdict));
        outcomes << StepOutcome {step.name.toString(), verdict};
    }
}

ExitCode CheckCommand::finish(Person &person, const StepRun &run)
{
    person.say(QStringLiteral("\nThe check has ended:\n") + summaryOf(outcomes));
    writeFiles(person);
    if (!isReported)
        return ExitCode::Usage;
    if (run.hasLostService() || person.hasInterrupted())
        return ExitCode::NoAnswer;
    return isSound(outcomes) && isPlaced ? ExitCode::Done : ExitCode::ServiceFailed;
}

// The requests come first, so that the report tells whether they could be written.
void CheckCommand::writeFiles(Person &person)
{
    QStringList files;
    if (!recording.isEmpty()) {
        const WrittenFiles written =
            writeRequests(journal, recording, recordingsBefore, targetFolder, times.coverage);
        files << written.paths;
        isPlaced = written.problems.isEmpty();
        for (const QString &problem : written.problems)
            person.say(QStringLiteral("The recording is incomplete: %1.").arg(problem));
        for (const QString &remark : written.remarks)
            person.say(remark);
    }
    const CheckRecord record {examined.now, versions(), outcomes, files, person.transcript()};
    const QString report =
        writeCheckReport(targetFolder, baseName, reportOf(record, options.withSerialNumbers));
    isReported = !report.isEmpty();
    if (isReported)
        files << report;
    else
        streams.complain(QStringLiteral("The report could not be written to %1.").arg(targetFolder));
    QStringList lines {QStringLiteral("\nAttach these files to your report to the maintainers:")};
    for (const QString &file : std::as_const(files))
        lines << QStringLiteral("  ") + QDir::toNativeSeparators(file);
    lines << QStringLiteral("Read the report before you send it. Afterwards: tarnctl record off");
    person.say(lines.join(u'\n'));
}

QStringList CheckCommand::versions() const
{
    QStringList lines = examined.computer.versions();
    if (examined.start)
        lines << QStringLiteral("service: ") + examined.start->version;
    lines << QStringLiteral("recording: ")
            + (recording.isEmpty() ? QStringLiteral("none") : QFileInfo(recording).fileName());
    return lines;
}

ExitCode CheckCommand::refuse(const QString &text)
{
    streams.complain(text);
    return ExitCode::Usage;
}

} // namespace tarnctl
