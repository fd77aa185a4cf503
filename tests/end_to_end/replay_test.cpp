#include "end_to_end/recording_scenarios.h"

#include "simulator/replay/replay_control.h"
#include "simulator/tool/run_tool.h"
#include "support/pipe_peer.h"
#include "support/printing.h"

#include <QDir>
#include <QFile>
#include <QTemporaryDir>
#include <QTextStream>

#include <gtest/gtest.h>

#include <algorithm>
#include <functional>

using tarnSimulator::Replay;
using tarnSimulator::ReplayMode;
using tarnTest::RecordedService;
using tarnTest::recordingScenarios;
using tarnTest::recordScenario;
using tarnTest::ServiceProcess;
using tarnTest::waitUntil;

namespace {

// A service whose computer answers from a recording.
class ReplayingService
{
public:
    int tool(const QStringList &arguments)
    {
        QTextStream out(&said);
        const QString state = service.path(QStringLiteral("function/simulated_computer.state"));
        return tarnSimulator::runTool(
            QStringList {QStringLiteral("tarnsim"), QStringLiteral("--state"), state} + arguments, out, out);
    }
    [[nodiscard]] bool prepare(const QString &recording, const QStringList &options = {})
    {
        return tool(QStringList {QStringLiteral("replay"), recording} + options) == 0;
    }
    // Until all has been consumed, or something was different.
    [[nodiscard]] bool replay(int boundMs = 60000)
    {
        const bool isDone = service.launch({QStringLiteral("-exec")})
            && waitUntil([this] { return state().isComplete() || !state().difference.empty(); }, boundMs);
        return service.stop() == 0 && isDone;
    }
    [[nodiscard]] Replay state() { return replayOf(service.state()); }

    ServiceProcess service;
    QString said;
};

QString recordingsFolder()
{
    const QString given = qEnvironmentVariable("TARN_RECORDINGS_FOLDER");
    return given.isEmpty() ? QStringLiteral(TARN_RECORDINGS_FOLDER) : given;
}

std::vector<QString> keptRecordings(const QString &pattern = QStringLiteral("*.recording"))
{
    const QStringList names = QDir(recordingsFolder()).entryList({pattern}, QDir::Files, QDir::Name);
    return {names.begin(), names.end()};
}

// On a real computer's the simulated EC may answer otherwise.
std::vector<QString> simulatedRecordings()
{
    return keptRecordings(QStringLiteral("simulated-*.recording"));
}

std::string testName(const testing::TestParamInfo<QString> &info)
{
    std::string name = info.param.section('.', 0, 0).toStdString();
    std::replace_if(
        name.begin(), name.end(), [](char c) { return !std::isalnum(static_cast<unsigned char>(c)); }, '_');
    return name;
}

} // namespace

class KeptRecording : public testing::TestWithParam<QString>
{ };

INSTANTIATE_TEST_SUITE_P(Recordings, KeptRecording, testing::ValuesIn(keptRecordings()), testName);

// Where the folder is not found, there would be no test.
TEST(KeptRecordings, AreThere)
{
    EXPECT_FALSE(keptRecordings().empty()) << recordingsFolder().toStdString();
}

TEST_P(KeptRecording, IsRepeatedByTheService)
{
    ReplayingService replaying;
    ASSERT_TRUE(replaying.prepare(QDir(recordingsFolder()).filePath(GetParam())))
        << replaying.said.toStdString();
    EXPECT_TRUE(replaying.replay());
    EXPECT_EQ(replaying.state().difference, "");
    replaying.said.clear();
    EXPECT_EQ(replaying.tool({QStringLiteral("show")}), 0) << replaying.said.toStdString();
    EXPECT_TRUE(replaying.said.contains(QStringLiteral("complete")));
}

class SimulatedRecording : public testing::TestWithParam<QString>
{ };

INSTANTIATE_TEST_SUITE_P(Recordings, SimulatedRecording, testing::ValuesIn(simulatedRecordings()), testName);

