#include "support/seen_texts.h"

#include <QByteArray>
#include <QCoreApplication>
#include <QDir>
#include <QFile>
#include <QMutex>
#include <QSet>

#include <gtest/gtest.h>

namespace tarnTest {
namespace {

const QString &recordingFolder()
{
    static const QString folder = qEnvironmentVariable("TARN_SEEN_TEXTS");
    return folder;
}

struct SeenTexts
{
    QMutex mutex;
    QSet<QByteArray> lines; // "debug\tthe text"
};

// Never destroyed, because lines may still be logged at the end of the process.
SeenTexts &seenTexts()
{
    static auto *texts = new SeenTexts;
    return *texts;
}

// One file per process; a number that the system uses again continues the file.
QString recordingFile()
{
    return QDir(recordingFolder()).filePath(QString::number(QCoreApplication::applicationPid()));
}

} // namespace

void noteSeen(const char *kind, const QString &text)
{
    if (recordingFolder().isEmpty())
        return;
    SeenTexts &seen = seenTexts();
    const QByteArray line = kind + QByteArray(1, '\t') + text.toUtf8();
    const QMutexLocker locker(&seen.mutex);
    seen.lines.insert(line);
}

void noteSeenLines(const char *kind, const QString &lines)
{
    if (recordingFolder().isEmpty())
        return;
    for (const QString &line : lines.split(QLatin1Char('\n')))
        noteSeen(kind, line);
}

void noteSeenFile(const QString &name, const QByteArray &content)
{
    if (recordingFolder().isEmpty())
        return;
    const QString plainName = QDir::cleanPath(name);
    noteSeen("file", plainName);
    for (const QString &line : QString::fromUtf8(content).split(QLatin1Char('\n')))
        noteSeen("file", plainName + QStringLiteral(": ") + line);
}

void noteSeenRun(const std::vector<std::string> &words, int exitCode, const QString &out, const QString &err)
{
    const QString option = words.size() < 2 ? QStringLiteral("(none)") : QString::fromStdString(words[1]);
    noteSeen("exit", QStringLiteral("%1 %2").arg(option).arg(exitCode));
    noteSeenLines("out", out);
    noteSeenLines("err", err);
}

void writeSeenTexts()
{
    const ::testing::TestInfo *test = ::testing::UnitTest::GetInstance()->current_test_info();
    if (recordingFolder().isEmpty() || !test)
        return;
    SeenTexts &seen = seenTexts();
    const QMutexLocker locker(&seen.mutex);
    QByteArray record;
    for (const QByteArray &line : std::as_const(seen.lines))
        record += line + '\n';
    seen.lines.clear();
    if (record.isEmpty())
        return;
    record.prepend(QByteArray("test\t") + test->test_suite_name() + '.' + test->name() + '\n');
    QFile file(recordingFile());
    if (!file.open(QIODevice::Append) || file.write(record) != record.size())
        qFatal("cannot record the seen texts in %s", qPrintable(file.fileName()));
}

} // namespace tarnTest
