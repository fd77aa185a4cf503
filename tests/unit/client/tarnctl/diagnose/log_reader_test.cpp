#include "client/tarnctl/diagnose/log_reader.h"

#include "support/printing.h"

#include <QDir>
#include <QFile>
#include <QTemporaryDir>

#include <gtest/gtest.h>

using namespace tarnctl;

namespace {

class LogReaderTest : public ::testing::Test
{
protected:
    void write(const QString &name, const QByteArray &content, int secondsAgo) const
    {
        QFile file(folder.filePath(name));
        ASSERT_TRUE(file.open(QIODevice::WriteOnly));
        file.write(content);
        file.flush();
        ASSERT_TRUE(file.setFileTime(
            QDateTime::currentDateTime().addSecs(-secondsAgo), QFileDevice::FileModificationTime));
    }

    QTemporaryDir folder;
};

} // namespace

TEST_F(LogReaderTest, ReadsTheFilesInTheOrderOfTheirLines)
{
    write("TarnService.log", "six\nseven\n", 9); // the clock was set back meanwhile
    write("TarnService.1.log", "one\ntwo\n", 4); // was held open, so the others went round it
    write("TarnService.2.log", "five\n", 2);
    write("TarnService.3.log", "three\nfour\n", 3);
    write("TarnService.5.log", "not of the service\n", 1);
    write("other.log", "not of the service\n", 2);
    const LogReader log(folder.path());
    EXPECT_TRUE(log.hasFiles());
    EXPECT_EQ(log.lastLines(100), QStringList({"one", "two", "three", "four", "five", "six", "seven"}));
    EXPECT_EQ(log.lastLines(3), QStringList({"five", "six", "seven"}));
    EXPECT_EQ(log.problems(), QStringList());
}

TEST_F(LogReaderTest, FindsNothingWhereNothingIs)
{
    for (const QString &path : {folder.path(), folder.filePath("nowhere")}) {
        const LogReader log(path);
        EXPECT_FALSE(log.hasFiles());
        EXPECT_EQ(log.lastLines(10), QStringList());
    }
}

TEST(LogEntryTest, IsTakenApart)
{
    const auto entry = logEntry("2026-11-21 10:40:17.860 warning 0x7f2a some  text ");
    ASSERT_TRUE(entry);
    EXPECT_EQ(entry->time, QDateTime(QDate(2026, 11, 21), QTime(10, 40, 17, 860)));
    EXPECT_EQ(entry->level, "warning");
    EXPECT_EQ(entry->text, "some  text ");
    for (const char *line :
        {"", "text", "2026-11-21 10:40:17 warning 0x7f2a text", "2026-11-21 10:40:17.860 text"})
        EXPECT_FALSE(logEntry(line)) << line;
}

TEST(LogEntryTest, TellsTheLastStart)
{
    const QString first = "2026-11-21 10:00:00.000 debug 0x1 Tarn Service is running as  \"1.39\" !";
    const QString second = "2026-11-21 11:00:00.000 debug 0x1 Tarn Service is running as  \"1.40\" !";
    EXPECT_FALSE(lastStart({}));
    EXPECT_FALSE(lastStart(
        {"2026-11-21 11:00:00.000 debug 0x1 send{\"x\":\"Tarn Service is running as  \\\"1.40\\\" !\"}"}));
    const auto start = lastStart({first, second, "2026-11-21 12:00:00.000 debug 0x1 other"});
    ASSERT_TRUE(start);
    EXPECT_EQ(start->linesSince, 1);
    EXPECT_EQ(start->version, "1.40");
    EXPECT_EQ(start->time, QDateTime(QDate(2026, 11, 21), QTime(11, 0)));
}
