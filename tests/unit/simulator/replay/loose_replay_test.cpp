#include "unit/simulator/replay/replay_session.h"

using tarnSimulatorTest::RecordingBuilder;

class LooseReplayed : public tarnSimulatorTest::ReplaySession
{
protected:
    void prepareLoose(const RecordingBuilder &recording)
    {
        ASSERT_EQ(prepare(recording, "--loose"), 0) << errors.toStdString();
        load();
    }
};

TEST_F(LooseReplayed, AnswersInAnyOrder)
{
    prepareLoose(
        RecordingBuilder().load().read(0x06A0, 4).read(0x06A6, 1).write(0x04B0, 0x12).read(0x06A0, 0));
    writeRegister(0x04B0, 0x12);
    EXPECT_EQ(readRegister(0x06A6), 1);
    EXPECT_EQ(readRegister(0x06A0), 4);
    EXPECT_FALSE(state().isComplete());
    EXPECT_EQ(readRegister(0x06A0), 0);
    EXPECT_TRUE(state().isComplete());
    EXPECT_EQ(computer->peek(0x04B0), 0x12);
    EXPECT_EQ(run(QStringLiteral("show")), 0);
    EXPECT_TRUE(said("4 of 4 register accesses"));
}

TEST_F(LooseReplayed, StaysAtTheLastValue)
{
    prepareLoose(RecordingBuilder().load().read(0x06A0, 4).read(0x06A0, 0).write(0x04A4, 0));
    EXPECT_EQ(readRegister(0x06A0), 4);
    EXPECT_EQ(readRegister(0x06A0), 0);
    EXPECT_EQ(readRegister(0x06A0), 0);
    writeRegister(0x04A4, 0);
    writeRegister(0x04A4, 0); // as in each cycle of the monitor
    EXPECT_TRUE(state().isComplete());
    EXPECT_EQ(state().after, 2U);
}

TEST_F(LooseReplayed, NoticesWhatWasNeverRecorded)
{
    const RecordingBuilder recording = RecordingBuilder().load().read(0x06A0, 4).write(0x04A8, 17);
    prepareLoose(recording);
    EXPECT_EQ(readRegister(0x04A8), 0);
    EXPECT_EQ(state().difference, "register 0x04A8 EC_POWERMODE_PL1 is not read in the recording");
    prepareLoose(recording);
    writeRegister(0x0500, 1);
    EXPECT_EQ(state().difference, "register 0x0500 is not written in the recording");
    prepareLoose(recording);
    writeRegister(0x04A8, 18);
    EXPECT_EQ(state().difference,
        "register 0x04A8 EC_POWERMODE_PL1: recorded is the write of 0x11, the service wrote 0x12");
    prepareLoose(recording);
    writeRegister(0x04A8, 17);
    writeRegister(0x04A8, 18);
    EXPECT_EQ(
        state().difference, "the write of 0x12 to register 0x04A8 EC_POWERMODE_PL1 is not in the recording");
    EXPECT_EQ(run(QStringLiteral("show")), 1);
}

TEST_F(LooseReplayed, KeepsItsPlaceWhenTheLibraryIsReloaded)
{
    prepareLoose(RecordingBuilder().load().read(0x06A0, 4).read(0x06A0, 3).read(0x04A8, 1));
    EXPECT_EQ(readRegister(0x06A0), 4);
    load();
    EXPECT_EQ(readRegister(0x06A0), 3);
    EXPECT_EQ(ports->read(0x80), 0xFF);
}

TEST_F(LooseReplayed, DoesTheStepsInTheirPlaces)
{
    steps("after 0 answer 5\nafter 7 answer 6\nafter 14 answer 7\n");
    prepareLoose(RecordingBuilder().load().read(0x06A0, 4).read(0x06A0, 3));
    EXPECT_EQ(readRegister(0x06A0), 4);
    EXPECT_EQ(computer->desktop().answer(), 6);
    EXPECT_EQ(readRegister(0x06A0), 3);
    EXPECT_EQ(computer->desktop().answer(), 7);
    EXPECT_TRUE(state().isComplete());
}
