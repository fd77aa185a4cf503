#include "device/recording/request_record.h"

#include <QDir>
#include <QFile>
#include <QTemporaryDir>

#include <gtest/gtest.h>

using namespace tarnRecording;

namespace {

using RequestKind = RequestRecord::Kind;

class RequestsOnDisk : public ::testing::Test
{
protected:
    [[nodiscard]] std::optional<std::vector<RequestRecord>> readBack(const QByteArray &content)
    {
        QFile file(path);
        EXPECT_TRUE(file.open(QIODevice::WriteOnly));
        file.write(content);
        file.close();
        error.clear();
        return readRequests(path.toStdString(), error);
    }
    // The places that a journal gives to moments of the system's clock.
    [[nodiscard]] std::vector<std::uint64_t> placesOf(
        const Recording &recording, std::initializer_list<std::uint64_t> moments)
    {
        RequestJournal journal;
        for (const std::uint64_t clockUs : moments)
            journal.note(RequestKind::Request, "{}", clockUs);
        EXPECT_TRUE(journal.write(path.toStdString(), recording));
        std::vector<std::uint64_t> places;
        const auto records = readRequests(path.toStdString(), error);
        for (const RequestRecord &record : records.value())
            places.push_back(record.after);
        return places;
    }

    QTemporaryDir folder;
    QString path = folder.filePath(QStringLiteral("ec.requests"));
    std::string error;
};

EcRecord accessAt(std::uint64_t us, std::uint32_t count = 1, std::uint64_t lastUs = 0)
{
    EcRecord record;
    record.us = us;
    record.count = count;
    record.lastUs = count > 1 ? lastUs : us;
    return record;
}

} // namespace

TEST_F(RequestsOnDisk, AreReadAsTheyWereWritten)
{
    const std::vector<RequestRecord> records {{0, RequestKind::Device, R"({"name": "rtx"})"},
        {0, RequestKind::Answer, "1"}, {1234, RequestKind::Request, R"({"command": "x", "data": "a b"})"}};
    QByteArray content;
    for (const RequestRecord &record : records)
        content += QByteArray::fromStdString(lineOf(record));
    EXPECT_TRUE(content.endsWith("after 1234 request {\"command\": \"x\", \"data\": \"a b\"}\n"));
    EXPECT_EQ(readBack(content), records) << error;
}

TEST_F(RequestsOnDisk, MayBeWrittenByHand)
{
    const std::vector<RequestRecord> records {{3, RequestKind::Answer, "0"}};
    EXPECT_EQ(readBack("# a remark\r\n\r\nafter 3 answer 0\r\n"), records) << error;
    EXPECT_EQ(readBack("after 3 answer 0"), records) << error;
    EXPECT_EQ(readBack(""), std::vector<RequestRecord>());
    QFile::remove(path);
    EXPECT_EQ(readRequests(path.toStdString(), error), std::vector<RequestRecord>());
}

TEST_F(RequestsOnDisk, NameTheLineThatCannotBeUnderstood)
{
    const char *const badLines[] = {"before 3 answer 0", "after answer 0", "after x answer 0", "after 3",
        "after 3 ", "after 3 answer", "after 3 answer ", "after 3 question 0", "after -1 answer 0",
        "after 3answer 0", "after 99999999999999999999 answer 0"};
    for (const char *line : badLines) {
        EXPECT_FALSE(readBack(QByteArray("# remark\nafter 3 answer 0\n") + line + "\n")) << line;
        EXPECT_NE(error.find("line 3,"), std::string::npos) << error;
    }
}

TEST_F(RequestsOnDisk, AreNotReadFromAFileThatIsTooLarge)
{
    ASSERT_TRUE(readBack("after 3 answer 0\n"));
    ASSERT_TRUE(QFile::resize(path, 16 * 1024 * 1024 + 1));
    EXPECT_FALSE(readRequests(path.toStdString(), error));
    EXPECT_NE(error.find("is larger than"), std::string::npos) << error;
}

