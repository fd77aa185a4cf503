#include "unit/simulator/replay/replay_session.h"

#include <chrono>

using tarnSimulatorTest::RecordingBuilder;

using StrictReplayed = tarnSimulatorTest::ReplaySession;

TEST_F(StrictReplayed, GivesWhatWasRecorded)
{
    ASSERT_EQ(prepare(RecordingBuilder().load().in(0x6C, 0xABFC).read(0x04A8, 0x55).write(0x04B0, 0x12)), 0)
        << errors.toStdString();
    load();
    EXPECT_EQ(ports->read(0x6C), 0xABFC);
    EXPECT_EQ(readRegister(0x04A8), 0x55);
    EXPECT_FALSE(state().isComplete());
    writeRegister(0x04B0, 0x12);
    EXPECT_TRUE(state().isComplete());
    EXPECT_EQ(state().consumed, 14U);
    EXPECT_EQ(ports->read(0x6C), 0xFF); // the end of the recording
    EXPECT_EQ(run(QStringLiteral("show")), 0);
    EXPECT_TRUE(said("14 of 14 port accesses, 0 of 0 steps, complete; 1 accesses came after its end"));
}

TEST_F(StrictReplayed, ShowsTheRegistersOfTheRecording)
{
    ASSERT_EQ(prepare(RecordingBuilder().load().read(0x06A0, 4).write(0x04A8, 17)), 0);
    load();
    readRegister(0x06A0);
    writeRegister(0x04A8, 17);
    EXPECT_EQ(computer->peek(0x06A0), 4);
    EXPECT_EQ(computer->peek(0x04A8), 17);
    const auto logged = computer->registerLog().readAfter(0).accesses;
    ASSERT_EQ(logged.size(), 2U);
    EXPECT_EQ(logged.front().kind, tarnSimulator::AccessKind::Read);
    EXPECT_EQ(logged.back().value, 17);
    EXPECT_EQ(computer->counters().reads, 1U);
    EXPECT_EQ(computer->counters().writes, 1U);
}

TEST_F(StrictReplayed, NamesBothSidesOfTheFirstDifference)
{
    ASSERT_EQ(prepare(RecordingBuilder().load().read(0x06A0, 4).write(0x04A8, 17)), 0);
    load();
    readRegister(0x06A0);
    writeRegister(0x04A8, 18);
    EXPECT_EQ(state().difference,
        "access 13: recorded is a write of 0x11 to port 0x68, the service made a write of 0x12 to port 0x68; "
        "before "
        "it: read of 0x06A0 MCU_LINK_STATUS = 0x04");
    EXPECT_EQ(ports->read(0x6C), 0xFF);
    ports->write(0x68, 17);
    EXPECT_EQ(state().consumed, 12U); // nothing goes on after a difference
    EXPECT_EQ(state().after, 3U);
    EXPECT_EQ(run(QStringLiteral("show")), 1);
    EXPECT_TRUE(said("different at access 13: recorded is a write of 0x11"));
}

TEST_F(StrictReplayed, TellsAReadFromAWriteAndOnePortFromAnother)
{
    ASSERT_EQ(prepare(RecordingBuilder().load().in(0x6C, 0xFC)), 0);
    load();
    ports->write(0x6C, 0x92);
    EXPECT_EQ(state().difference,
        "access 1: recorded is a read of port 0x6C that gave 0xFC, the service made a write of 0x92 to port "
        "0x6C; no "
        "register had been accessed before");
    ASSERT_EQ(prepare(RecordingBuilder().load().in(0x6C, 0xFC)), 0);
    load();
    EXPECT_EQ(ports->read(0x68), 0xFF);
    EXPECT_NE(state().difference.find("the service made a read of port 0x68;"), std::string::npos);
}

TEST_F(StrictReplayed, IsNotCompleteWhenNothingWasAskedOrSomethingIsLeft)
{
    ASSERT_EQ(prepare(RecordingBuilder().load().in(0x6C, 1).in(0x6C, 0)), 0);
    EXPECT_EQ(run(QStringLiteral("show")), 1);
    EXPECT_TRUE(said("0 of 2 port accesses, 0 of 0 steps, not complete: next is a load of the port library"));
    load();
    EXPECT_EQ(run(QStringLiteral("show")), 1);
    EXPECT_EQ(ports->read(0x6C), 1);
    EXPECT_EQ(run(QStringLiteral("show")), 1);
    EXPECT_TRUE(
        said("1 of 2 port accesses, 0 of 0 steps, not complete: next is a read of port 0x6C that gave 0x00"));
    EXPECT_EQ(ports->read(0x6C), 0);
    EXPECT_EQ(run(QStringLiteral("show")), 0);
}

