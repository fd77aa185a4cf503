#include "unit/client/firmware_update_fixture.h"

#include <QCoreApplication>
#include <QDir>
#include <QJsonDocument>
#include <QThreadPool>

#include <utility>

using namespace tarnClientTest;
using std::chrono::milliseconds;
using tarn::FirmwareKind;
using tarn::FirmwareOutcome;
using tarn::FirmwareResult;
using tarn::FirmwareUpdate;

namespace {

QString dataOf(const QByteArray &request)
{
    return QJsonDocument::fromJson(request).object().value("data").toString();
}

} // namespace

TEST_F(FirmwareUpdateTest, AsksForTheMcuThenUpdatesIt)
{
    const FirmwareResult result = run();
    EXPECT_EQ(result.outcome, FirmwareOutcome::Done);
    EXPECT_FALSE(result.isUntouched);
    EXPECT_EQ(result.text, "The KVane's MCU now runs version 3.14.");
    EXPECT_TRUE(result.advice.startsWith("If that is not the version of the file, the flasher"));
    EXPECT_EQ(result.command, "requestMcuUpdate");
    EXPECT_TRUE(result.wasSent);
    EXPECT_EQ(result.versionBefore, "2.05");
    EXPECT_EQ(result.versionAfter, "3.14");
    EXPECT_EQ(
        compact(result.answer), "{\"cmd\":\"requestMcuUpdate\",\"data\":\"successed\",\"mcuVer\":\"3.14\"}");
    EXPECT_EQ(service.pipe.commands(), mcuCommands);
    EXPECT_EQ(dataOf(service.pipe.requests().value(2)), "fw.bin");
    EXPECT_EQ(service.present.value(2), placed);
    EXPECT_EQ(service.taken, "new firmware");
    EXPECT_EQ(readFile(folders.firmware()), "new firmware");
    EXPECT_TRUE(folders.downloadNames().isEmpty());
}

// requestStartEcUpdate would leave the EC reserved when the service then refuses the file.
TEST_F(FirmwareUpdateTest, UpdatesTheEcWithOneRequest)
{
    options.expectedVersion = "1.00"; // of an MCU
    const FirmwareResult result = run(FirmwareKind::Ec);
    EXPECT_EQ(result.outcome, FirmwareOutcome::Done);
    EXPECT_FALSE(result.isUntouched);
    EXPECT_TRUE(result.text.startsWith("The service is done with the EC tool. Whether it ran and succeeded"));
    EXPECT_TRUE(result.advice.startsWith("Restart the computer now"));
    EXPECT_FALSE(result.versionBefore.has_value());
    EXPECT_EQ(result.versionAfter, "");
    EXPECT_EQ(service.pipe.commands(), ecCommands);
    EXPECT_EQ(dataOf(service.pipe.requests().value(0)), "fw.bin");
    EXPECT_EQ(service.taken, "new firmware");
}

TEST_F(FirmwareUpdateTest, TellsWhatToKnowBeforeTheStart)
{
    EXPECT_TRUE(make(FirmwareKind::Mcu).notice().startsWith("Keep the computer on and the KVane attached."));
    EXPECT_TRUE(make(FirmwareKind::Ec).notice().startsWith("Save your work"));
}

// The service's own schedule.
TEST_F(FirmwareUpdateTest, ThePhasesOfBothPlans)
{
    const auto phasesOf = [](FirmwareKind kind) {
        QStringList lines;
        for (const tarn::UpdateStep &step : tarn::updatePlan(kind).steps) {
            for (const tarn::UpdatePhase &phase : step.phases)
                lines << QString("%1 %2 %3").arg(step.command).arg(phase.begins.count()).arg(phase.text);
        }
        return lines;
    };
    EXPECT_EQ(phasesOf(FirmwareKind::Mcu),
        (QStringList {
            "getMcuVersion 0 asking for the version",
            "getMcuVersion 3000 waiting for the EC",
            "getAccessoryType 0 asking for the accessory",
            "getAccessoryType 2000 waiting for a KVane",
            "requestMcuUpdate 0 starting the boot loader",
            "requestMcuUpdate 5000 flashing, then starting the new firmware",
        }));
    EXPECT_EQ(phasesOf(FirmwareKind::Ec), QStringList {"requestEcUpdate 0 running the EC tool"});
}

