#include "client/tarnctl/update_progress.h"

#include <gtest/gtest.h>

#include <sstream>

using std::chrono::milliseconds;
using tarnctl::ToolStreams;
using tarnctl::UpdateProgress;

namespace {

struct Streams
{
    std::ostringstream output {};
    std::ostringstream errors {};
    ToolStreams tool {nullptr, output, errors};

    std::string takeErrors()
    {
        const std::string text = errors.str();
        errors.str({});
        return text;
    }
};

} // namespace

TEST(TarnctlUpdateProgressTest, AwayFromATerminalALineForEachPhase)
{
    Streams streams;
    UpdateProgress progress(streams.tool, false);
    progress.show(milliseconds(0));
    EXPECT_EQ(streams.takeErrors(), "");
    progress.begin("a long beginning", milliseconds(1000));
    EXPECT_EQ(streams.takeErrors(), "0:01  a long beginning\n");
    progress.show(milliseconds(5999));
    EXPECT_EQ(streams.takeErrors(), "");
    progress.begin("the end", milliseconds(6000));
    EXPECT_EQ(streams.takeErrors(), "0:06  the end\n");
    progress.show(milliseconds(700000));
    progress.clear();
    progress.end();
    EXPECT_EQ(streams.takeErrors(), "");
    EXPECT_EQ(streams.output.str(), "");
}

TEST(TarnctlUpdateProgressTest, OnATerminalOneLineIsWrittenOver)
{
    Streams streams;
    streams.tool.errorsAreTerminal = true;
    UpdateProgress progress(streams.tool, false);
    progress.show(milliseconds(0));
    EXPECT_EQ(streams.takeErrors(), "");
    progress.begin("a long beginning", milliseconds(0));
    EXPECT_EQ(streams.takeErrors(), "\r0:00  a long beginning");
    progress.show(milliseconds(1000));
    EXPECT_EQ(streams.takeErrors(), "\r0:01  a long beginning");
    progress.show(milliseconds(1999));
    EXPECT_EQ(streams.takeErrors(), "");
    progress.begin("the end", milliseconds(754321));
    // The rest of the longer line before is blanked out.
    EXPECT_EQ(streams.takeErrors(), "\r12:34  the end        ");
    progress.clear();
    EXPECT_EQ(streams.takeErrors(), "\r              \r");
    progress.clear();
    EXPECT_EQ(streams.takeErrors(), "");
    progress.show(milliseconds(755000));
    EXPECT_EQ(streams.takeErrors(), "\r12:35  the end");
    progress.end();
    EXPECT_EQ(streams.takeErrors(), "\r              \r");
    progress.show(milliseconds(756000));
    EXPECT_EQ(streams.takeErrors(), "");
}

TEST(TarnctlUpdateProgressTest, QuietShowsNothing)
{
    Streams streams;
    streams.tool.errorsAreTerminal = true;
    UpdateProgress progress(streams.tool, true);
    progress.begin("a long beginning", milliseconds(0));
    progress.show(milliseconds(6000));
    progress.end();
    EXPECT_EQ(streams.takeErrors(), "");
}