TEST_F(StrictReplayed, TakesReadsThatRepeatOneByOne)
{
    ASSERT_EQ(prepare(RecordingBuilder().load().in(0x6C, 2, 3).out(0x6C, 0x92)), 0);
    load();
    for (int poll = 0; poll < 3; ++poll)
        EXPECT_EQ(ports->read(0x6C), 2);
    ports->write(0x6C, 0x92);
    EXPECT_TRUE(state().isComplete());

    ASSERT_EQ(prepare(RecordingBuilder().load().in(0x6C, 2, 3).out(0x6C, 0x92)), 0);
    load();
    EXPECT_EQ(ports->read(0x6C), 2);
    ports->write(0x6C, 0x92);
    EXPECT_NE(state().difference.find("access 2: recorded is a read of port 0x6C that gave 0x02"),
        std::string::npos);
}

TEST_F(StrictReplayed, LetsAThreadTakeTheEcOverNoEarlierThanItDid)
{
    using std::chrono::steady_clock;
    using namespace std::chrono_literals;
    ASSERT_EQ(prepare(RecordingBuilder().load().in(0x6C, 1).by(2).after(300000).in(0x6C, 2)), 0);
    load();
    EXPECT_EQ(ports->read(0x6C), 1);
    const auto before = steady_clock::now();
    EXPECT_EQ(ports->read(0x6C), 2);
    EXPECT_GE(steady_clock::now() - before, 295ms);

    // A pause of the same thread decides nothing.
    RecordingBuilder pauses;
    pauses.load();
    for (int pause = 0; pause < 30; ++pause)
        pauses.in(0x6C, 1).after(60000000);
    ASSERT_EQ(prepare(pauses), 0);
    load();
    const auto afterwards = steady_clock::now();
    for (int pause = 0; pause < 30; ++pause)
        EXPECT_EQ(ports->read(0x6C), 1);
    EXPECT_LT(steady_clock::now() - afterwards, 20s);
}

TEST_F(StrictReplayed, GoesOnWhereItWasWhenTheLibraryIsReloaded)
{
    ASSERT_EQ(prepare(RecordingBuilder().load().in(0x6C, 1).unload().load().in(0x6C, 2, 2)), 0);
    load();
    EXPECT_EQ(ports->read(0x6C), 1);
    load();
    EXPECT_EQ(ports->read(0x6C), 2);
    EXPECT_EQ(ports->read(0x6C), 2);
    EXPECT_TRUE(state().isComplete());
    load(); // the next process finds the end
    EXPECT_TRUE(state().isComplete());
}

TEST_F(StrictReplayed, WantsAReloadAtTheEnd)
{
    ASSERT_EQ(prepare(RecordingBuilder().load().in(0x6C, 1).unload().load()), 0);
    load();
    EXPECT_EQ(ports->read(0x6C), 1);
    EXPECT_FALSE(state().isComplete());
    EXPECT_EQ(run(QStringLiteral("show")), 1);
    EXPECT_TRUE(said("not complete: next is an unload of the port library"));
    load();
    EXPECT_TRUE(state().isComplete());
}

TEST_F(StrictReplayed, NoticesAReloadThatWasNotRecordedAndOneThatIsMissing)
{
    ASSERT_EQ(prepare(RecordingBuilder().load().in(0x6C, 1).in(0x6C, 2)), 0);
    load();
    EXPECT_EQ(ports->read(0x6C), 1);
    load();
    EXPECT_NE(state().difference.find("the service made a load of the port library"), std::string::npos);

    ASSERT_EQ(prepare(RecordingBuilder().load().in(0x6C, 1).unload().load().in(0x6C, 2)), 0);
    load();
    EXPECT_EQ(ports->read(0x6C), 1);
    EXPECT_EQ(ports->read(0x6C), 0xFF);
    EXPECT_NE(state().difference.find(
                  "access 2: recorded is an unload of the port library, the service made a read"),
        std::string::npos);
}

// The second file of a long recording begins in the middle.
TEST_F(StrictReplayed, CountsAsTheRecordingDoes)
{
    ASSERT_EQ(prepare(RecordingBuilder(5000).in(0x6C, 1).in(0x6C, 2)), 0);
    load();
    EXPECT_EQ(ports->read(0x6C), 1);
    ports->write(0x68, 1);
    EXPECT_EQ(state().difference.substr(0, 12), "access 5001:");
}

TEST_F(StrictReplayed, SaysWhenTheRecordingHasGone)
{
    ASSERT_EQ(prepare(RecordingBuilder().load().in(0x6C, 1)), 0);
    QFile::remove(folder.filePath(QStringLiteral("ec.recording")));
    load();
    EXPECT_EQ(ports->read(0x6C), 0xFF);
    ports->write(0x6C, 1);
    EXPECT_NE(state().difference.find("cannot be read"), std::string::npos);
    EXPECT_EQ(run(QStringLiteral("show")), 1);
}
