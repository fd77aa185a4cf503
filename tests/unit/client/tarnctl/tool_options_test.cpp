#include "client/tarnctl/tool_options.h"
#include "unit/client/tarnctl/tool_run.h"

#include <gtest/gtest.h>

using namespace tarnClientTest;
using std::chrono::milliseconds;
using tarnctl::parseOptions;

TEST(TarnctlOptionsTest, Defaults)
{
    const tarnctl::ParsedOptions parsed = parseOptions({"tarnctl", "getMcuVersion"});
    EXPECT_TRUE(parsed.error.isEmpty());
    EXPECT_EQ(parsed.options.pipeName, "tarnPipe");
    EXPECT_EQ(parsed.options.words, QStringList {"getMcuVersion"});
    EXPECT_FALSE(parsed.options.timeout || parsed.options.duration || parsed.options.count);
    EXPECT_FALSE(parsed.options.json || parsed.options.verbose || parsed.options.force
        || parsed.options.reconnect || parsed.options.help || parsed.options.version);
}

TEST(TarnctlOptionsTest, EveryOption)
{
    const tarnctl::ParsedOptions parsed =
        parseOptions({"tarnctl", "--json", "-v", "watch", "--force", "--reconnect", "--timeout", "0.25",
            "--for=2", "--count", "3", "--pipe", "p", "--version", "-h", "--expect", "1.23"});
    EXPECT_TRUE(parsed.error.isEmpty());
    EXPECT_EQ(parsed.options.timeout, milliseconds(250));
    EXPECT_EQ(parsed.options.duration, milliseconds(2000));
    EXPECT_EQ(parsed.options.count, 3);
    EXPECT_EQ(parsed.options.pipeName, "p");
    EXPECT_EQ(parsed.options.expectedVersion, "1.23");
    EXPECT_EQ(parsed.options.words, QStringList {"watch"});
    EXPECT_TRUE(parsed.options.json && parsed.options.verbose && parsed.options.force
        && parsed.options.reconnect && parsed.options.help && parsed.options.version);
}

namespace {

struct BadLine
{
    QStringList words;
};

// The name that a report shows.
void PrintTo(const BadLine &value, std::ostream *out)
{
    *out << "tarnctl " << value.words.join(u' ').toStdString();
}

class TarnctlBadCommandLines : public ::testing::TestWithParam<BadLine>
{ };

} // namespace

TEST_P(TarnctlBadCommandLines, AreUsageErrors)
{
    const ToolRun run = runTool(GetParam().words);
    EXPECT_EQ(run.code, 2);
    EXPECT_TRUE(run.output.isEmpty());
    EXPECT_TRUE(run.errors.startsWith("tarnctl: ")) << run.errors.toStdString();
}

INSTANTIATE_TEST_SUITE_P(Lines, TarnctlBadCommandLines,
    ::testing::Values(BadLine {{}}, BadLine {{"--bogus"}}, BadLine {{"watch", "--timeout", "0"}},
        BadLine {{"watch", "--timeout", "-1"}}, BadLine {{"watch", "--timeout", "nan"}},
        BadLine {{"watch", "--for", "soon"}}, BadLine {{"watch", "--for", "1e9"}},
        BadLine {{"watch", "--count", "0"}}, BadLine {{"watch", "--count", "1.5"}},
        BadLine {{"watch", "--pipe", ""}}, BadLine {{"watch", "more"}}, BadLine {{"raw"}},
        BadLine {{"raw", "a", "b"}}, BadLine {{"commands", "x"}}, BadLine {{"help", "a", "b"}},
        BadLine {{"getMcuVersion", "--count", "1"}}, BadLine {{"getMcuVersion", "--for", "1"}},
        BadLine {{"getMcuVersion", "data"}}, BadLine {{"setDockLedStatus"}},
        BadLine {{"setDockLedStatus", "ON"}}, BadLine {{"setDockLedStatus", "on", "off"}},
        BadLine {{"setKVaneLedLight", "256"}}, BadLine {{"requestEcUpdate", "../x"}},
        BadLine {{"update-mcu", "f", "--expect", "1"}}, BadLine {{"update-mcu", "f", "--expect", "v1.2"}},
        BadLine {{"update-mcu", "f", "--expect", "1.2.3"}}, BadLine {{"update-mcu", "f", "--expect", ""}},
        BadLine {{"update-ec", "f", "--expect", "1.2"}}, BadLine {{"getMcuVersion", "--expect", "1.2"}},
        BadLine {{"raw", ""}}, BadLine {{"requestEcUpdate", "BIOS.bin"}},
        BadLine {{"requestMcuUpdate", "--", "-odd.bin"}}, BadLine {{"getMcuVersion", "--reconnect"}},
        BadLine {{"raw", "{}", "--reconnect"}}, BadLine {{"getMcuVersio"}}));

TEST(TarnctlUsageTest, NamesTheWayOn)
{
    EXPECT_EQ(runTool({"getMcuVersio"}).errors,
        "tarnctl: There is no command \"getMcuVersio\". Did you mean getMcuVersion?\n");
    EXPECT_TRUE(runTool({"getMcuVersion", "--reconnect"}).errors.contains("--reconnect belongs to watch."));
    EXPECT_EQ(runTool({"zzzzzz"}).errors,
        "tarnctl: There is no command \"zzzzzz\".\n\"tarnctl --help\" and \"tarnctl commands\" list them "
        "all.\n");
    EXPECT_TRUE(runTool({"setGraphicsRGB", "pink"}).errors.contains("purplishred, shutdown"));
}

TEST(TarnctlUsageTest, ATimeOutOfRangeIsToldTheRange)
{
    const tarnctl::ParsedOptions longest = parseOptions({"tarnctl", "--timeout", "604800"});
    EXPECT_TRUE(longest.error.isEmpty());
    EXPECT_EQ(longest.options.timeout, std::chrono::hours(7 * 24));
    for (const char *wrong : {"0", "604801", "1000000"}) {
        EXPECT_EQ(parseOptions({"tarnctl", "--timeout", wrong}).error,
            QStringLiteral(
                "--timeout takes a number of seconds above 0 and up to 604800 (7 days), not \"%1\".")
                .arg(wrong));
    }
}

TEST(TarnctlUsageTest, Version)
{
    const ToolRun run = runTool({"--version"});
    EXPECT_EQ(run.code, 0);
    EXPECT_EQ(run.output, "tarnctl 1.40\n");
}