TEST_F(RequestsOnDisk, ComeInTheirOrder)
{
    EXPECT_TRUE(readBack("after 3 answer 0\nafter 3 answer 1\n"));
    EXPECT_FALSE(readBack("after 3 answer 0\nafter 2 answer 1\n"));
    EXPECT_NE(error.find("line 2"), std::string::npos) << error;
    EXPECT_NE(error.find("it comes before the line above"), std::string::npos) << error;
}

TEST_F(RequestsOnDisk, ArePlacedByTheClock)
{
    Recording recording;
    recording.header.clockUs = 1000;
    EcRecord load;
    load.kind = EcRecord::Kind::Load;
    recording.records = {load, accessAt(10), accessAt(20), accessAt(30)};
    EXPECT_EQ(placesOf(recording, {5, 1000, 1010, 1019, 1020, 1035}),
        (std::vector<std::uint64_t> {0, 0, 1, 1, 2, 3}));
}

TEST_F(RequestsOnDisk, ArePlacedWithinEqualReads)
{
    Recording recording;
    recording.header.clockUs = 1000;
    recording.records = {accessAt(10), accessAt(100, 11, 200), accessAt(300)};
    EXPECT_EQ(placesOf(recording, {1099, 1100, 1109, 1110, 1155, 1199, 1200, 1299, 1300}),
        (std::vector<std::uint64_t> {1, 2, 2, 3, 7, 11, 12, 12, 13}));
}

TEST_F(RequestsOnDisk, CountTheAccessesOfEarlierFiles)
{
    Recording recording;
    recording.header.clockUs = 1000;
    recording.header.firstAccess = 5000;
    recording.records = {accessAt(10), accessAt(20, 3, 40)};
    EXPECT_EQ(
        placesOf(recording, {1000, 1010, 1030, 1040}), (std::vector<std::uint64_t> {4999, 5000, 5002, 5003}));
}

TEST_F(RequestsOnDisk, NeedARecordingThatGoesOnBeyondThem)
{
    Recording recording;
    recording.header.clockUs = 1000;
    RequestJournal journal;
    EXPECT_TRUE(journal.isCoveredBy(recording));
    journal.note(RequestKind::Answer, "1", 1040);
    EXPECT_FALSE(journal.isCoveredBy(recording));
    recording.records = {accessAt(39)};
    EXPECT_FALSE(journal.isCoveredBy(recording));
    recording.records = {accessAt(20, 3, 40)};
    EXPECT_TRUE(journal.isCoveredBy(recording));
    EXPECT_FALSE(journal.write(folder.filePath("no folder/x").toStdString(), recording));
}

TEST_F(RequestsOnDisk, AreAddedToThoseThatAreThere)
{
    ASSERT_TRUE(readBack("# remark\nafter 2 answer 0\n"));
    Recording recording;
    recording.header.clockUs = 1000;
    recording.records = {accessAt(10), accessAt(20), accessAt(30)};
    RequestJournal journal;
    journal.noteStart(RequestKind::Device, "{}");
    journal.note(RequestKind::Request, "{}", 1030);
    ASSERT_TRUE(journal.write(path.toStdString(), recording));
    const std::vector<RequestRecord> records {
        {2, RequestKind::Answer, "0"}, {2, RequestKind::Device, "{}"}, {3, RequestKind::Request, "{}"}};
    EXPECT_EQ(readRequests(path.toStdString(), error), records) << error;
}

TEST_F(RequestsOnDisk, KeepTheRemarksOfThoseThatAreThere)
{
    ASSERT_TRUE(readBack("# remark\nafter 2 answer 0"));
    RequestJournal journal;
    journal.noteStart(RequestKind::Device, "{}");
    ASSERT_TRUE(journal.write(path.toStdString(), {}));
    QFile file(path);
    ASSERT_TRUE(file.open(QIODevice::ReadOnly));
    EXPECT_EQ(file.readAll(), QByteArray("# remark\nafter 2 answer 0\nafter 2 device {}\n"));
}