TEST_F(FirmwareUpdateTest, StartsBeforeThePhasesAndFinishesAfterThem)
{
    make();
    QStringList events;
    QObject::connect(update.get(), &FirmwareUpdate::started, [&] { events << "started"; });
    QObject::connect(update.get(), &FirmwareUpdate::phaseChanged,
        [&](const QString &text, milliseconds) { events << text; });
    QObject::connect(update.get(), &FirmwareUpdate::finished, [&] {
        EXPECT_FALSE(update->isRunning());
        events << "finished";
    });
    start();
    EXPECT_TRUE(update->isRunning());
    EXPECT_TRUE(events.isEmpty());
    static_cast<void>(end());
    EXPECT_EQ(events,
        (QStringList {"started", "asking for the version", "asking for the accessory",
            "starting the boot loader", "finished"}));
}

TEST_F(FirmwareUpdateTest, ThePhasesCountFromTheirStepAndTheTimeFromTheStart)
{
    static constexpr tarn::UpdatePhase early[] = {{milliseconds(0), QLatin1StringView("one")}};
    static constexpr tarn::UpdatePhase late[] = {
        {milliseconds(0), QLatin1StringView("two")}, {milliseconds(300), QLatin1StringView("three")}};
    planRefusalTime(milliseconds(0));
    steps.front().phases = early;
    steps.erase(steps.begin() + 1);
    steps.back().phases = late;
    setting.plan.steps = steps;
    makePlanned();
    QList<milliseconds> times;
    QObject::connect(update.get(), &FirmwareUpdate::phaseChanged,
        [&](const QString &, milliseconds time) { times << time; });
    // The first step takes longer than the first phase of the second.
    service.pipe.onRequest([&](const QJsonObject &request) {
        if (request.value("cmd") == "getMcuVersion")
            service.pipe.later(milliseconds(400), [&, request] {
                EXPECT_EQ(phases, QStringList {"one"});
                service.pipe.answer(request, "data", "2.05");
            });
    });
    start();
    ASSERT_TRUE(tarnTest::waitUntil([&] { return phases.size() == 3; }, patienceMs));
    EXPECT_EQ(phases, (QStringList {"one", "two", "three"}));
    // On a busy computer a phase may be shown late, and the next one comes in its time all the same. So they
    // are not compared with each other, but with the first answer, which comes 400 ms after the start at the
    // earliest. Times are in whole milliseconds.
    EXPECT_GE(times[1], milliseconds(399));
    EXPECT_GE(times[2], milliseconds(399 + 299));
    EXPECT_GE(update->elapsed(), times[2]);
    update->abandon();
    EXPECT_EQ(update->elapsed(), milliseconds(0));
}

// Another request of the application holds it up.
TEST_F(FirmwareUpdateTest, ThePhasesBeginWhenTheRequestHasBeenWritten)
{
    static constexpr tarn::UpdatePhase stepPhases[] = {
        {milliseconds(0), QLatin1StringView("one")}, {milliseconds(300), QLatin1StringView("two")}};
    planRefusalTime(milliseconds(0));
    steps.back().phases = stepPhases;
    setting.plan.steps = steps;
    options.skipPrecautions = true;
    service.pipe.onRequest([&](const QJsonObject &request) {
        if (request.value("cmd") == "getHardwareVersion") {
            service.pipe.later(
                milliseconds(600), [&, request] { service.pipe.answer(request, "data", "2"); });
        }
    });
    QElapsedTimer sinceOther;
    sinceOther.start();
    const auto other = client->send("getHardwareVersion");
    makePlanned();
    QList<milliseconds> times;
    QObject::connect(update.get(), &FirmwareUpdate::phaseChanged, [&](const QString &, milliseconds) {
        EXPECT_TRUE(other.isFinished());
        times << milliseconds(sinceOther.elapsed());
    });
    start();
    ASSERT_TRUE(tarnTest::waitUntil([&] { return phases.size() == 2; }, patienceMs));
    EXPECT_EQ(phases, (QStringList {"one", "two"}));
    EXPECT_EQ(service.pipe.commands(), (QStringList {"getHardwareVersion", "requestMcuUpdate"}));
    EXPECT_GE(times[1], milliseconds(599 + 299));
}