TEST_P(SimulatedRecording, DiffersFromTheSimulatedComputerOnlyWhereItsEcWasStuck)
{
    QString said;
    QTextStream out(&said);
    const int code = tarnSimulator::runTool(
        {QStringLiteral("tarnsim"), QStringLiteral("compare"), QDir(recordingsFolder()).filePath(GetParam())},
        out, out);
    const bool isStuck = GetParam() == QLatin1String("simulated-stuck-ec.recording");
    EXPECT_EQ(code, isStuck ? 1 : 0) << said.toStdString();
    EXPECT_EQ(said.contains(QStringLiteral("wrong value:")), isStuck) << said.toStdString();
    for (const char *kind : {"another measurement:", "other timing:"})
        EXPECT_FALSE(said.contains(QLatin1StringView(kind))) << said.toStdString();
}

class ReplayedRecording : public testing::Test
{
protected:
    // A kept recording whose requests the test may change.
    void keep(const QString &name)
    {
        const QDir kept(recordingsFolder());
        ASSERT_TRUE(tarnTest::copyRecording(kept.filePath(name + QStringLiteral(".recording")), recording));
    }
    void changeRequests(const std::function<void(QByteArray &)> &change)
    {
        QFile file(folder.filePath(QStringLiteral("ec.requests")));
        ASSERT_TRUE(file.open(QIODevice::ReadWrite));
        QByteArray text = file.readAll();
        change(text);
        file.resize(0);
        file.seek(0);
        file.write(text);
    }
    [[nodiscard]] bool saidByShow(const char *text)
    {
        replaying.said.clear();
        EXPECT_EQ(replaying.tool({QStringLiteral("show")}), 1);
        return replaying.said.contains(QLatin1StringView(text));
    }

    QTemporaryDir folder;
    QString recording = folder.filePath(QStringLiteral("ec.recording"));
    ReplayingService replaying;
};

// What the service has just recorded, it repeats.
TEST_F(ReplayedRecording, MayBeAFreshOne)
{
    RecordedService computer;
    const QString made = recordScenario(computer, recordingScenarios().front());
    ASSERT_FALSE(made.isEmpty());
    ASSERT_TRUE(replaying.prepare(made)) << replaying.said.toStdString();
    EXPECT_TRUE(replaying.replay());
    EXPECT_EQ(replaying.state().difference, "");
    EXPECT_TRUE(replaying.state().isComplete());
}

TEST_F(ReplayedRecording, MayBeTakenLoosely)
{
    keep(QStringLiteral("simulated-dock-light"));
    ASSERT_TRUE(replaying.prepare(recording, {QStringLiteral("--loose")})) << replaying.said.toStdString();
    EXPECT_TRUE(replaying.replay());
    EXPECT_EQ(replaying.state().difference, "");
    EXPECT_TRUE(replaying.state().isComplete());
}

TEST_F(ReplayedRecording, ShowsWhatTheServiceDoesDifferently)
{
    keep(QStringLiteral("simulated-dock-light"));
    changeRequests([](QByteArray &text) { text.replace("\"off\"", "\"on\""); });
    ASSERT_TRUE(replaying.prepare(recording)) << replaying.said.toStdString();
    EXPECT_TRUE(replaying.replay());
    EXPECT_TRUE(saidByShow("recorded is a write of 0x00 to port 0x68, the service made a write of 0x01"));
}

TEST_F(ReplayedRecording, IsNotCompleteWithoutTheRequests)
{
    keep(QStringLiteral("simulated-dock-light"));
    changeRequests([](QByteArray &text) { text.clear(); });
    ASSERT_TRUE(replaying.prepare(recording)) << replaying.said.toStdString();
    EXPECT_TRUE(replaying.replay());
    EXPECT_TRUE(saidByShow("different at access "));
}

// A device that the recorded computer did not have is not there in the replay either.
TEST_F(ReplayedRecording, HasTheUsersAnswerAndTheDevicesOfTheRecordedComputer)
{
    keep(QStringLiteral("simulated-disengagement"));
    changeRequests([](QByteArray &text) { text.replace("answer 1", "answer 0"); });
    ASSERT_TRUE(replaying.prepare(recording)) << replaying.said.toStdString();
    EXPECT_TRUE(replaying.replay());
    EXPECT_EQ(replaying.service.computer().devices().allSlots().size(), 4U);
    EXPECT_TRUE(saidByShow("different at access ")); // no report of the GPU, because the user said no
}
