#include "unit/client/firmware_update_fixture.h"

#include <QCoreApplication>
#include <QFile>
#include <QSemaphore>
#include <QThreadPool>

using namespace tarnClientTest;
using std::chrono::milliseconds;
using tarn::FirmwareKind;
using tarn::FirmwareOutcome;
using tarn::FirmwareResult;
using tarn::FirmwareUpdate;

namespace {

const QString goesOn = "The service goes on with the update.";

} // namespace

TEST_F(FirmwareUpdateTest, NoAnswerBeforeTheUpdateHasTouchedNothing)
{
    service.silentAt = "getMcuVersion";
    options.limit = milliseconds(500);
    const FirmwareResult result = run();
    EXPECT_EQ(result.outcome, FirmwareOutcome::NoAnswer);
    EXPECT_TRUE(result.isUntouched);
    EXPECT_EQ(result.command, "getMcuVersion");
    EXPECT_EQ(result.text, "No answer to getMcuVersion within 0.5 s.");
    EXPECT_EQ(result.advice, "Nothing has been touched.");
    EXPECT_TRUE(result.answer.isEmpty());
    EXPECT_EQ(service.pipe.commands(), QStringList {"getMcuVersion"});
    EXPECT_TRUE(folders.downloadNames().isEmpty());
}

TEST_F(FirmwareUpdateTest, NoAnswerToTheUpdateLeavesTheFileToTheService)
{
    service.silentAt = "requestEcUpdate";
    options.limit = milliseconds(500);
    const FirmwareResult result = run(FirmwareKind::Ec);
    EXPECT_EQ(result.outcome, FirmwareOutcome::NoAnswer);
    EXPECT_FALSE(result.isUntouched);
    EXPECT_TRUE(result.advice.startsWith(goesOn));
    EXPECT_TRUE(
        result.advice.contains("\nThe copy stays in the download folder until the service takes it: "));
    EXPECT_EQ(folders.downloadNames(), placed);
    // Now it is a file that was there before.
    EXPECT_FALSE(run(FirmwareKind::Ec).advice.contains("The copy stays"));
    EXPECT_EQ(folders.downloadNames(), placed);
}

TEST_F(FirmwareUpdateTest, AServiceThatGoesAwayEndsIt)
{
    service.leavingAt = "getAccessoryType";
    const FirmwareResult before = run();
    EXPECT_EQ(before.outcome, FirmwareOutcome::ServiceGone);
    EXPECT_TRUE(before.isUntouched);
    EXPECT_EQ(before.text, "The service went away before it answered getAccessoryType.");
    EXPECT_EQ(before.advice, "Nothing has been touched.");

    service.leavingAt = "requestMcuUpdate";
    const FirmwareResult within = run();
    EXPECT_EQ(within.outcome, FirmwareOutcome::ServiceGone);
    EXPECT_FALSE(within.isUntouched);
    EXPECT_TRUE(within.wasSent);
    EXPECT_TRUE(within.advice.startsWith("The MCU may be left in its boot loader"));
    // It has gone, so it cannot take the file.
    EXPECT_TRUE(folders.downloadNames().isEmpty());

    service.leavingAt = "requestEcUpdate";
    EXPECT_TRUE(run(FirmwareKind::Ec).advice.startsWith("If the EC tool runs, it goes on until it is done"));
}

TEST_F(FirmwareUpdateTest, ALostConnectionBetweenTheStepsIsMadeAgain)
{
    service.firstAccessory = "disconnected";
    setting.askingPause = milliseconds(2000);
    service.beforeAnswer = [this](const QString &command) {
        // In the pause before the question is repeated.
        if (command == "getAccessoryType" && service.firstAccessory == "disconnected")
            service.pipe.later(milliseconds(100), [this] { service.pipe.dropClient(); });
    };
    EXPECT_EQ(run().outcome, FirmwareOutcome::Done);
    EXPECT_EQ(service.pipe.connections(), 2);
}