// Without this a KVane that the service does not see at once after its own restart would be missing.
TEST_F(FirmwareUpdateTest, TheQuestionIsRepeatedForAsLongAfterItsFirstWriting)
{
    options.limit = milliseconds(1200);
    service.firstAccessory = "disconnected";
    make();
    // It takes longer to connect again than the question may be repeated.
    QObject::connect(update.get(), &FirmwareUpdate::requestFollows, [this](const QString &command) {
        if (command != "getAccessoryType")
            return;
        service.pipe.stopListening();
        client->close();
        client->open();
        service.pipe.later(milliseconds(1400), [this] { service.pipe.startListening(); });
    });
    start();
    EXPECT_EQ(end().outcome, FirmwareOutcome::Done);
    EXPECT_EQ(service.pipe.connections(), 2);
    EXPECT_EQ(service.pipe.commands().count("getAccessoryType"), 2);
}

TEST_F(FirmwareUpdateTest, AnMcuWithoutAFirmwareIsAFailure)
{
    service.version = "0.00";
    const FirmwareResult result = run();
    EXPECT_EQ(result.outcome, FirmwareOutcome::Failed);
    EXPECT_FALSE(result.isUntouched);
    EXPECT_TRUE(result.text.contains("no firmware runs on the MCU (version 0.00)"))
        << result.text.toStdString();
    EXPECT_TRUE(result.advice.endsWith("leave the KVane attached and update again."));
    EXPECT_EQ(result.versionAfter, "0.00");
    EXPECT_EQ(result.answer.value("mcuVer"), "0.00");

    options.expectedVersion = "0.00";
    EXPECT_EQ(run().outcome, FirmwareOutcome::Failed);
}

TEST_F(FirmwareUpdateTest, TheExpectedVersionDecides)
{
    options.expectedVersion = "3.14";
    const FirmwareResult right = run();
    EXPECT_EQ(right.outcome, FirmwareOutcome::Done);
    EXPECT_EQ(right.advice, "");

    options.expectedVersion = "3.15";
    const FirmwareResult wrong = run();
    EXPECT_EQ(wrong.outcome, FirmwareOutcome::Failed);
    EXPECT_FALSE(wrong.isUntouched);
    EXPECT_TRUE(wrong.text.contains("the MCU's version is \"3.14\", not \"3.15\""))
        << wrong.text.toStdString();

    service.version.clear();
    const FirmwareResult unknown = run();
    EXPECT_EQ(unknown.outcome, FirmwareOutcome::Failed);
    EXPECT_TRUE(unknown.text.contains("the MCU's version cannot be read."));

    options.expectedVersion.reset();
    const FirmwareResult unchecked = run();
    EXPECT_EQ(unchecked.outcome, FirmwareOutcome::Done);
    EXPECT_TRUE(unchecked.text.endsWith("cannot be read.\nAsk for it with getMcuVersion."));
    EXPECT_EQ(unchecked.advice, "");
}

TEST_F(FirmwareUpdateTest, PointsOutTheVersionOfBefore)
{
    service.answers["getMcuVersion"] = "3.14";
    EXPECT_TRUE(run().advice.startsWith("It ran that version before, too."));

    // The first question was not answered by this KVane.
    service.firstAccessory = "dock";
    const FirmwareResult other = run();
    EXPECT_FALSE(other.versionBefore.has_value());
    EXPECT_TRUE(other.advice.startsWith("If that is not the version of the file"));
}

