#include "client/json_splitter.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <random>
#include <string>

using tarn::JsonSplitter;

namespace {

struct Collected
{
    QByteArrayList documents {};
    QByteArray garbage {};

    void take(const JsonSplitter::Harvest &harvest)
    {
        documents += harvest.documents;
        garbage += harvest.garbage;
    }
};

Collected feedAll(JsonSplitter &splitter, const QByteArrayList &chunks)
{
    Collected collected;
    for (const QByteArray &chunk : chunks)
        collected.take(splitter.feed(chunk));
    return collected;
}

QByteArrayList cutAnywhere(const QByteArray &bytes, std::mt19937 &random)
{
    QByteArrayList chunks;
    for (qsizetype at = 0; at < bytes.size();) {
        const qsizetype length = std::uniform_int_distribution<qsizetype>(1, 7)(random);
        chunks << bytes.mid(at, length);
        at += length;
    }
    return chunks;
}

} // namespace

namespace {

struct SplitCase
{
    const char *name;
    QByteArrayList chunks;
    QByteArrayList documents;
    QByteArray garbage;
};

// The name that a report shows.
void PrintTo(const SplitCase &value, std::ostream *out)
{
    *out << value.name;
}

class JsonSplitterCases : public ::testing::TestWithParam<SplitCase>
{ };

} // namespace

TEST_P(JsonSplitterCases, FindsTheDocuments)
{
    JsonSplitter splitter;
    const Collected collected = feedAll(splitter, GetParam().chunks);
    EXPECT_EQ(collected.documents, GetParam().documents);
    EXPECT_EQ(collected.garbage, GetParam().garbage);
    EXPECT_FALSE(splitter.isInsideDocument());
}

INSTANTIATE_TEST_SUITE_P(Streams, JsonSplitterCases,
    ::testing::Values(SplitCase {"OneDocument", {R"({"a":"b"})"}, {R"({"a":"b"})"}, ""},
        SplitCase {"Glued", {R"({"a":1}{"b":2})"}, {R"({"a":1})", R"({"b":2})"}, ""},
        SplitCase {"Split", {R"({"a)", R"(":1)", "}"}, {R"({"a":1})"}, ""},
        SplitCase {"SplitAndGlued", {R"({"a":1}{"b)", R"(":2})"}, {R"({"a":1})", R"({"b":2})"}, ""},
        SplitCase {"Nested", {R"({"a":{"b":{}}}{})"}, {R"({"a":{"b":{}}})", "{}"}, ""},
        SplitCase {"BracesInStrings", {R"({"a":"}{"}{"}":"{"})"}, {R"({"a":"}{"})", R"({"}":"{"})"}, ""},
        SplitCase {"EscapedQuote", {R"({"a":"\"}"})"}, {R"({"a":"\"}"})"}, ""},
        SplitCase {"EscapedBackslash", {R"({"a":"\\"}{"b":1})"}, {R"({"a":"\\"})", R"({"b":1})"}, ""},
        SplitCase {"EscapeAcrossReads", {"{\"a\":\"\\", "\"}\"}"}, {R"({"a":"\"}"})"}, ""},
        SplitCase {"BlanksBetween", {" {\"a\":1}\r\n\t{\"b\":2} "}, {R"({"a":1})", R"({"b":2})"}, ""},
        SplitCase {"GarbageAround", {R"(xx{"a":1}}]{"b":2}"")"}, {R"({"a":1})", R"({"b":2})"}, "xx}]\"\""},
        SplitCase {"LostQuote", {"{\"a\n{\"b\":2}"}, {R"({"b":2})"}, "{\"a\n"}));

TEST(JsonSplitterTest, CutsAreIndifferent)
{
    const QByteArrayList documents {R"({"cmd":"x","data":"{\"q\":\"\\\\\"}"})",
        R"({"data":"ä€","n":{"m":{}}})", "{}", R"({"cmd":"changeAccessoryType","data":"dock"})"};
    std::mt19937 random(7);
    for (int round = 0; round < 500; ++round) {
        JsonSplitter splitter;
        const Collected collected = feedAll(splitter, cutAnywhere(documents.join(), random));
        ASSERT_EQ(collected.documents, documents) << "round " << round;
        ASSERT_TRUE(collected.garbage.isEmpty()) << "round " << round;
    }
}

TEST(JsonSplitterTest, RandomBytesAreAllAccountedForWithinTheLimit)
{
    constexpr qsizetype limit = 64;
    const std::string alphabet = "{}\"\\a:\n";
    std::mt19937 random(11);
    for (int round = 0; round < 500; ++round) {
        QByteArray bytes;
        for (int i = 0; i < 300; ++i) {
            bytes.append(
                alphabet[std::uniform_int_distribution<std::size_t>(0, alphabet.size() - 1)(random)]);
        }
        JsonSplitter splitter(limit);
        Collected collected;
        for (const QByteArray &chunk : cutAnywhere(bytes, random)) {
            collected.take(splitter.feed(chunk));
            ASSERT_LE(splitter.bufferedSize(), limit);
        }
        qsizetype accounted = collected.garbage.size() + splitter.bufferedSize();
        for (const QByteArray &document : collected.documents) {
            ASSERT_TRUE(document.startsWith('{') && document.endsWith('}'));
            accounted += document.size();
        }
        // Only line ends between documents are dropped.
        ASSERT_LE(accounted, bytes.size());
        ASSERT_GE(accounted, bytes.size() - bytes.count('\n'));
    }
}

TEST(JsonSplitterTest, AnEndlessDocumentIsGivenUp)
{
    JsonSplitter splitter(100);
    Collected collected = feedAll(splitter, {"{\"a\":\"" + QByteArray(94, 'x')});
    EXPECT_TRUE(splitter.isInsideDocument());
    EXPECT_EQ(splitter.bufferedSize(), 100);
    collected = feedAll(splitter, {"yz", R"({"b":1})"});
    EXPECT_EQ(collected.garbage, "{\"a\":\"" + QByteArray(94, 'x') + "yz");
    EXPECT_EQ(collected.documents, QByteArrayList {R"({"b":1})"});
}

TEST(JsonSplitterTest, AbandonStartsAfresh)
{
    JsonSplitter splitter;
    EXPECT_TRUE(feedAll(splitter, {R"({"a":"\)"}).documents.isEmpty());
    EXPECT_EQ(splitter.abandon(), R"({"a":"\)");
    EXPECT_FALSE(splitter.isInsideDocument());
    EXPECT_EQ(feedAll(splitter, {R"({"b":1})"}).documents, QByteArrayList {R"({"b":1})"});
}