TEST_F(FirmwareUpdateTest, WithoutAServiceNothingIsSentAndNothingStays)
{
    service.pipe.stopListening();
    client = std::make_unique<tarn::Client>(service.pipe.pipeName(), times(std::chrono::milliseconds(300)));
    client->open();
    const FirmwareResult result = run();
    EXPECT_EQ(result.outcome, FirmwareOutcome::NotSent);
    EXPECT_TRUE(result.isUntouched);
    EXPECT_FALSE(result.wasSent);
    EXPECT_EQ(result.text, "There is no connection to the service.");
    EXPECT_EQ(result.advice, "Nothing has been touched.");
    EXPECT_TRUE(folders.downloadNames().isEmpty());

    client->close();
    EXPECT_EQ(run(FirmwareKind::Ec).outcome, FirmwareOutcome::NotSent);
    make();
    client.reset();
    start();
    EXPECT_EQ(end().outcome, FirmwareOutcome::NotSent);
    EXPECT_TRUE(folders.downloadNames().isEmpty());
}

TEST_F(FirmwareUpdateTest, AClientThatIsClosedLeavesTheUpdateToTheService)
{
    service.silentAt = "requestEcUpdate";
    make(FirmwareKind::Ec);
    start();
    ASSERT_TRUE(isAsked("requestEcUpdate"));
    client.reset();
    const FirmwareResult result = end();
    EXPECT_EQ(result.outcome, FirmwareOutcome::NoAnswer);
    EXPECT_FALSE(result.isUntouched);
    EXPECT_EQ(folders.downloadNames(), placed);
}

TEST_F(FirmwareUpdateTest, GivingUpTheWaitLeavesTheUpdateToTheService)
{
    service.silentAt = "requestMcuUpdate";
    make();
    start();
    ASSERT_TRUE(isAsked("requestMcuUpdate"));
    update->abandon();
    EXPECT_FALSE(update->isRunning());
    const FirmwareResult result = end();
    EXPECT_EQ(result.outcome, FirmwareOutcome::Abandoned);
    EXPECT_FALSE(result.isUntouched);
    EXPECT_TRUE(result.wasSent);
    EXPECT_EQ(result.text, "The update was given up before the service answered requestMcuUpdate.");
    EXPECT_TRUE(result.advice.startsWith(goesOn));
    EXPECT_TRUE(result.advice.contains("\nThe copy stays in the download folder"));
    EXPECT_EQ(result.versionBefore, "2.05");
    EXPECT_EQ(folders.downloadNames(), placed);
    update->abandon(); // no second end
    EXPECT_TRUE(results.isEmpty());
}

TEST_F(FirmwareUpdateTest, GivingUpBetweenTheStepsSendsNothingMore)
{
    make();
    QObject::connect(update.get(), &FirmwareUpdate::requestFollows, [this](const QString &command) {
        if (command == "getAccessoryType")
            update->abandon();
    });
    start();
    const FirmwareResult result = end();
    EXPECT_EQ(result.outcome, FirmwareOutcome::Abandoned);
    EXPECT_TRUE(result.isUntouched);
    EXPECT_FALSE(result.wasSent);
    EXPECT_EQ(result.text, "The update was given up before getAccessoryType was sent.");
    EXPECT_EQ(result.advice, "Nothing has been touched.");
    EXPECT_EQ(service.pipe.commands(), QStringList {"getMcuVersion"});
    EXPECT_TRUE(folders.downloadNames().isEmpty());
}

