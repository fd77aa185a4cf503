#include "device/recording/ec_recorder.h"

#include "support/printing.h"
#include "support/resource_limit.h"
#include "support/run_folder.h"

#include <QDir>
#include <QFile>
#include <QTemporaryDir>
#include <QThread>

#include <gtest/gtest.h>

using namespace tarnRecording;

namespace {

// What the library gives: each answer once, then zeros.
QList<qint16> answers;
QStringList taken;

void realOut(quint16 port, qint16 value)
{
    taken << QString("%1=%2").arg(port, 0, 16).arg(value);
}

qint16 realInp(quint16)
{
    return answers.isEmpty() ? 0 : answers.takeFirst();
}

// The functions that a driver gets which is recorded.
struct TappedPorts
{
    explicit TappedPorts(EcRecorder &recorder) { recorder.tap(out, inp); }

    EcRecorder::Out32 out = realOut;
    EcRecorder::Inp32 inp = realInp;
};

class EcRecorderTest : public ::testing::Test
{
protected:
    EcRecorderTest()
    {
        answers.clear();
        taken.clear();
        recorder.tap(out, inp);
    }

    // Without times and checksums; the header is shown by its first word only.
    [[nodiscard]] QStringList lines()
    {
        recorder.flush();
        QStringList found;
        for (const QString &name :
            QDir(folder.path()).entryList({"ec-*.recording"}, QDir::Files, QDir::Name)) {
            QFile file(folder.filePath(name));
            EXPECT_TRUE(file.open(QIODevice::ReadOnly));
            for (const QByteArray &line : file.readAll().split('\n')) {
                if (!line.isEmpty())
                    found << shown(line);
            }
        }
        return found;
    }

    [[nodiscard]] static QString shown(const QByteArray &line)
    {
        const std::string_view text(line.constData(), static_cast<std::size_t>(line.size()));
        if (headerOf(text))
            return "header";
        const auto record = recordOf(text);
        if (!record)
            return "damaged: " + line;
        QStringList words = QString::fromLatin1(line).section(" *", 0, 0).split(' ');
        words.removeAt(words.size() - (record->count > 1 ? 4 : 2)); // the time of the first
        if (record->count > 1)
            words.removeLast();
        return words.join(' ');
    }

    QTemporaryDir folder;
    // Nothing is written by itself, so that reads are folded however long they take.
    EcRecorder recorder {std::make_unique<RecordingFile>(folder.path()), std::chrono::hours(1)};
    EcRecorder::Out32 out = realOut;
    EcRecorder::Inp32 inp = realInp;
};

} // namespace

TEST_F(EcRecorderTest, HasWhatWasAskedAndAnswered)
{
    answers = {0x15, -1};
    out(0x6c, 0x80);
    EXPECT_EQ(inp(0x6c), 0x15);
    EXPECT_EQ(inp(0x68), -1);
    out(0x68, -2);
    EXPECT_EQ(taken, QStringList({"6c=128", "68=-2"}));
    EXPECT_EQ(lines(),
        QStringList({"header", "out 006c 0080 1", "in 006c 0015 1", "in 0068 ffff 1", "out 0068 fffe 1"}));
}

TEST_F(EcRecorderTest, FoldsEqualReadsOfOneThread)
{
    answers = {1, 1, 1, 2, 1};
    for (int read = 0; read < 5; ++read)
        inp(0x6c);
    out(0x68, 7);
    out(0x68, 7);
    EXPECT_EQ(lines(),
        QStringList({"header", "in 006c 0001 1 x3", "in 006c 0002 1", "in 006c 0001 1", "out 0068 0007 1",
            "out 0068 0007 1"}));
}

TEST_F(EcRecorderTest, TellsThreadsApart)
{
    inp(0x6c);
    const std::unique_ptr<QThread> other(QThread::create([this] { inp(0x6c); }));
    other->start();
    other->wait();
    inp(0x6c);
    EXPECT_EQ(lines(), QStringList({"header", "in 006c 0000 1", "in 006c 0000 2", "in 006c 0000 1"}));
}

TEST_F(EcRecorderTest, HasLoadsAndUnloadsAtOnce)
{
    inp(0x6c);
    recorder.noteUnload();
    recorder.noteLoad(EcRecord::LoadResult::Failed);
    QFile file(folder.filePath(QDir(folder.path()).entryList({"ec-*"}).value(0)));
    ASSERT_TRUE(file.open(QIODevice::ReadOnly));
    EXPECT_TRUE(file.readAll().contains("\nload failed "));
    EXPECT_EQ(lines(), QStringList({"header", "in 006c 0000 1", "unload 1", "load failed 1"}));
}

