#include "../update/update_fixture.h"
#include "pipe/tarn_pipe_server.h"
#include "support/pipe_peer.h"
#include "support/process_ending.h"

#include <algorithm>
#include <thread>
#include <vector>

using tarnDeviceInfos::ecAccessMutex;
using tarnPipeServer::Lane;
using tarnPipeServer::TarnPipeServer;

namespace {

// A request whose handler does all it ever does.
struct LaneRow
{
    const char *command;
    const char *data;
    Lane lane;
};

const LaneRow laneRows[] = {
    {"getAccessoryType", "", Lane::NeverWaits},
    {"getMcuVersion", "", Lane::WaitsForEc},
    {"getHardwareVersion", "", Lane::WaitsForEc},
    {"getAccessoryCode", "", Lane::WaitsForEc},
    {"getMcuUpdateParameters", "", Lane::WaitsForEc},
    {"powerModeControl", "first", Lane::WaitsForEc},
    {"getDockLedStatus", "", Lane::WaitsForEc},
    {"setDockLedStatus", "on", Lane::WaitsForEc},
    {"getGraphicsRGB", "", Lane::WaitsForEc},
    {"setGraphicsRGB", "on", Lane::WaitsForEc},
    {"requestMcuUpdate", "fw.bin", Lane::WaitsForEc},
    {"requestEnterMcuUpdateMode", "", Lane::WaitsForEc},
    {"requestLeaveMcuUpdateMode", "", Lane::LeavesMcuUpdateMode},
    {"requestStartEcUpdate", "", Lane::WaitsForEc},
    {"requestEcUpdate", "fw.bin", Lane::UpdatesEc},
    {"setSmartChargingStatus", "OFF", Lane::WaitsForEc},
    {"getSmartChargingStatus", "", Lane::WaitsForEc},
    {"getTarnPowerMode", "", Lane::WaitsForEc},
    {"setTarnPowerMode", "low", Lane::WaitsForEc},
    {"requestBeginGraphicsMcuUpdate", "", Lane::NeverWaits},
    {"getTarnKvaneSnCode", "", Lane::WaitsForEc},
    {"setKVaneLedLight", "1", Lane::WaitsForEc},
    {"getKVaneLedLight", "", Lane::NeverWaits},
    {"getKvaneChargingStatus", "", Lane::NeverWaits},
    {"getKvaneBatteryNum", "", Lane::NeverWaits},
    {"getTarnChargingStatus", "", Lane::NeverWaits},
    {"getTarnBatteryNum", "", Lane::NeverWaits},
};

QByteArray requestOf(const LaneRow &row)
{
    return QByteArray(R"({"cmd":")") + row.command + R"(","data":")" + row.data + R"("})";
}

std::vector<LaneRow> rowsThatNeverWait()
{
    std::vector<LaneRow> rows;
    std::copy_if(std::begin(laneRows), std::end(laneRows), std::back_inserter(rows),
        [](const LaneRow &row) { return row.lane == Lane::NeverWaits; });
    return rows;
}

std::string rowName(const ::testing::TestParamInfo<LaneRow> &info)
{
    return info.param.command;
}

} // namespace

// A KVane, tools that do nothing and a file for each of them.
class CommandLanes : public tarnTest::UpdateTest, public ::testing::WithParamInterface<LaneRow>
{
protected:
    CommandLanes()
        : server(TarnPipeServer::instance())
    {
        machine.folder.write("function/EC/uiset.ini", "BinName=old\n");
        installTool("function/EC/IFU_XE.exe", "exit 0");
        installFlasher("exit 0");
        download("new");
        forgetPast();
    }

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

    TarnPipeServer *server;
};

INSTANTIATE_TEST_SUITE_P(Of, CommandLanes, ::testing::ValuesIn(laneRows), rowName);

TEST_P(CommandLanes, AreThoseOfTheEcForWhatTakesIt)
{
    EXPECT_EQ(server->laneOf(requestOf(GetParam())), GetParam().lane);
    EXPECT_EQ(takesEc(requestOf(GetParam())), GetParam().lane != Lane::NeverWaits);
}

class LaneThatNeverWaits : public CommandLanes
{ };

INSTANTIATE_TEST_SUITE_P(Of, LaneThatNeverWaits, ::testing::ValuesIn(rowsThatNeverWait()), rowName);

TEST_P(LaneThatNeverWaits, KeepsItsPromise)
{
    ASSERT_TRUE(ecAccessMutex.lock());
    std::atomic<bool> done {false};
    std::thread handler([&] {
        server->dispatch(requestOf(GetParam()));
        done = true;
    });
    EXPECT_TRUE(tarnTest::waitUntil([&] { return done.load(); }));
    tarnTest::letProcessEnd();
    handler.join();
}

TEST_F(CommandLanes, AreKnownForEveryCommand)
{
    QStringList names;
    for (const LaneRow &row : laneRows)
        names << row.command;
    names.sort();
    EXPECT_EQ(server->commandNames(), names);
}

TEST_F(CommandLanes, AreChosenByTheCommandAndNotByItsWords)
{
    EXPECT_EQ(server->laneOf(R"({"cmd":"getMcuVersion","data":"getAccessoryType"})"), Lane::WaitsForEc);
    EXPECT_EQ(server->laneOf(R"({"cmd":"getAccessoryType","data":"requestEcUpdate"})"), Lane::NeverWaits);
    EXPECT_EQ(
        server->laneOf(R"({"data":{"cmd":"requestEcUpdate"},"cmd":"getMcuVersion"})"), Lane::WaitsForEc);
    EXPECT_EQ(server->laneOf(R"( { "cmd" : "get\u004dcuVersion" } )"), Lane::WaitsForEc);
    EXPECT_EQ(server->laneOf(R"({"cmd":"getMcuVersion","cmd":"getAccessoryType"})"),
        server->laneOf(R"({"cmd":"getAccessoryType"})")); // the last one counts, as for the handler
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