// Another request of the application is on its way.
TEST_F(FirmwareUpdateTest, GivingUpARequestThatWaitsTakesItBack)
{
    const auto other = client->send("getHardwareVersion");
    service.silentAt = "getHardwareVersion";
    make(FirmwareKind::Ec);
    start();
    ASSERT_TRUE(tarnTest::waitUntil([this] { return !announced.isEmpty(); }, patienceMs));
    ASSERT_TRUE(isAsked("getHardwareVersion"));
    update->abandon();
    const FirmwareResult result = end();
    EXPECT_TRUE(result.isUntouched);
    EXPECT_EQ(result.text, "The update was given up before requestEcUpdate was sent.");
    EXPECT_TRUE(folders.downloadNames().isEmpty());
    // The same by deleting it.
    start();
    ASSERT_TRUE(tarnTest::waitUntil([this] { return announced.size() == 2; }, patienceMs));
    EXPECT_EQ(folders.downloadNames(), placed);
    update.reset();
    EXPECT_TRUE(folders.downloadNames().isEmpty());

    service.silentAt.clear();
    service.pipe.answer(QJsonDocument::fromJson(service.pipe.requests().value(0)).object(), "data", "2");
    const auto later = client->send("getMcuVersion");
    ASSERT_TRUE(isAsked("getMcuVersion"));
    EXPECT_FALSE(service.pipe.commands().contains("requestEcUpdate"));
}

TEST_F(FirmwareUpdateTest, DeletingItLeavesTheUpdateToTheService)
{
    service.silentAt = "requestMcuUpdate";
    make();
    start();
    ASSERT_TRUE(isAsked("requestMcuUpdate"));
    update.reset();
    EXPECT_EQ(folders.downloadNames(), placed);
    EXPECT_TRUE(results.isEmpty());
    EXPECT_EQ(client->state(), tarn::Client::State::Connected);

    // Before that request the copy goes.
    ASSERT_TRUE(QFile::remove(folders.downloaded()));
    service.silentAt = "getAccessoryType";
    make();
    start();
    ASSERT_TRUE(tarnTest::waitUntil([this] { return !folders.downloadNames().isEmpty(); }, patienceMs));
    update.reset();
    // A copy that is still being made is removed on its thread.
    EXPECT_TRUE(tarnTest::waitUntil([this] { return folders.downloadNames().isEmpty(); }, patienceMs));
}

// The client has the answer, and the update has not been told of it.
TEST_F(FirmwareUpdateTest, GivingUpComesTooLateOnceTheAnswerIsThere)
{
    answerTogetherWithANotification("requestMcuUpdate");
    QObject::connect(
        client.get(), &tarn::Client::notificationReceived, client.get(), [this] { update->abandon(); });
    service.answers["requestMcuUpdate"] = "failed";
    const FirmwareResult refused = run();
    EXPECT_EQ(refused.outcome, FirmwareOutcome::Refused);
    EXPECT_EQ(refused.answer.value("data"), "failed");
    EXPECT_TRUE(folders.downloadNames().isEmpty());

    // The answer of a step that is not the last one.
    answerTogetherWithANotification("getMcuVersion");
    const FirmwareResult between = run();
    EXPECT_EQ(between.outcome, FirmwareOutcome::Abandoned);
    EXPECT_FALSE(between.wasSent);
    EXPECT_EQ(between.text, "The update was given up before getAccessoryType was sent.");
    EXPECT_EQ(between.versionBefore, "2.05");
    EXPECT_EQ(service.pipe.commands(), mcuCommands + QStringList {"getMcuVersion"});
}

TEST_F(FirmwareUpdateTest, DeletingItRemovesTheCopyOnceTheAnswerIsThere)
{
    answerTogetherWithANotification("requestMcuUpdate");
    QObject::connect(
        client.get(), &tarn::Client::notificationReceived, client.get(), [this] { update.reset(); });
    service.answers["requestMcuUpdate"] = "failed";
    make();
    start();
    ASSERT_TRUE(tarnTest::waitUntil([this] { return update == nullptr; }, patienceMs));
    EXPECT_EQ(service.pipe.commands(), mcuCommands);
    EXPECT_TRUE(folders.downloadNames().isEmpty());
}