TEST_F(EcRecorderTest, WritesWithoutBeingAsked)
{
    EcRecorder writing(std::make_unique<RecordingFile>(folder.path()));
    const TappedPorts writingPorts(writing);
    writingPorts.inp(0x6c);
    QThread::msleep(2 * static_cast<unsigned long>(EcRecorder::usualPause.count()));
    writingPorts.out(0x6c, 1);
    QFile file(folder.filePath(QDir(folder.path()).entryList({"ec-*"}).value(0)));
    ASSERT_TRUE(file.open(QIODevice::ReadOnly));
    EXPECT_TRUE(file.readAll().contains("\nout 006c 0001 "));
}

TEST_F(EcRecorderTest, IsFlushedAtTheEndWhenNoThreadIsHeldUp)
{
    inp(0x6c);
    recorder.flushWithin(std::chrono::milliseconds(0));
    QFile file(folder.filePath(QDir(folder.path()).entryList({"ec-*"}).value(0)));
    ASSERT_TRUE(file.open(QIODevice::ReadOnly));
    EXPECT_TRUE(file.readAll().contains("\nin 006c 0000 "));
}

TEST_F(EcRecorderTest, KeepsTheLastTwoFiles)
{
    constexpr qint64 mostBytes = 2000;
    EcRecorder small(std::make_unique<RecordingFile>(folder.path(), mostBytes));
    const TappedPorts smallPorts(small);
    for (int value = 0; value < 500; ++value) {
        smallPorts.out(0x68, static_cast<qint16>(value));
        if (value % 25 == 0)
            QThread::msleep(2); // the files are named by the millisecond
    }
    small.flush();
    const QFileInfoList files = QDir(folder.path()).entryInfoList({"ec-*"}, QDir::Files, QDir::Name);
    ASSERT_EQ(files.size(), 2);
    for (const QFileInfo &file : files)
        EXPECT_LE(file.size(), mostBytes);
    QFile last(files.last().filePath());
    ASSERT_TRUE(last.open(QIODevice::ReadOnly));
    const QByteArray first = last.readLine().trimmed();
    const auto header = headerOf({first.constData(), static_cast<std::size_t>(first.size())});
    ASSERT_TRUE(header);
    const QByteArray second = last.readLine().trimmed();
    const auto access = recordOf({second.constData(), static_cast<std::size_t>(second.size())});
    ASSERT_TRUE(access);
    EXPECT_EQ(header->firstAccess, access->value + 1u); // the values count the accesses
}

TEST_F(EcRecorderTest, RemovesOnlyItsOwnOldFilesAndNeverTheNewOne)
{
    const QStringList others {"ec-20990101-000000-000.recording", "ec-20200101-000000-000.recording",
        "ec-mine.recording", "ec-20200101-000000-000.requests"};
    for (const QString &name : others) {
        QFile file(folder.filePath(name));
        ASSERT_TRUE(file.open(QIODevice::WriteOnly));
    }
    out(0x6c, 1);
    recorder.flush();
    QStringList names = QDir(folder.path()).entryList({"ec-*"}, QDir::Files, QDir::Name);
    EXPECT_FALSE(
        names.contains(others[1])); // the clock was ahead once: the one of then stays beside the new one
    EXPECT_EQ(names.removeAll(others[0]) + names.removeAll(others[2]) + names.removeAll(others[3]), 3);
    ASSERT_EQ(names.size(), 1);
    EXPECT_GT(QFileInfo(folder.filePath(names.first())).size(), 0);
}

TEST_F(EcRecorderTest, NeverFails)
{
    EcRecorder nowhere(std::make_unique<RecordingFile>(folder.filePath("no such folder")));
    const TappedPorts nowherePorts(nowhere);
    nowherePorts.out(0x6c, 1);
    nowhere.flush();
    EXPECT_EQ(taken, QStringList("6c=1"));
}

TEST_F(EcRecorderTest, LeavesAFullDiskAsItIs)
{
    out(0x6c, 1);
    recorder.flush();
    const QStringList before = QDir(folder.path()).entryList({"ec-*"});
    {
        const tarnTest::FileSizeLimit limit(20); // bytes, less than a header
        EcRecorder none(std::make_unique<RecordingFile>(folder.path()));
        const TappedPorts nonePorts(none);
        nonePorts.out(0x6c, 2);
        none.flush();
    }
    EXPECT_EQ(QDir(folder.path()).entryList({"ec-*"}), before);
}

TEST_F(EcRecorderTest, EndsWhereTheDiskIsFull)
{
    constexpr qint64 mostBytes = 2000;
    const tarnTest::FileSizeLimit limit(1000); // before the file has the size at which the next one begins
    EcRecorder cut(std::make_unique<RecordingFile>(folder.path(), mostBytes));
    const TappedPorts cutPorts(cut);
    for (int value = 0; value < 500; ++value) {
        cutPorts.out(0x68, static_cast<qint16>(value));
        cut.flush();
    }
    const QFileInfoList files = QDir(folder.path()).entryInfoList({"ec-*"}, QDir::Files);
    ASSERT_EQ(files.size(), 1);
    EXPECT_EQ(files.first().size(), 1000);
    EXPECT_EQ(taken.size(), 500);
}
