#include "command_fixture.h"
#include "support/pipe_peer.h"
#include "support/process_ending.h"
#include "support/queued_messages.h"

#include <thread>

using tarn::CommandEntry;
using tarnDeviceInfos::ecAccessMutex;
using tarnPipeServer::Lane;
using tarnTest::fullRequest;

class CommandLanes : public tarnTest::CommandTest, public ::testing::WithParamInterface<CommandEntry>
{
protected:
    // Whether anything of it is done under the lock of the EC.
    bool takesEc(const QByteArray &request)
    {
        bool taken = false;
        machine.clock.onWait = [&taken](tarnTest::milliseconds) {
            taken = taken || ecAccessMutex.isLocked();
        };
        server->dispatch(request);
        machine.clock.onWait = nullptr;
        return taken || ecAccessMutex.isLocked() || !machine.traffic().isEmpty();
    }
};

INSTANTIATE_TEST_SUITE_P(
    Of, CommandLanes, ::testing::ValuesIn(tarn::commandCatalogue()), tarnTest::commandName);

TEST_P(CommandLanes, AreThoseOfTheEcForWhatTakesIt)
{
    const QByteArray request = fullRequest(GetParam());
    const bool waits = server->laneOf(request) != Lane::NeverWaits;
    EXPECT_EQ(takesEc(request), waits);
    EXPECT_EQ(GetParam().needsEc, waits); // the catalogue tells clients the same
}

class LaneThatNeverWaits : public CommandLanes
{ };

INSTANTIATE_TEST_SUITE_P(Of, LaneThatNeverWaits, ::testing::ValuesIn(tarnTest::commandsThatNeedTheEc(false)),
    tarnTest::commandName);

TEST_P(LaneThatNeverWaits, FinishesWhileTheEcIsHeld)
{
    ASSERT_TRUE(ecAccessMutex.lock());
    std::atomic<bool> done {false};
    std::thread handler([&] {
        server->dispatch(fullRequest(GetParam()));
        done = true;
    });
    EXPECT_TRUE(tarnTest::waitUntil([&] { return done.load(); }));
    tarnTest::letProcessEnd();
    handler.join();
}

TEST_F(CommandLanes, OfWhatBeginsOrEndsAWaitAreTheirOwn)
{
    EXPECT_EQ(server->laneOf(R"({"cmd":"requestLeaveMcuUpdateMode"})"), Lane::LeavesMcuUpdateMode);
    EXPECT_EQ(server->laneOf(R"({"cmd":"requestEcUpdate"})"), Lane::UpdatesEc);
    QStringList others;
    for (const CommandEntry &command : tarn::commandCatalogue()) {
        const Lane lane = server->laneOf(fullRequest(command));
        if (lane != Lane::WaitsForEc && lane != Lane::NeverWaits)
            others << command.name;
    }
    EXPECT_EQ(others, QStringList({"requestLeaveMcuUpdateMode", "requestEcUpdate"}));
}

TEST_F(CommandLanes, AreChosenByTheCommandAndNotByItsWords)
{
    EXPECT_EQ(server->laneOf(R"({"cmd":"getMcuVersion","data":"getAccessoryType"})"), Lane::WaitsForEc);
    EXPECT_EQ(server->laneOf(R"({"cmd":"getAccessoryType","data":"requestEcUpdate"})"), Lane::NeverWaits);
    EXPECT_EQ(
        server->laneOf(R"({"data":{"cmd":"requestEcUpdate"},"cmd":"getMcuVersion"})"), Lane::WaitsForEc);
    EXPECT_EQ(server->laneOf(R"( { "cmd" : "get\u004dcuVersion" } )"), Lane::WaitsForEc);
    EXPECT_EQ(server->laneOf(R"({"cmd":"getMcuVersion","cmd":"getAccessoryType"})"),
        server->laneOf(R"({"cmd":"getAccessoryType"})")); // the last "cmd" counts, as for the handler
}

TEST_F(CommandLanes, NeverWaitForWhatIsNotUnderstood)
{
    for (const char *request : {"", "requestEcUpdate", "{}", R"({"cmd":5})", R"({"cmd":null})",
             R"({"cmd":"getmcuversion"})", R"({"cmd":"getMcuVersion")", R"([{"cmd":"getMcuVersion"}])",
             R"({"cmd":["getMcuVersion"]})", R"({"cmd":"getMcuVersion"}{"cmd":"getMcuVersion"})"})
        EXPECT_EQ(server->laneOf(request), Lane::NeverWaits) << request;
}

TEST_F(CommandLanes, AreLookedUpWithoutAWord)
{
    for (const char *request : {"nonsense", R"({"cmd":"noSuchThing"})", R"({"cmd":"getMcuVersion"})"})
        static_cast<void>(server->laneOf(request));
    EXPECT_EQ(machine.log.lines(), QStringList());
}
