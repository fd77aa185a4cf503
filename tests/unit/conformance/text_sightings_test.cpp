#include "conformance/sightings.h"
#include "support/printing.h"

#include <gtest/gtest.h>

using tarnTest::readCatalogueLines;
using tarnTest::Sightings;
using tarnTest::TextPattern;

TEST(TextPatterns, TakeValuesInTheirPlacesOnly)
{
    const struct
    {
        const char *pattern;
        const char *text;
        bool fits;
    } cases[] = {
        {"Library loaded", "Library loaded", true},
        {"Library loaded", "Library loaded ", false},
        {"Library loaded", "Library loaded second", false},
        {"set to  {number} failed", "set to  -12 failed", true},
        {"set to  {number} failed", "set to  12  failed", false},
        {"set to  {number} failed", "set to   failed", false},
        {"Found device: {quoted}", "Found device: \"a (b) [c]\"", true},
        {"Found device: {quoted}", "Found device: a", false},
        {"a{text}c", "ac", true},
        {"a{text}c", "abbc", true},
        {"a{text}c", "abbcd", false},
        {"(.*)", "anything", false},
        {"{tab}-e(xec){tab}{tab}: {text}", "\t-e(xec)\t\t: Run", true},
        {R"({"cmd":"x","data":"{number}"})", R"({"cmd":"x","data":"5"})", true},
        {R"({"cmd":"x","data":"{number}"})", R"({"cmd":"x","data":""})", false},
    };
    for (const auto &row : cases)
        EXPECT_EQ(TextPattern(row.pattern).fits(row.text), row.fits) << row.pattern << " / " << row.text;
}

class TextSightings : public ::testing::Test
{
protected:
    QStringList complaints(const QStringList &catalogue, const QString &record)
    {
        QString error;
        Sightings sightings(readCatalogueLines("group", catalogue, error));
        EXPECT_EQ(error, QString());
        sightings.read(record);
        sightings.join();
        tests = sightings.texts().empty() ? QStringList() : sightings.testsOf(0);
        return sightings.complaints();
    }

    QStringList tests; // that saw the first text
};

TEST_F(TextSightings, AskForEachWordThatAPlaceStandsFor)
{
    const auto unseen = [](const char *text) {
        return QString("no test saw group: debug \"%1\"").arg(text);
    };
    QStringList said = complaints({"debug \"to {accessory} now\""}, "test\tA.a\ndebug\tto dock now\n");
    EXPECT_TRUE(said.contains(unseen("to graphics now")));
    EXPECT_FALSE(said.contains(unseen("to dock now")));
    EXPECT_EQ(said.count(unseen("to graphics now")), 1); // although two accessories have this name
    said = complaints({"debug \"{profile} {number}\""}, "test\tA.a\ndebug\thigh 12\n");
    EXPECT_TRUE(said.contains(unseen("low {number}")));
    EXPECT_FALSE(said.contains(unseen("high {number}")));
    said = complaints({"debug \"is {profile number}\""}, "test\tA.a\ndebug\tis 0\ndebug\tis 3\n");
    EXPECT_TRUE(said.contains(unseen("is 1")));
    EXPECT_FALSE(said.contains(unseen("is 0")));
}

TEST_F(TextSightings, NameTheTextsThatNoTestSaw)
{
    const QStringList catalogue {"# a comment", "", "debug \"said \"twice\" \"", "reply \"never {number}\""};
    EXPECT_EQ(complaints(catalogue, "test\tB.b\ndebug\tsaid \"twice\" \ntest\tA.a\ndebug\tsaid \"twice\" \n"),
        QStringList("no test saw group: reply \"never {number}\""));
    EXPECT_EQ(tests, QStringList({"A.a", "B.b"}));
}

TEST_F(TextSightings, KeepKindsApart)
{
    const struct
    {
        const char *kind;
        const char *recorded;
        bool seen;
    } cases[] = {
        {"debug", "debug", true},
        {"debug", "said", true},
        {"out", "said", true},
        {"reply", "said", false},
        {"notification", "message", true},
        {"notification", "reply", false},
        {"reply", "notification", false},
        {"file", "started", false},
    };
    for (const auto &row : cases) {
        const QStringList lines = complaints(
            {QString("%1 \"text\"").arg(row.kind)}, QString("test\tA.a\n%1\ttext\n").arg(row.recorded));
        EXPECT_EQ(lines.isEmpty(), row.seen) << row.kind << " / " << row.recorded;
    }
}

TEST_F(TextSightings, ComplainAboutAnotherLevelOfTheLog)
{
    EXPECT_EQ(complaints({"warning \"it failed\""}, "test\tA.a\ndebug\tit failed\nsaid\tit failed\n"),
        QStringList("group: debug, not warning: \"it failed\" (A.a)"));
    EXPECT_EQ(complaints({"warning \"it failed\"", "debug \"it failed\""},
                  "test\tA.a\ndebug\tit failed\nwarning\tit failed\n"),
        QStringList());
}

TEST_F(TextSightings, NameTheLinesOfTheLogThatAreInNoList)
{
    const struct
    {
        const char *recorded;
        bool isMissing;
    } cases[] = {
        {"debug\tset to  5 now", false},
        {"debug\tset to  x now", true},
        {"warning\tnever heard of", true},
        {"fatal\tnever heard of", true},
        {"warning\tQtService: never heard of", true},
        {"warning\tQProcess: Destroyed while it runs", false},
        {"warning\tQLocalSocket::connectToServer: refused", false},
        {"warning\tThere is no simulated computer: no folder", false},
        {"debug\tQProcess: never heard of", true},
        {"said\tnever heard of", false},
        {"reply\tnever heard of", false},
    };
    for (const auto &[recorded, isMissing] : cases) {
        const QStringList lines = complaints({"debug \"set to  {number} now\"", "debug \"seen\""},
            QString("test\tA.a\ndebug\tset to  1 now\ndebug\tseen\n%1\n").arg(recorded));
        const QString line = QString("in no list: %1\" (A.a)").arg(QString(recorded).replace('\t', " \""));
        EXPECT_EQ(lines, isMissing ? QStringList(line) : QStringList()) << recorded;
    }
}

TEST_F(TextSightings, RefuseAnExcuseForATextThatWasSeen)
{
    const QStringList catalogue {"debug \"text\" not here: only elsewhere"};
    EXPECT_EQ(complaints(catalogue, ""), QStringList());
    EXPECT_EQ(complaints(catalogue, "test\tA.a\ndebug\ttext\n"),
        QStringList("group: debug \"text\" is said not to be seen here, but was, by A.a"));
}

TEST(TextCatalogue, RefusesLinesThatAreNone)
{
    for (const char *line :
        {"debug", "debug text", "debug \"", "debug \"\"", "shout \"text\"", "debug \"text\" here"}) {
        QString error;
        EXPECT_TRUE(readCatalogueLines("group", {"debug \"good\"", line}, error).empty()) << line;
        EXPECT_TRUE(error.contains(line)) << line;
    }
}
