#include "device/recording/recording.h"

#include <QFile>
#include <QTemporaryDir>

#include <gtest/gtest.h>

using namespace tarnRecording;

namespace {

EcRecord portRead(std::uint16_t value)
{
    EcRecord record;
    record.port = 0x6c;
    record.value = value;
    record.us = record.lastUs = value * 10U;
    record.thread = 1;
    return record;
}

class RecordingOnDisk : public ::testing::Test
{
protected:
    RecordingOnDisk()
    {
        header.startedAt = "2026-11-23T03:12:00.123+01:00";
        header.service = "1.40";
        header.system = "linux";
        whole = lineOf(header);
        for (std::uint16_t value = 1; value <= 3; ++value)
            whole += lineOf(portRead(value));
    }

    [[nodiscard]] std::optional<Recording> readBack(const std::string &content)
    {
        QFile file(path);
        EXPECT_TRUE(file.open(QIODevice::WriteOnly));
        file.write(content.data(), static_cast<qint64>(content.size()));
        file.close();
        error.clear();
        return readRecording(path.toStdString(), error);
    }
    [[nodiscard]] bool says(const char *text) const { return error.find(text) != std::string::npos; }

    QTemporaryDir folder;
    QString path = folder.filePath(QStringLiteral("ec-ä.recording")); // paths are UTF-8
    RecordingHeader header;
    std::string whole;
    std::string error;
};

} // namespace

TEST_F(RecordingOnDisk, IsReadAsItWasWritten)
{
    const auto recording = readBack(whole);
    ASSERT_TRUE(recording) << error;
    EXPECT_EQ(recording->header, header);
    EXPECT_EQ(recording->records, (std::vector<EcRecord> {portRead(1), portRead(2), portRead(3)}));
    EXPECT_EQ(recording->damagedLine, 0u);
    EXPECT_FALSE(recording->isDamagedInside);
}

// Wherever a crash cuts it off, all lines before that are there.
TEST_F(RecordingOnDisk, IsReadUpToWhereItWasCutOff)
{
    const std::size_t lastLine = whole.size() - lineOf(portRead(3)).size();
    for (std::size_t size = lastLine + 1; size < whole.size(); ++size) {
        const auto recording = readBack(whole.substr(0, size));
        ASSERT_TRUE(recording) << size;
        EXPECT_EQ(recording->records.size(), 2u) << size;
        EXPECT_EQ(recording->damagedLine, 4u) << size;
        EXPECT_FALSE(recording->isDamagedInside) << size;
    }
    EXPECT_EQ(readBack(whole.substr(0, lastLine))->damagedLine, 0u);
    // What a file system leaves after a power failure.
    const auto zeros = readBack(whole + std::string(300, '\0'));
    EXPECT_EQ(zeros->records.size(), 3u);
    EXPECT_FALSE(zeros->isDamagedInside);
}

TEST_F(RecordingOnDisk, TellsDamageInsideFromACutOff)
{
    std::string damaged = whole;
    damaged[whole.find("0002")] = '1';
    const auto recording = readBack(damaged);
    ASSERT_TRUE(recording);
    EXPECT_EQ(recording->records, std::vector<EcRecord> {portRead(1)});
    EXPECT_EQ(recording->damagedLine, 3u);
    EXPECT_TRUE(recording->isDamagedInside);
    damaged = whole;
    damaged[whole.find("0003")] = '1'; // in the last line
    EXPECT_TRUE(readBack(damaged)->isDamagedInside);
}

TEST_F(RecordingOnDisk, HasOneHeader)
{
    const auto recording = readBack(whole + lineOf(header) + lineOf(portRead(4)));
    ASSERT_TRUE(recording);
    EXPECT_EQ(recording->records.size(), 3u);
    EXPECT_EQ(recording->damagedLine, 5u);
    EXPECT_TRUE(recording->isDamagedInside);
}

TEST_F(RecordingOnDisk, MayHoldNothingButItsHeader)
{
    const auto recording = readBack(lineOf(header));
    ASSERT_TRUE(recording);
    EXPECT_TRUE(recording->records.empty());
}

TEST_F(RecordingOnDisk, IsRefusedWhenItIsNone)
{
    EXPECT_FALSE(readBack(""));
    EXPECT_TRUE(says("is empty")) << error;
    EXPECT_FALSE(readBack("a text\nof two lines\n"));
    EXPECT_TRUE(says("is no recording")) << error;
    EXPECT_FALSE(readBack(lineOf(portRead(1))));
    EXPECT_TRUE(says("is no recording")) << error;
    header.version = 2;
    EXPECT_FALSE(readBack(lineOf(header) + lineOf(portRead(1))));
    EXPECT_TRUE(says("has form 2")) << error;
    EXPECT_FALSE(readRecording((path + "x").toStdString(), error));
    EXPECT_TRUE(says("cannot be read")) << error;
}

// Zeros of any number are what a power failure leaves; a line feed after them says that more was written.
TEST_F(RecordingOnDisk, IsReadUpToALineThatIsTooLong)
{
    for (const std::size_t size : {511U, 512U, 513U, 514U, 100'000U}) {
        const auto cutOff = readBack(whole + std::string(size, '\0'));
        ASSERT_TRUE(cutOff) << size;
        EXPECT_EQ(cutOff->records.size(), 3u) << size;
        EXPECT_EQ(cutOff->damagedLine, 5u) << size;
        EXPECT_FALSE(cutOff->isDamagedInside) << size;
        const auto damaged = readBack(whole + std::string(size, 'x') + "\n" + lineOf(portRead(4)));
        ASSERT_TRUE(damaged) << size;
        EXPECT_EQ(damaged->records.size(), 3u) << size;
        EXPECT_EQ(damaged->damagedLine, 5u) << size;
        EXPECT_TRUE(damaged->isDamagedInside) << size;
    }
}

// However long a stranger's header is, with a right checksum.
TEST_F(RecordingOnDisk, HasAHeaderOf512BytesAtMost)
{
    constexpr std::size_t longestHeader = 512;
    header.system.append(longestHeader + 1 - lineOf(header).size(), 'x'); // and the line feed
    EXPECT_TRUE(readBack(lineOf(header))) << error;
    header.system += 'x';
    EXPECT_FALSE(readBack(lineOf(header)));
    EXPECT_TRUE(says("is no recording")) << error;
    EXPECT_FALSE(readBack(std::string(1'000'000, 'x')));
    EXPECT_TRUE(says("is no recording")) << error;
}

TEST_F(RecordingOnDisk, IsRefusedWhenItIsTooLarge)
{
    ASSERT_TRUE(readBack(whole));
    ASSERT_TRUE(QFile::resize(path, static_cast<qint64>(largestRecording)));
    EXPECT_TRUE(readRecording(path.toStdString(), error)) << error;
    ASSERT_TRUE(QFile::resize(path, static_cast<qint64>(largestRecording) + 1));
    EXPECT_FALSE(readRecording(path.toStdString(), error));
    EXPECT_TRUE(says("is larger than a recording of an EC can be")) << error;
}

TEST_F(RecordingOnDisk, IsRefusedWhenItsHeaderWouldChangeTheTerminal)
{
    header.system = "\x1b]0;title\x07";
    EXPECT_FALSE(readBack(lineOf(header) + lineOf(portRead(1))));
    EXPECT_TRUE(says("is no recording")) << error;
}