TEST_F(FirmwareUpdateTest, TheMcuNeedsAKVane)
{
    options.limit = milliseconds(1500);
    service.answers["getAccessoryType"] = "dock";
    const FirmwareResult result = run();
    EXPECT_EQ(result.outcome, FirmwareOutcome::NoKvane);
    EXPECT_TRUE(result.isUntouched);
    EXPECT_EQ(
        result.text, "The update needs a KVane, and the service sees \"dock\". Nothing has been touched.");
    EXPECT_EQ(result.advice, "Attach a KVane and try again.");
    EXPECT_EQ(result.answer.value("data"), "dock");
    // The limit holds for asking again, too.
    EXPECT_GE(service.pipe.commands().count("getAccessoryType"), 2);
    EXPECT_LE(service.pipe.commands().count("getAccessoryType"), 5);
    EXPECT_FALSE(service.pipe.commands().contains("requestMcuUpdate"));
    EXPECT_TRUE(folders.downloadNames().isEmpty());
}

TEST_F(FirmwareUpdateTest, WaitsForTheKVaneToBeSeen)
{
    service.answers["getAccessoryType"] = "disconnected";
    service.pipe.later(milliseconds(700), [this] { service.answers["getAccessoryType"] = "k_vane"; });
    EXPECT_EQ(run().outcome, FirmwareOutcome::Done);
    EXPECT_GE(service.pipe.commands().count("getAccessoryType"), 2);
    EXPECT_EQ(service.pipe.commands().count("getMcuVersion"), 1);
    EXPECT_EQ(phases.count("asking for the accessory"), 1);
}

TEST_F(FirmwareUpdateTest, SkippedPrecautionsLeaveOutTheQuestionsOnly)
{
    options.skipPrecautions = true;
    EXPECT_EQ(run().outcome, FirmwareOutcome::Done);
    EXPECT_EQ(service.pipe.commands(), QStringList {"requestMcuUpdate"});
    EXPECT_EQ(run(FirmwareKind::Ec).outcome, FirmwareOutcome::Done);
    EXPECT_EQ(service.pipe.commands().mid(1), ecCommands);
}

// The service leaves the file also when it could copy it and not delete it.
TEST_F(FirmwareUpdateTest, ALateFailureMayHaveTouchedTheMcuWhereverTheFileIs)
{
    service.answers["requestMcuUpdate"] = "failed";
    for (const Take way : {Take::No, Take::Yes}) {
        service.take = way;
        const FirmwareResult result = runLate();
        EXPECT_EQ(result.outcome, FirmwareOutcome::Failed);
        EXPECT_FALSE(result.isUntouched);
        EXPECT_TRUE(result.text.startsWith("The update failed: the flasher complained three times"));
        EXPECT_TRUE(
            result.advice.startsWith("The MCU's firmware may be incomplete now. Its boot loader cannot be"));
        EXPECT_FALSE(result.advice.contains("has left the download folder"));
        EXPECT_TRUE(folders.downloadNames().isEmpty());
    }
}

// Its own pauses keep the service from answering so soon once it has touched the MCU.
TEST_F(FirmwareUpdateTest, AnEarlyFailureHasTouchedNothingWhereverTheFileIs)
{
    service.answers["requestMcuUpdate"] = "failed";
    options.programName = "Firmware Centre";
    for (const Take way : {Take::No, Take::Yes}) {
        service.take = way;
        const FirmwareResult result = run();
        EXPECT_EQ(result.outcome, FirmwareOutcome::Refused);
        EXPECT_TRUE(result.isUntouched);
        EXPECT_TRUE(result.text.startsWith("The service refused the update before it touched the MCU"));
        EXPECT_FALSE(result.advice.contains("may be incomplete"));
        EXPECT_TRUE(result.advice.contains(": run Firmware Centre as that user.\n"));
        EXPECT_TRUE(folders.downloadNames().isEmpty());
    }
    // Five pauses of 1 s before the flasher, the first before any write, and five after it; 2 s without a
    // KVane, and 0.5 s before each message.
    const milliseconds bound = tarn::updatePlan(FirmwareKind::Mcu).steps.back().untouchedBefore;
    EXPECT_LT(bound, std::chrono::seconds(10));
    EXPECT_GT(bound, std::chrono::seconds(3));
}

