#pragma once

#include "check_report.h"
#include "check_step.h"
#include "check_times.h"
#include "device_notes.h"

#include "client/tarnctl/diagnose/case.h"
#include "client/tarnctl/exit_code.h"
#include "client/tarnctl/tool_options.h"
#include "client/tarnctl/tool_streams.h"

#include <QStringList>

namespace tarnctl {

class Person;
class ServiceTalk;
class StepRun;

// "tarnctl check-computer": leads a person through a check of a real computer, while the service records, and
// writes what was asked and what came beside the recording.
class CheckCommand
{
public:
    CheckCommand(const ToolOptions &options, ToolStreams &streams, Computer &computer,
        DeviceNotes::List devices = hostDevices, const CheckTimes &times = CheckTimes());

    // With the names of steps only those.
    [[nodiscard]] ExitCode run(const QStringList &stepNames);

private:
    [[nodiscard]] bool choose(const QStringList &stepNames);
    [[nodiscard]] bool findRecording();
    [[nodiscard]] bool findTarget(Person &person);
    [[nodiscard]] ExitCode check(Person &person);
    void runPart(CheckPart part, Person &person, StepRun &run);
    void runSteps(CheckPart part, bool isWanted, Person &person, StepRun &run);
    [[nodiscard]] ExitCode finish(Person &person, const StepRun &run);
    void writeFiles(Person &person);
    [[nodiscard]] QStringList versions() const;
    [[nodiscard]] ExitCode refuse(const QString &text);

    const ToolOptions &options;
    ToolStreams &streams;
    const DeviceNotes::List devices;
    const CheckTimes times;
    const Case examined;
    const QString functionFolder; // of the installation, where the recordings lie
    QList<CheckStep> steps;
    QString recording; // empty: none
    QStringList recordingsBefore; // that were there when the check began
    QString targetFolder;
    QString baseName; // of the files that are written
    tarnRecording::RequestJournal journal;
    QList<StepOutcome> outcomes;
    bool isReported = true;
    bool isPlaced = true; // what was asked is placed in the recording as a whole
};

} // namespace tarnctl