TEST_F(FirmwareUpdateTest, GivingUpInThePauseBetweenTwoQuestionsIsNoMissingAnswer)
{
    service.answers["getAccessoryType"] = "disconnected";
    service.beforeAnswer = [this](const QString &command) {
        if (command == "getAccessoryType")
            service.pipe.later(milliseconds(200), [this] { update->abandon(); });
    };
    const FirmwareResult result = run();
    EXPECT_EQ(result.outcome, FirmwareOutcome::Abandoned);
    EXPECT_TRUE(result.isUntouched);
    EXPECT_FALSE(result.wasSent);
    EXPECT_EQ(service.pipe.commands().count("getAccessoryType"), 1);
}

// A disk or an account server that takes long.
TEST_F(FirmwareUpdateTest, NothingWaitsForTheStaging)
{
    QSemaphore hold;
    setting.findOtherUser = [&hold] {
        hold.acquire();
        return std::nullopt;
    };
    make();
    start();
    bool isServed = false;
    service.pipe.later(milliseconds(50), [&] {
        isServed = true;
        update->abandon();
        EXPECT_TRUE(update->isRunning());
        hold.release();
    });
    const FirmwareResult result = end();
    EXPECT_TRUE(isServed);
    EXPECT_EQ(result.outcome, FirmwareOutcome::Abandoned);
    EXPECT_TRUE(result.isUntouched);
    EXPECT_EQ(result.text, "The update was given up before getMcuVersion was sent.");
    EXPECT_TRUE(folders.downloadNames().isEmpty());
    EXPECT_TRUE(service.pipe.requests().isEmpty());

    start();
    update.reset();
    hold.release();
    EXPECT_TRUE(QThreadPool::globalInstance()->waitForDone(patienceMs));
    EXPECT_TRUE(folders.downloadNames().isEmpty());
}

// The end of the staging has not been delivered yet.
TEST_F(FirmwareUpdateTest, GivingUpWhenTheFileHasJustBeenPlacedSendsNothing)
{
    for (const bool isForced : {false, true}) {
        options.skipPrecautions = isForced;
        make();
        start();
        ASSERT_TRUE(QThreadPool::globalInstance()->waitForDone(patienceMs));
        update->abandon();
        EXPECT_FALSE(update->isRunning());
        QCoreApplication::processEvents();
        const FirmwareResult result = end();
        EXPECT_EQ(result.outcome, FirmwareOutcome::Abandoned);
        EXPECT_TRUE(result.isUntouched);
        EXPECT_EQ(result.command, isForced ? "requestMcuUpdate" : "getMcuVersion");
        EXPECT_TRUE(folders.downloadNames().isEmpty());
    }
    EXPECT_TRUE(service.pipe.requests().isEmpty());
}

TEST_F(FirmwareUpdateTest, AnySlotMayDeleteIt)
{
    file = folders.downloaded();
    writeFile(file, "own");
    const auto deleteIt = [this] {
        update.reset();
    };
    const std::function<void()> connections[] = {
        [&] { QObject::connect(update.get(), &FirmwareUpdate::ownFileUsed, deleteIt); },
        [&] { QObject::connect(update.get(), &FirmwareUpdate::started, deleteIt); },
        [&] { QObject::connect(update.get(), &FirmwareUpdate::requestFollows, deleteIt); },
        [&] { QObject::connect(update.get(), &FirmwareUpdate::phaseChanged, deleteIt); },
        [&] { QObject::connect(update.get(), &FirmwareUpdate::finished, deleteIt); },
    };
    for (const auto &connectSlot : connections) {
        EXPECT_EQ(readFile(file), "own");
        make();
        connectSlot();
        start();
        ASSERT_TRUE(tarnTest::waitUntil([this] { return update == nullptr; }, patienceMs));
    }
    EXPECT_EQ(results.size(), 1);
    // A phase begins after its request has been written.
    EXPECT_EQ(service.pipe.commands(), QStringList {"getMcuVersion"} + mcuCommands);
}
