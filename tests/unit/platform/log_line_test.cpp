#include "platform/log_line.h"

#include "support/printing.h"

#include <gtest/gtest.h>

using tarnPlatform::logLine;

namespace {

const QDateTime someTime(QDate(2026, 11, 21), QTime(9, 5, 7, 60));

QByteArray lineOf(const QString &text, QtMsgType type = QtDebugMsg)
{
    return logLine(someTime, type, reinterpret_cast<Qt::HANDLE>(0x7f2a), text);
}

QByteArray textOf(const QString &text)
{
    const QByteArray before = "2026-11-21 09:05:07.060 debug 0x7f2a ";
    const QByteArray line = lineOf(text);
    EXPECT_TRUE(line.startsWith(before)) << line.toStdString();
    EXPECT_TRUE(line.endsWith('\n'));
    return line.sliced(before.size()).chopped(1);
}

} // namespace

TEST(LogLine, HasTimeLevelThreadAndText)
{
    EXPECT_EQ(lineOf("is connection!"), "2026-11-21 09:05:07.060 debug 0x7f2a is connection!\n");
    EXPECT_EQ(lineOf("a", QtInfoMsg), "2026-11-21 09:05:07.060 info 0x7f2a a\n");
    EXPECT_EQ(lineOf("a", QtWarningMsg), "2026-11-21 09:05:07.060 warning 0x7f2a a\n");
    EXPECT_EQ(lineOf("a", QtCriticalMsg), "2026-11-21 09:05:07.060 critical 0x7f2a a\n");
    EXPECT_EQ(lineOf("", QtFatalMsg), "2026-11-21 09:05:07.060 fatal 0x7f2a \n");
}

TEST(LogLine, KeepsWhatCanBeRead)
{
    EXPECT_EQ(textOf(R"(a "quoted" C:\path, 100 %)"), R"(a "quoted" C:\path, 100 %)");
    EXPECT_EQ(textOf(QStringLiteral("Größe 大 \U0001F50B")), QStringLiteral("Größe 大 \U0001F50B").toUtf8());
}

TEST(LogLine, EscapesWhatCouldForgeOrHideALine)
{
    EXPECT_EQ(textOf("a\nb\r\nc\td"), R"(a\nb\r\nc\u0009d)");
    EXPECT_EQ(textOf(QString(QChar(u'\0')) + u'\x1b' + u'\x7f' + u'\x85'), R"(\u0000\u001b\u007f\u0085)");
    EXPECT_EQ(textOf(QStringLiteral("\u2028\u2029\u202e\u2066\ufeff")), R"(\u2028\u2029\u202e\u2066\ufeff)");
    EXPECT_EQ(textOf(QStringLiteral("\U000E0041")), R"(\ue0041)"); // a letter that no screen shows
    EXPECT_EQ(
        textOf(QString(QChar(0xD800)) + u'a'), QStringLiteral("\uFFFDa").toUtf8()); // half of a character
}

TEST(LogLine, IsCutAtFourKibibytesBetweenCharacters)
{
    const QByteArray whole = lineOf(QString(4096 - 37 - 1, u'x'));
    EXPECT_EQ(whole.size(), 4096);
    EXPECT_TRUE(whole.endsWith("xx\n"));
    for (const QString &character : {QStringLiteral("x"), QStringLiteral("ü"), QStringLiteral("大"),
             QStringLiteral("\U0001F50B"), QStringLiteral("\n"), QStringLiteral("\u2028")}) {
        const QByteArray line = lineOf(character.repeated(5000));
        EXPECT_LE(line.size(), 4096);
        EXPECT_GT(line.size(), 4096 - 3 - 7);
        EXPECT_TRUE(line.endsWith("\u2026\n"));
        EXPECT_EQ(QString::fromUtf8(line).toUtf8(), line);
        EXPECT_EQ(line.count('\n'), 1);
    }
}
