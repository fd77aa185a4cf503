#include "device/recording/ec_record.h"

#include <gtest/gtest.h>

using namespace tarnRecording;

namespace {

EcRecord access(EcRecord::Kind kind, std::uint16_t port, std::uint16_t value, std::uint64_t us)
{
    EcRecord record;
    record.kind = kind;
    record.port = port;
    record.value = value;
    record.us = record.lastUs = us;
    record.thread = 2;
    return record;
}

// Without checksum and line feed.
std::string payloadOf(const EcRecord &record)
{
    const std::string line = lineOf(record);
    EXPECT_EQ(line.back(), '\n');
    return line.substr(0, line.size() - 7);
}

std::optional<EcRecord> readBack(const EcRecord &record)
{
    const std::string line = lineOf(record);
    return recordOf(std::string_view(line).substr(0, line.size() - 1));
}

RecordingHeader someHeader()
{
    RecordingHeader header;
    header.startedAt = "2026-11-23T03:12:00.123+01:00";
    header.service = "1.40";
    header.system = "winnt";
    header.firstAccess = 5000;
    header.clockUs = 81234567;
    return header;
}

} // namespace

TEST(EcRecord, HasALineOfItsOwn)
{
    EXPECT_EQ(payloadOf(access(EcRecord::Kind::Out, 0x6c, 0x80, 130)), "out 006c 0080 130 2");
    EXPECT_EQ(
        payloadOf(access(EcRecord::Kind::In, 0x68, 0xff15, 1234567890123)), "in 0068 ff15 1234567890123 2");
    EcRecord polls = access(EcRecord::Kind::In, 0x6c, 1, 160);
    polls.count = 12;
    polls.lastUs = 220;
    EXPECT_EQ(payloadOf(polls), "in 006c 0001 160 2 x12 220");
    EcRecord load;
    load.kind = EcRecord::Kind::Load;
    load.us = load.lastUs = 120;
    load.thread = 1;
    EXPECT_EQ(payloadOf(load), "load ok 120 1");
    load.result = EcRecord::LoadResult::Failed;
    EXPECT_EQ(payloadOf(load), "load failed 120 1");
    load.result = EcRecord::LoadResult::Incomplete;
    EXPECT_EQ(payloadOf(load), "load incomplete 120 1");
    load.kind = EcRecord::Kind::Unload;
    EXPECT_EQ(payloadOf(load), "unload 120 1");
    for (EcRecord record : {access(EcRecord::Kind::Out, 0x6c, 0x80, 130), polls})
        EXPECT_EQ(readBack(record), record);
    load.result = EcRecord::LoadResult::Ok; // an unload has none
    EXPECT_EQ(readBack(load), load);
}

TEST(RecordingHeader, HasALineOfItsOwn)
{
    const RecordingHeader header = someHeader();
    const std::string line = lineOf(header);
    EXPECT_EQ(
        line.substr(0, line.size() - 7), "header 1 2026-11-23T03:12:00.123+01:00 1.40 winnt 5000 81234567");
    EXPECT_EQ(headerOf(std::string_view(line).substr(0, line.size() - 1)), header);
    EXPECT_FALSE(recordOf(std::string_view(line).substr(0, line.size() - 1)));
    const std::string other = lineOf(access(EcRecord::Kind::In, 0x6c, 1, 160));
    EXPECT_FALSE(headerOf(std::string_view(other).substr(0, other.size() - 1)));
    EXPECT_FALSE(headerOf(""));
}

// They are printed, and may come from anybody.
TEST(RecordingHeader, HasPrintableWordsOnly)
{
    for (std::string RecordingHeader::*word :
        {&RecordingHeader::startedAt, &RecordingHeader::service, &RecordingHeader::system}) {
        for (const char *text : {"\x1b[31mred", "a\tb", "\x7f", "\xc3\xa4", "", "two words"}) {
            RecordingHeader header = someHeader();
            header.*word = text;
            const std::string line = lineOf(header);
            EXPECT_FALSE(headerOf(std::string_view(line).substr(0, line.size() - 1))) << text;
        }
        RecordingHeader header = someHeader();
        header.*word = "~!";
        const std::string line = lineOf(header);
        EXPECT_EQ(headerOf(std::string_view(line).substr(0, line.size() - 1)), header);
    }
}

// A file of 64 MiB has three million records, which all are read.
TEST(EcRecord, IsSmall)
{
    EXPECT_LE(sizeof(EcRecord), 40U);
}

// CRC-16/X-25 of "123456789" is 906e.
TEST(EcRecord, HasAChecksumThatOthersCanMake)
{
    EXPECT_EQ(lineOf(access(EcRecord::Kind::In, 0x6c, 1, 160)).substr(0, 16), "in 006c 0001 160");
    EXPECT_FALSE(recordOf("123456789 *906e")); // the checksum is right, the words are not
    EXPECT_FALSE(recordOf("in 006c 0001 160 2 *0000"));
}

TEST(EcRecord, IsNotReadWhenAnythingIsWrong)
{
    const std::string whole = lineOf(access(EcRecord::Kind::In, 0x6c, 1, 160));
    const std::string line = whole.substr(0, whole.size() - 1);
    ASSERT_TRUE(recordOf(line));
    for (std::size_t at = 0; at < line.size(); ++at) {
        std::string damaged = line;
        damaged[at] = damaged[at] == '7' ? '8' : '7';
        EXPECT_FALSE(recordOf(damaged)) << damaged;
        EXPECT_FALSE(recordOf(line.substr(0, at))) << at; // cut off by a crash
    }
    EXPECT_FALSE(recordOf(line + " "));
    EXPECT_FALSE(recordOf(""));
}