TEST_F(RequestsOnDisk, TellWhereTheRecordingEnds)
{
    Recording recording;
    recording.header.clockUs = 1000;
    recording.records = {accessAt(10), accessAt(20)};
    RequestJournal journal;
    for (const std::uint64_t clockUs : {1010, 1030, 1040})
        journal.note(RequestKind::Answer, "1", clockUs);
    const WrittenRequests written = journal.write(path.toStdString(), recording);
    EXPECT_TRUE(written);
    EXPECT_EQ(written.uncovered, 2u);
    QFile file(path);
    ASSERT_TRUE(file.open(QIODevice::ReadOnly));
    EXPECT_EQ(file.readAll(),
        QByteArray("after 1 answer 1\nafter 2 answer 1\nafter 2 answer 1\n"
                   "# the recording ends before the last 2 of these\n"));
}

TEST_F(RequestsOnDisk, AreDividedBetweenRecordings)
{
    Recording recording;
    recording.header.clockUs = 1000;
    recording.records = {accessAt(10)};
    RequestJournal journal;
    journal.noteStart(RequestKind::Device, "{}");
    journal.note(RequestKind::Answer, "1", 1030);
    journal.note(RequestKind::Answer, "0", 1040);
    EXPECT_EQ(journal.write(path.toStdString(), recording, {0, 1040, true}).uncovered, 0u);
    std::vector<RequestRecord> records {{0, RequestKind::Device, "{}"}, {1, RequestKind::Answer, "1"}};
    EXPECT_EQ(readRequests(path.toStdString(), error), records) << error;
    // Without a recording that goes on, what came meanwhile is missing.
    QFile::remove(path);
    EXPECT_EQ(journal.write(path.toStdString(), recording, {0, 1040, false}).uncovered, 1u);
    QFile::remove(path);
    EXPECT_EQ(journal.write(path.toStdString(), recording, {1040}).uncovered, 1u);
    records = {{1, RequestKind::Answer, "0"}};
    EXPECT_EQ(readRequests(path.toStdString(), error), records) << error;
}

TEST_F(RequestsOnDisk, StandBesideThoseThatCannotBeUnderstood)
{
    ASSERT_FALSE(readBack("not a request\n"));
    RequestJournal journal;
    journal.note(RequestKind::Answer, "1", 0);
    for (std::size_t time = 1; time <= 2; ++time) { // the second time they are added
        const WrittenRequests written = journal.write(path.toStdString(), {});
        EXPECT_TRUE(written) << written.problem;
        EXPECT_EQ(written.path, folder.filePath("ec-2.requests").toStdString());
        EXPECT_NE(written.objection.find("line 1, cannot be understood"), std::string::npos);
        const auto records = readRequests(written.path, error);
        EXPECT_EQ(records.value_or(std::vector<RequestRecord>()).size(), time) << error;
    }
}

TEST_F(RequestsOnDisk, StandBesideAFolderOfTheirName)
{
    ASSERT_TRUE(QDir().mkdir(path));
    const WrittenRequests written = RequestJournal().write(path.toStdString(), {});
    EXPECT_TRUE(written) << written.problem;
    EXPECT_EQ(written.path, folder.filePath("ec-2.requests").toStdString());
    EXPECT_EQ(QDir(folder.path()).entryList(QDir::Files), QStringList("ec-2.requests"));
}

TEST_F(RequestsOnDisk, SayWhyTheyAreNotWritten)
{
    ASSERT_TRUE(QDir().mkdir(path + ".part"));
    RequestJournal journal;
    const WrittenRequests written = journal.write(path.toStdString(), {});
    EXPECT_NE(written.problem.find("ec.requests\" cannot be written"), std::string::npos) << written.problem;
    EXPECT_FALSE(QFile::exists(path));
    const WrittenRequests nowhere = journal.write(folder.filePath("no folder/x").toStdString(), {});
    EXPECT_NE(nowhere.problem.find("x\" cannot be written"), std::string::npos) << nowhere.problem;
}

TEST(RequestsPath, StandsBesideTheRecording)
{
    EXPECT_EQ(requestsPathOf("/a/ec-1.recording"), "/a/ec-1.requests");
    EXPECT_EQ(requestsPathOf("/a/other"), "/a/other.requests");
}
