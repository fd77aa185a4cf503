#include "platform/log_file.h"

#include "support/pipe_peer.h"
#include "support/printing.h"

#include <QDir>
#include <QElapsedTimer>
#include <QRegularExpression>
#include <QTemporaryDir>
#include <QThread>

#include <gtest/gtest.h>

#include <memory>
#include <vector>

using tarnPlatform::LogFile;

namespace {

constexpr qint64 mib = 1024 * 1024;
constexpr qint64 lineBytes = 4096; // of a line that is cut
constexpr qint64 linesOfAFile = 2 * mib / lineBytes - 1; // of that length

QSet<QString> held; // names of files that another program keeps from being renamed or removed

bool isHeld(const QString &path)
{
    return held.contains(path.section(QLatin1Char('/'), -1));
}

// Renaming and removing as where a program may hold a file.
const LogFile::Moves movesWithHolders {
    [](const QString &from, const QString &to) { return !isHeld(from) && QFile::rename(from, to); },
    [](const QString &name) { return !isHeld(name) && QFile::remove(name); },
};

class LogFileTest : public ::testing::Test
{
protected:
    LogFileTest() { held.clear(); }

    [[nodiscard]] QString path(const QString &name) const { return folder.filePath("log/" + name); }

    [[nodiscard]] QByteArray content(const QString &name = "TarnService.log") const
    {
        QFile file(path(name));
        return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray("(no file)");
    }

    // What was logged, without time and thread.
    [[nodiscard]] QStringList texts(const QString &name = "TarnService.log") const
    {
        static const QRegularExpression start(
            "^\\d{4}-\\d\\d-\\d\\d \\d\\d:\\d\\d:\\d\\d\\.\\d{3} (\\w+) 0x[0-9a-f]+ ");
        QStringList found;
        for (const QString &line : QString::fromUtf8(content(name)).split('\n', Qt::SkipEmptyParts)) {
            const auto match = start.match(line);
            found << (match.hasMatch() ? match.captured(1) + ": " + line.sliced(match.capturedLength())
                                       : line);
        }
        return found;
    }

    [[nodiscard]] QStringList files() const { return QDir(path({})).entryList(QDir::Files, QDir::Name); }

    [[nodiscard]] qint64 bytesOfAll() const
    {
        qint64 sum = 0;
        for (const QFileInfo &file : QDir(path({})).entryInfoList(QDir::Files))
            sum += file.size();
        return sum;
    }

    // Of a line with the largest size.
    [[nodiscard]] static QString longText(const QString &word) { return word + QString(lineBytes, u'x'); }

    // Writes a line that begins with the word, in a new file if the current one is full, and fills the file,
    // as another process could: that is quicker.
    void fill(LogFile &filled, const QString &word)
    {
        filled.write(QtDebugMsg, longText(word));
        QFile file(path("TarnService.log"));
        ASSERT_TRUE(file.open(QIODevice::Append));
        const qint64 room = 2 * mib - 1 - file.size();
        const QByteArray line = QByteArray(lineBytes - 1, 'x') + '\n';
        ASSERT_EQ(file.write(line.repeated(room / lineBytes)), room / lineBytes * lineBytes);
    }

    // The word that a line of the file begins with.
    [[nodiscard]] QString wordIn(const QString &name, int line = 0) const
    {
        return texts(name).value(line).remove(QRegularExpression("^\\w+: |x+\u2026?$"));
    }

    QTemporaryDir folder;
    std::unique_ptr<LogFile> log = std::make_unique<LogFile>(folder.filePath("log"), movesWithHolders);
};

} // namespace

TEST_F(LogFileTest, MakesNothingBeforeTheFirstLine)
{
    EXPECT_FALSE(QFileInfo::exists(folder.filePath("log")));
    log->write(QtWarningMsg, "first");
    EXPECT_EQ(texts(), QStringList("warning: first"));
    EXPECT_EQ(files(), QStringList("TarnService.log"));
}

TEST_F(LogFileTest, HasEachLineWhenItsCallReturns)
{
    for (const char *text : {"a", "b", "c"}) {
        log->write(QtDebugMsg, text);
        EXPECT_EQ(texts().last(), QString("debug: ") + text);
    }
}

TEST_F(LogFileTest, TellsTheThreadAndTheLocalTime)
{
    const QDateTime before = QDateTime::currentDateTime();
    log->write(QtDebugMsg, "a");
    const QList<QByteArray> words = content().split(' ');
    ASSERT_EQ(words.size(), 5);
    const QDateTime written = QDateTime::fromString(words[0] + ' ' + words[1], "yyyy-MM-dd HH:mm:ss.zzz");
    EXPECT_LE(before.addMSecs(-1), written);
    EXPECT_LE(written, QDateTime::currentDateTime());
    EXPECT_EQ(words[3], "0x" + QByteArray::number(quintptr(QThread::currentThreadId()), 16));
}

