#include "unit/client/tarnctl/check/check_fixture.h"

#include "unit/client/tarnctl/watch_run.h"

namespace tarnClientTest {

using std::chrono::milliseconds;

TEST_F(CheckTest, WaitsForHands)
{
    values["getAccessoryType"] = "disconnected";
    whenShown("Plug in the KVane.", [this] { service.notify("changeAccessoryType", "graphics"); });
    attachWhenShown("    came:     changeAccessoryType graphics\n", "k_vane", "4");
    times.hands = milliseconds(60000);
    const auto input = std::make_shared<TypedInput>();
    input->type("\ny\n");
    whenShown("Take the KVane off.", [input] { input->type("s\n"); });
    const ToolRun run = check({"plug-kvane", "unplug-kvane"}, ToolInput {input});
    input->end();
    EXPECT_EQ(run.code, 0) << run.output.data();
    EXPECT_TRUE(run.output.contains("    came:     changeAccessoryType k_vane, after ")) << run.output.data();
    EXPECT_TRUE(report().contains("  1 as expected\n  0 NOT as expected\n  0 NO ANSWER\n  1 skipped\n"));
}

TEST_F(CheckTest, DoesNotWaitForHandsForEver)
{
    values["getAccessoryType"] = "disconnected";
    const auto input = std::make_shared<TypedInput>();
    input->type("\ny\n");
    const ToolRun run = check({"plug-dock"}, ToolInput {input});
    input->end();
    EXPECT_EQ(run.code, 1);
    EXPECT_TRUE(run.output.contains("    came:     nothing\n  => NO ANSWER\n")) << run.output.data();
    EXPECT_FALSE(service.commands().contains("getAccessoryCode"));
}

TEST_F(CheckTest, SkipsHandsAtTheEndOfTheInput)
{
    values["getAccessoryType"] = "disconnected";
    times.hands = milliseconds(60000);
    EXPECT_EQ(check({"plug-dock"}, "\ny\n").code, 0);
    EXPECT_TRUE(report().contains("  1 skipped\n")) << report().toStdString();
}

TEST_F(CheckTest, HasADockTakenOffFirst)
{
    values["getAccessoryType"] = "dock";
    times.hands = milliseconds(60000);
    attachWhenShown("Take the dock off first.", "disconnected");
    attachWhenShown("Plug in the KVane.", "k_vane", "4");
    const auto input = std::make_shared<TypedInput>();
    input->type("\ny\n");
    const ToolRun run = check({"plug-kvane"}, ToolInput {input});
    input->end();
    EXPECT_EQ(run.code, 0) << run.output.data();
    EXPECT_TRUE(report().contains("  1 as expected\n"));
}

// Its card is in use.
TEST_F(CheckTest, BeginsWithTheKeyOfABoxThatIsAttached)
{
    values["getAccessoryType"] = "graphics";
    times.hands = milliseconds(60000);
    whenShown("press its key", [this] { service.notify("disengagedGraphics", ""); });
    attachWhenShown("then take it off.", "disconnected");
    attachWhenShown("Plug in the dock.", "dock", "1");
    attachWhenShown("Take the dock off.", "disconnected");
    attachWhenShown("Plug in the graphics box.", "graphics", "2");
    const auto input = std::make_shared<TypedInput>();
    input->type("\ny\n");
    const ToolRun run = check(
        {"plug-dock", "unplug-dock", "plug-graphics", "press-gpu-key", "unplug-graphics"}, ToolInput {input});
    input->end();
    EXPECT_EQ(run.code, 0) << run.output.data();
    EXPECT_TRUE(report().contains("  5 as expected\n"));
    EXPECT_TRUE(run.output.contains("[5/5] plug-graphics"));
    EXPECT_EQ(run.output.count(" off"), 3)
        << run.output.data(); // the box, the dock, and what to do at the end
    EXPECT_LT(run.output.indexOf("press its key"), run.output.indexOf("take it off"));
}

TEST_F(CheckTest, LeavesABoxAttachedThatWasNotReleased)
{
    for (const bool isSkipped : {true, false}) {
        values["getAccessoryType"] = "graphics";
        times.hands = milliseconds(isSkipped ? 60000 : 100);
        const auto input = std::make_shared<TypedInput>();
        input->type("\ny\n");
        if (isSkipped)
            whenShown("press its key", [input] { input->type("s\n"); });
        const ToolRun run =
            check({"plug-dock", "plug-graphics", "press-gpu-key", "unplug-graphics", "plug-kvane"},
                ToolInput {input});
        input->end();
        EXPECT_EQ(run.code, isSkipped ? 0 : 1) << run.output.data();
        EXPECT_TRUE(run.output.contains("so leave it attached.")) << run.output.data();
        EXPECT_FALSE(run.output.contains("take it off"));
        EXPECT_FALSE(run.output.contains("Plug in"));
        EXPECT_EQ(run.output.count("The graphics box stays attached"), 3);
    }
}

} // namespace tarnClientTest
