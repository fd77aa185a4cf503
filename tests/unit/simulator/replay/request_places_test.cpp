#include "simulator/replay/request_places.h"

#include "unit/simulator/replay/recording_builder.h"

#include <QTemporaryDir>

#include <gtest/gtest.h>

using tarnRecording::RequestRecord;
using tarnSimulatorTest::RecordingBuilder;

namespace {

constexpr std::uint16_t linkStatus = 0x06A0;
constexpr std::uint64_t pauseUs = 200'000;

std::uint64_t placeOf(const RecordingBuilder &builder, std::uint64_t after)
{
    const QTemporaryDir folder;
    const std::string path = folder.filePath(QStringLiteral("ec.recording")).toStdString();
    builder.save(path);
    std::string error;
    const auto recording = tarnRecording::readRecording(path, error);
    EXPECT_TRUE(recording) << error;
    RequestRecord request;
    request.after = after;
    request.text = "{}";
    return tarnSimulator::placedSteps(*recording, {request}).front().after;
}

// The monitor, thread 1, looks at the link twice; 7 accesses each.
RecordingBuilder twoHolds()
{
    RecordingBuilder recording;
    recording.load().read(linkStatus, 0).after(pauseUs).read(linkStatus, 0);
    return recording;
}

} // namespace

TEST(RequestPlaces, StayWithinAHold)
{
    EXPECT_EQ(placeOf(twoHolds(), 3), 4U);
    EXPECT_EQ(placeOf(twoHolds(), 6), 7U);
    EXPECT_EQ(placeOf(twoHolds(), 10), 10U);
    EXPECT_EQ(placeOf(twoHolds(), 14), 14U);
}

// Else it would be carried out before the monitor's next hold, which came first.
TEST(RequestPlaces, AreMovedFromAPauseIntoTheHoldAfterIt)
{
    EXPECT_EQ(placeOf(twoHolds(), 7), 8U);
    EXPECT_EQ(placeOf(twoHolds(), 0), 1U);
}

TEST(RequestPlaces, StayInAPauseAfterWhichTheirAccessesBegin)
{
    RecordingBuilder recording;
    recording.load()
        .read(linkStatus, 0)
        .after(pauseUs)
        .by(2)
        .write(0x04B0, 1)
        .by(1)
        .after(pauseUs)
        .read(linkStatus, 0);
    EXPECT_EQ(placeOf(recording, 7), 7U);
    EXPECT_EQ(placeOf(recording, 10), 11U);
    EXPECT_EQ(placeOf(recording, 13), 14U);
}

// A thread that carries out much has more accesses than the monitor.
TEST(RequestPlaces, KnowTheMonitorByWhatItLooksAt)
{
    RecordingBuilder recording;
    recording.load().read(linkStatus, 0).read(linkStatus, 0).after(pauseUs).by(2);
    for (int access = 0; access < 9; ++access)
        recording.write(0x04B0, 1);
    EXPECT_EQ(placeOf(recording, 14), 14U);
}

TEST(RequestPlaces, KeepTheOrderOfTheSteps)
{
    const QTemporaryDir folder;
    const std::string path = folder.filePath(QStringLiteral("ec.recording")).toStdString();
    twoHolds().save(path);
    std::string error;
    const auto recording = tarnRecording::readRecording(path, error);
    const auto steps = tarnSimulator::placedSteps(*recording,
        {{7, RequestRecord::Kind::Request, "{}"}, {7, RequestRecord::Kind::Answer, "1"},
            {9, RequestRecord::Kind::Request, "{}"}});
    EXPECT_EQ(steps.at(0).after, 8U);
    EXPECT_EQ(steps.at(1).after, 8U);
    EXPECT_EQ(steps.at(2).after, 9U);
}