// Another request of the application holds it up, and the service has not seen it yet.
TEST_F(FirmwareUpdateTest, WhatIsEarlyCountsFromTheWritingOfTheRequest)
{
    planRefusalTime(milliseconds(2000));
    options.skipPrecautions = true;
    service.answers["requestMcuUpdate"] = "failed";
    service.pipe.onRequest([&](const QJsonObject &request) {
        const bool isUpdate = request.value("cmd") == "requestMcuUpdate";
        service.pipe.later(milliseconds(isUpdate ? 0 : 2200),
            [&, request] { service.pipe.answer(request, "data", "failed"); });
    });
    const auto other = client->send("getHardwareVersion");
    makePlanned();
    start();
    EXPECT_EQ(end().outcome, FirmwareOutcome::Refused);

    service.pipe.onRequest([&](const QJsonObject &request) {
        service.pipe.later(
            milliseconds(2200), [&, request] { service.pipe.answer(request, "data", "failed"); });
    });
    start();
    EXPECT_EQ(end().outcome, FirmwareOutcome::Failed);
}

TEST_F(FirmwareUpdateTest, ARefusedEcUpdateHasFlashedNothing)
{
    service.answers["requestEcUpdate"] = "failed";
    const FirmwareResult result = run(FirmwareKind::Ec);
    EXPECT_EQ(result.outcome, FirmwareOutcome::Refused);
    EXPECT_TRUE(result.isUntouched);
    EXPECT_TRUE(result.text.endsWith("before it ran the EC tool: this update has flashed nothing."));
    EXPECT_TRUE(result.advice.contains(": run this program as that user.\n"));
    EXPECT_EQ(service.pipe.commands(), ecCommands);
}

TEST_F(FirmwareUpdateTest, SomebodyElseAtTheConsoleIsToldWhatToDo)
{
    setting.findOtherUser = [] {
        return tarn::OtherUser {"PC\\admin", "PC\\anna"};
    };
    const FirmwareResult result = run();
    EXPECT_EQ(result.outcome, FirmwareOutcome::OtherUser);
    EXPECT_TRUE(result.isUntouched);
    EXPECT_EQ(result.ownUser, "PC\\admin");
    EXPECT_EQ(result.consoleUser, "PC\\anna");
    EXPECT_TRUE(
        result.text.startsWith("The user at the console is PC\\anna, but this program runs as PC\\admin."));
    EXPECT_EQ(result.advice,
        "Run this program as PC\\anna, or put the file there and send requestMcuUpdate with its name "
        "\"fw.bin\".");
    EXPECT_TRUE(service.pipe.requests().isEmpty());
    EXPECT_TRUE(folders.downloadNames().isEmpty());
    const auto objection = update->objection(folders.firmware(), options);
    ASSERT_TRUE(objection.has_value());
    EXPECT_EQ(objection->text, result.text);

    options.skipPrecautions = true;
    EXPECT_FALSE(update->objection(folders.firmware(), options).has_value());
    EXPECT_EQ(run(FirmwareKind::Ec).outcome, FirmwareOutcome::Done);
    EXPECT_EQ(service.pipe.commands(), ecCommands);
}