TEST_F(LogFileTest, GoesOnInTheFileOfTheRunBefore)
{
    log->write(QtDebugMsg, "before");
    log = std::make_unique<LogFile>(folder.filePath("log"));
    log->write(QtDebugMsg, "after");
    EXPECT_EQ(texts(), QStringList({"debug: before", "debug: after"}));
}

TEST_F(LogFileTest, KeepsFiveFilesOfTwoMebibytes)
{
    for (const char *word : {"a", "b", "c", "d", "e", "f"})
        fill(*log, word);
    log->write(QtDebugMsg, longText("last"));
    EXPECT_EQ(files(),
        QStringList({"TarnService.1.log", "TarnService.2.log", "TarnService.3.log", "TarnService.4.log",
            "TarnService.log"}));
    EXPECT_EQ(texts().size(), 1);
    EXPECT_EQ(wordIn("TarnService.log"), "last");
    EXPECT_EQ(wordIn("TarnService.1.log"), "f");
    EXPECT_EQ(wordIn("TarnService.2.log"), "e");
    EXPECT_EQ(wordIn("TarnService.3.log"), "d");
    EXPECT_EQ(wordIn("TarnService.4.log"), "c");
    for (const char *name : {"TarnService.1.log", "TarnService.4.log"})
        EXPECT_EQ(content(name).size(), linesOfAFile * lineBytes);
}

TEST_F(LogFileTest, NeverTakesMoreThanTenMebibytes)
{
    const QString garbage(5000, u'x');
    qint64 most = 0;
    for (int line = 0; line < 30 * mib / 5000; ++line) {
        log->write(QtDebugMsg, garbage);
        if (line % 100 == 0)
            most = std::max(most, bytesOfAll());
    }
    EXPECT_LE(most, 10 * mib);
    EXPECT_GT(most, 9 * mib);
    EXPECT_LE(bytesOfAll(), 10 * mib);
}

TEST_F(LogFileTest, GoesRoundAFileThatAViewerHolds)
{
    for (int heldNumber = 1; heldNumber <= 4; ++heldNumber) {
        held.clear();
        log.reset();
        QDir(path({})).removeRecursively();
        log = std::make_unique<LogFile>(folder.filePath("log"), movesWithHolders);
        for (const char *word : {"a", "b", "c", "d", "e"})
            fill(*log, word);
        // Now d is in number 1, c in 2, b in 3, a in 4.
        const QString heldName = LogFile::fileName(heldNumber);
        const QString kept = wordIn(heldName);
        held = {heldName};
        for (const char *word : {"f", "g", "h"})
            fill(*log, word);
        log->write(QtDebugMsg, longText("last"));
        QStringList words;
        for (int number = 0; number <= 4; ++number)
            words << wordIn(LogFile::fileName(number));
        EXPECT_EQ(words.takeAt(heldNumber), kept);
        EXPECT_EQ(words, QStringList({"last", "h", "g", "f"})) << heldNumber;
        EXPECT_LE(bytesOfAll(), 10 * mib);
    }
}

TEST_F(LogFileTest, GoesRoundAllFilesThatViewersHold)
{
    for (const char *word : {"a", "b", "c", "d", "e"})
        fill(*log, word);
    held = {"TarnService.1.log", "TarnService.2.log", "TarnService.3.log", "TarnService.4.log"};
    log->write(QtDebugMsg, longText("f"));
    EXPECT_EQ(texts().size(), 1);
    EXPECT_EQ(wordIn("TarnService.log"), "f");
    EXPECT_EQ(wordIn("TarnService.1.log"), "d");
    EXPECT_LE(bytesOfAll(), 10 * mib);
}

TEST_F(LogFileTest, CopiesTheCurrentFileWhenItCannotBeMoved)
{
    fill(*log, "a");
    fill(*log, "b");
    held = {"TarnService.log"};
    fill(*log, "c");
    log->write(QtDebugMsg, longText("d"));
    EXPECT_EQ(texts().size(), 1);
    EXPECT_EQ(wordIn("TarnService.log"), "d");
    EXPECT_EQ(wordIn("TarnService.1.log"), "c");
    EXPECT_EQ(wordIn("TarnService.2.log"), "b");
    EXPECT_EQ(wordIn("TarnService.3.log"), "a");
}

