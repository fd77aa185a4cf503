#include "simulator/recording/recording_summary.h"

#include <gtest/gtest.h>

using namespace tarnSimulator;

namespace {

DecodedAccess accessTo(std::uint16_t address, DecodedAccess::Kind kind, std::uint8_t value)
{
    DecodedAccess access;
    access.kind = kind;
    access.address = address;
    access.value = value;
    return access;
}

} // namespace

TEST(RecordingSummary, CountsAccessesAndValuesOfEachRegister)
{
    using Kind = DecodedAccess::Kind;
    const auto summary = summaryOf({accessTo(0x400, Kind::Read, 1), accessTo(0x400, Kind::Read, 2),
        accessTo(0x400, Kind::Read, 1), accessTo(0x400, Kind::Write, 7), accessTo(0x500, Kind::Write, 8)});
    ASSERT_EQ(summary.size(), 2u);
    const RegisterSummary &first = summary.at(0x400);
    EXPECT_EQ(first.reads, 3u);
    EXPECT_EQ(first.writes, 1u);
    EXPECT_EQ(first.readValues, (std::map<std::uint8_t, std::uint64_t> {{1, 2}, {2, 1}}));
    EXPECT_EQ(first.writtenValues, (std::map<std::uint8_t, std::uint64_t> {{7, 1}}));
    EXPECT_EQ(summary.at(0x500).reads, 0u);
    EXPECT_EQ(summary.at(0x500).writes, 1u);
}

TEST(RecordingSummary, HasTheTimesOfAllBytes)
{
    DecodedAccess read = accessTo(0x400, DecodedAccess::Kind::Read, 1);
    read.acceptanceUs = {10, 20, 30};
    read.answerUs = 500;
    DecodedAccess unanswered = accessTo(0x400, DecodedAccess::Kind::Read, 1);
    unanswered.acceptanceUs = {40};
    const RegisterSummary row = summaryOf({read, unanswered}).at(0x400);
    EXPECT_EQ(row.acceptanceUs.count(), 4u);
    EXPECT_EQ(row.acceptanceUs.quantile(0.5), 20u);
    EXPECT_EQ(row.acceptanceUs.quantile(1), 40u);
    EXPECT_EQ(row.answerUs.count(), 1u);
    EXPECT_EQ(row.answerUs.quantile(0.99), 500u);
}

TEST(TimeSpread, HasTheSmallestTimeThatAShareDoesNotExceed)
{
    TimeSpread spread;
    EXPECT_EQ(spread.quantile(0.5), 0u);
    for (std::uint64_t us = 200; us > 0; --us)
        spread.add(us);
    EXPECT_EQ(spread.quantile(0), 1u);
    EXPECT_EQ(spread.quantile(0.5), 100u);
    EXPECT_EQ(spread.quantile(0.99), 198u);
    EXPECT_EQ(spread.quantile(1), 200u);
}
