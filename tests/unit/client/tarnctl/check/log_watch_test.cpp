#include "client/tarnctl/check/log_watch.h"

#include "support/printing.h"

#include <QFile>
#include <QTemporaryDir>

#include <gtest/gtest.h>

using tarnctl::LogWatch;

namespace {

class LogWatchTest : public ::testing::Test
{
protected:
    QString add(const QString &level, const QString &text)
    {
        const QString line = QStringLiteral("2026-11-21 11:00:00.%1 %2 0x7f2a %3")
                                 .arg(++milliseconds, 3, 10, QLatin1Char('0'))
                                 .arg(level, text);
        QFile file(folder.filePath("TarnService.log"));
        EXPECT_TRUE(file.open(QIODevice::Append));
        file.write(line.toUtf8() + '\n');
        return line;
    }

    QTemporaryDir folder;
    int milliseconds = 0;
};

} // namespace

TEST_F(LogWatchTest, QuotesWarningsThatAreNew)
{
    add("warning", "readEeprom failed");
    LogWatch log(folder.path());
    EXPECT_TRUE(log.newTellingLines().isEmpty());
    add("debug", "send");
    const QString warning = add("warning", "read eeprom error");
    const QString fatal = add("fatal", "Cannot load library");
    EXPECT_EQ(log.newTellingLines(), QStringList({warning, fatal}));
    EXPECT_TRUE(log.newTellingLines().isEmpty());
}

TEST_F(LogWatchTest, QuotesWhatTellsOfAnEcThatDoesNotAnswer)
{
    LogWatch log(folder.path());
    const QString line = add("debug", "ec reader not normal, begin to reload dll.");
    EXPECT_EQ(log.newTellingLines(), QStringList(line + " (1 times)"));
}

TEST_F(LogWatchTest, QuotesAWaitThatHasNoEnd)
{
    LogWatch log(folder.path());
    for (int look = 1; look < 20; ++look)
        add("debug", "read ecRGBCmdDataDock from xdata until it is 0.");
    EXPECT_TRUE(log.newTellingLines().isEmpty());
    for (int look = 1; look <= 20; ++look)
        add("debug", "read ecRGBCmdDataDock from xdata until it is 0.");
    EXPECT_EQ(log.newTellingLines().size(), 1);
}

TEST_F(LogWatchTest, GoesOnInANewFile)
{
    add("debug", "send");
    LogWatch log(folder.path());
    ASSERT_TRUE(QFile::remove(folder.filePath("TarnService.log")));
    const QString warning = add("warning", "readEeprom failed");
    EXPECT_EQ(log.newTellingLines(), QStringList(warning));
}