// Windows keeps a file from being renamed while a program reads it that has not permitted that.
TEST_F(LogFileTest, LosesNothingWhileAViewerReadsIt)
{
    log = std::make_unique<LogFile>(folder.filePath("log"));
    fill(*log, "a");
    QFile viewer(path("TarnService.log"));
    ASSERT_TRUE(viewer.open(QIODevice::ReadOnly));
    fill(*log, "b");
    QFile other(path("TarnService.1.log"));
    ASSERT_TRUE(other.open(QIODevice::ReadOnly));
    fill(*log, "c");
    log->write(QtDebugMsg, longText("d"));
    QStringList words;
    for (const QString &name : files())
        words << wordIn(name);
    words.sort();
    EXPECT_EQ(words, QStringList({"a", "b", "c", "d"}));
    EXPECT_EQ(wordIn("TarnService.log"), "d");
}

TEST_F(LogFileTest, GoesOnInANewFileWhenSomebodyRemovesIt)
{
    log = std::make_unique<LogFile>(folder.filePath("log"));
    log->write(QtDebugMsg, "before");
    ASSERT_TRUE(QFile::remove(path("TarnService.log")));
    QThread::msleep(1001); // it is opened anew each second
    log->write(QtDebugMsg, "after");
    EXPECT_EQ(texts(), QStringList("debug: after"));
}

TEST_F(LogFileTest, CountsWhatCouldNotBeWrittenAndSaysSoLater)
{
    QFile inTheWay(folder.filePath("log"));
    ASSERT_TRUE(inTheWay.open(QIODevice::WriteOnly));
    for (int line = 0; line < 5; ++line)
        log->write(QtDebugMsg, "lost");
    inTheWay.remove();
    QThread::msleep(1001);
    log->write(QtDebugMsg, "after");
    log->write(QtDebugMsg, "more");
    EXPECT_EQ(texts(), QStringList({"warning: 5 lines are missing here", "debug: after", "debug: more"}));
}

TEST_F(LogFileTest, AlwaysTriesToWriteWhatMatters)
{
    for (const QtMsgType type : {QtWarningMsg, QtCriticalMsg, QtFatalMsg}) {
        log.reset();
        QDir(path({})).removeRecursively();
        log = std::make_unique<LogFile>(folder.filePath("log"));
        QFile inTheWay(folder.filePath("log"));
        ASSERT_TRUE(inTheWay.open(QIODevice::WriteOnly));
        log->write(QtDebugMsg, "lost");
        inTheWay.remove();
        log->write(type, "matters");
        EXPECT_EQ(texts().value(0), "warning: 1 lines are missing here");
        EXPECT_TRUE(texts().value(1).endsWith(": matters"));
    }
}

TEST_F(LogFileTest, TwoProcessesDoNotWriteOverEachOthersLines)
{
    LogFile other(folder.filePath("log"));
    log->write(QtDebugMsg, "1");
    other.write(QtDebugMsg, "2");
    log->write(QtDebugMsg, "3");
    fill(other, "a");
    other.write(QtDebugMsg, longText("4"));
    log->write(QtDebugMsg, longText("5")); // its file has been put aside meanwhile, and is full
    EXPECT_EQ(texts().size(), 2);
    EXPECT_EQ(wordIn("TarnService.log", 0), "4");
    EXPECT_EQ(wordIn("TarnService.log", 1), "5");
    EXPECT_EQ(texts("TarnService.1.log").mid(0, 3), QStringList({"debug: 1", "debug: 2", "debug: 3"}));
    EXPECT_LE(content("TarnService.1.log").size(), 2 * mib);
}

TEST_F(LogFileTest, TakesWholeLinesFromManyThreads)
{
    constexpr int threads = 8;
    constexpr int lines = 500;
    std::vector<std::unique_ptr<QThread>> all;
    for (int number = 0; number < threads; ++number) {
        all.emplace_back(QThread::create([this, number] {
            for (int line = 0; line < lines; ++line)
                log->write(QtDebugMsg, QString("%1 %2").arg(number).arg(line));
        }));
        all.back()->start();
    }
    for (const auto &thread : all)
        thread->wait();
    const QStringList found = texts();
    EXPECT_EQ(found.size(), threads * lines);
    for (int number = 0; number < threads; ++number) {
        QStringList expected;
        for (int line = 0; line < lines; ++line)
            expected << QString("debug: %1 %2").arg(number).arg(line);
        EXPECT_EQ(found.filter(QRegularExpression(QString("^debug: %1 ").arg(number))), expected);
    }
}
