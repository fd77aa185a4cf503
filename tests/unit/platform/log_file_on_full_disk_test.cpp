#include "platform/log_file.h"

#include <QDir>
#include <QFile>
#include <QTemporaryDir>

#include <gtest/gtest.h>

// Linux has a device that is always full; the other tests of the log file run on Windows as well.
TEST(LogFileOnFullDisk, CountsItsLinesAndGoesOnLater)
{
    const QTemporaryDir folder;
    const QString path = folder.filePath("TarnService.log");
    ASSERT_TRUE(QFile::link("/dev/full", path));
    tarnPlatform::LogFile log(folder.path());
    log.write(QtWarningMsg, "lost");
    log.write(QtWarningMsg, "lost");
    ASSERT_TRUE(QFile::remove(path));
    log.write(QtWarningMsg, "after");
    QFile file(path);
    ASSERT_TRUE(file.open(QIODevice::ReadOnly));
    const QList<QByteArray> lines = file.readAll().split('\n');
    ASSERT_EQ(lines.size(), 3);
    EXPECT_TRUE(lines.at(0).endsWith(" 2 lines are missing here"));
    EXPECT_TRUE(lines.at(1).endsWith(" after"));
    EXPECT_EQ(lines.at(2), "");
}