TEST_F(FirmwareUpdateTest, AFileThatCannotBeFlashedIsNotTouched)
{
    file = folders.downloaded("BIOS.bin");
    writeFile(file, "own");
    const FirmwareResult result = run(FirmwareKind::Ec);
    EXPECT_EQ(result.outcome, FirmwareOutcome::BadFile);
    EXPECT_TRUE(result.isUntouched);
    EXPECT_TRUE(result.text.contains("The name holds \"IO\", which is a setting of the EC tool."));
    EXPECT_EQ(readFile(file), "own");
    EXPECT_EQ(update->objection(file, options)->text, result.text);
    // Also with the precautions skipped.
    options.skipPrecautions = true;
    EXPECT_EQ(run(FirmwareKind::Ec).outcome, FirmwareOutcome::BadFile);
    EXPECT_TRUE(service.pipe.requests().isEmpty());

    EXPECT_FALSE(make(FirmwareKind::Mcu).objection(file, options).has_value());
}

TEST_F(FirmwareUpdateTest, AnotherFileOfTheNameIsNotOverwritten)
{
    writeFile(folders.downloaded(), "own");
    const FirmwareResult result = run(FirmwareKind::Ec);
    EXPECT_EQ(result.outcome, FirmwareOutcome::BadFile);
    EXPECT_TRUE(result.text.startsWith("There is another file of that name"));
    EXPECT_TRUE(service.pipe.requests().isEmpty());
    EXPECT_EQ(readFile(folders.downloaded()), "own");
}

TEST_F(FirmwareUpdateTest, TellsThatAFileOfTheDownloadFolderIsTakenAway)
{
    file = folders.downloaded();
    writeFile(file, "own");
    QStringList warnings;
    make();
    QObject::connect(update.get(), &FirmwareUpdate::ownFileUsed, [&](const QString &path) {
        EXPECT_TRUE(service.pipe.requests().isEmpty());
        warnings << path;
    });
    start();
    EXPECT_EQ(end().outcome, FirmwareOutcome::Done);
    EXPECT_EQ(service.taken, "own");
    EXPECT_EQ(warnings, QStringList {QDir::toNativeSeparators(file)});

    writeFile(file, "own");
    service.answers["requestMcuUpdate"] = "failed";
    EXPECT_TRUE(run().advice.contains("\nThe file has left the download folder"));

    // What the service leaves is the user's, and not removed here either.
    writeFile(file, "own");
    service.take = Take::No;
    EXPECT_FALSE(run().advice.contains("has left the download folder"));
    EXPECT_EQ(readFile(file), "own");
}

TEST_F(FirmwareUpdateTest, OtherMessagesAreNotTheAnswer)
{
    service.pipe.onConnection([this] {
        service.pipe.notify("getAccessoryType", "dock");
        service.pipe.notify("changeAccessoryType", "dock");
    });
    EXPECT_EQ(run().outcome, FirmwareOutcome::Done);
}

TEST_F(FirmwareUpdateTest, OneUpdateRunsAtATime)
{
    int starts = 0;
    make();
    QObject::connect(update.get(), &FirmwareUpdate::started, [&] { ++starts; });
    start();
    update->start(folders.downloaded("none.bin"), options);
    EXPECT_EQ(end().outcome, FirmwareOutcome::Done);
    EXPECT_FALSE(update->isRunning());
    EXPECT_EQ(starts, 1);
    EXPECT_TRUE(QThreadPool::globalInstance()->waitForDone(patienceMs));
    QCoreApplication::processEvents();
    EXPECT_TRUE(results.isEmpty());
}

TEST_F(FirmwareUpdateTest, TheNextUpdateMayBeginWhenOneHasFinished)
{
    make();
    bool isSecond = false;
    QObject::connect(update.get(), &FirmwareUpdate::finished, [&] {
        if (!std::exchange(isSecond, true))
            start();
    });
    start();
    ASSERT_TRUE(tarnTest::waitUntil([&] { return results.size() == 2; }, patienceMs));
    EXPECT_EQ(results[1].outcome, FirmwareOutcome::Done);
    EXPECT_EQ(service.pipe.commands(), mcuCommands + mcuCommands);
}
