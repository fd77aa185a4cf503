#include "unit/simulator/replay/replay_session.h"

using tarnSimulator::ReplayMode;
using tarnSimulatorTest::RecordingBuilder;

using ReplayVerb = tarnSimulatorTest::ReplaySession;

TEST_F(ReplayVerb, PreparesAComputerAsItIsAfterPowerOn)
{
    EXPECT_EQ(run(QStringLiteral("attach dock")), 0);
    EXPECT_EQ(prepare(RecordingBuilder().load().in(0x6C, 1)), 0);
    EXPECT_TRUE(said("Start the service now"));
    EXPECT_FALSE(computer->isAttached());
    EXPECT_EQ(state().mode, ReplayMode::Strict);
    EXPECT_EQ(prepare(RecordingBuilder().load().read(0x06A0, 1), "--loose"), 0);
    EXPECT_EQ(state().mode, ReplayMode::Loose);
}

TEST_F(ReplayVerb, EndsWithOffAndWithAReset)
{
    for (const char *end : {"replay --off", "reset"}) {
        ASSERT_EQ(prepare(RecordingBuilder().load().in(0x6C, 1)), 0);
        load();
        EXPECT_EQ(run(QString::fromUtf8(end)), 0);
        EXPECT_EQ(tarnSimulator::replayedPorts(machine->state(), machine->path()), nullptr);
        EXPECT_EQ(run(QStringLiteral("show")), 0);
        EXPECT_FALSE(said("Replay"));
    }
}

TEST_F(ReplayVerb, BeginsAgain)
{
    ASSERT_EQ(prepare(RecordingBuilder().load().in(0x6C, 1)), 0);
    load();
    ports->write(0x6C, 0);
    ASSERT_EQ(prepare(RecordingBuilder().load().in(0x6C, 1)), 0);
    EXPECT_EQ(state().difference, "");
    load();
    EXPECT_EQ(ports->read(0x6C), 1);
    EXPECT_TRUE(state().isComplete());
}

TEST_F(ReplayVerb, SaysWhatItCannotDo)
{
    EXPECT_EQ(run(QStringLiteral("replay")), 2);
    EXPECT_EQ(run(QStringLiteral("replay --loose")), 2);
    EXPECT_EQ(run(QStringLiteral("replay a b")), 2);
    EXPECT_EQ(run(QStringLiteral("replay a --off")), 2);
    EXPECT_EQ(run(QStringLiteral("replay --strict")), 2);
    EXPECT_TRUE(complained("replay takes one file, and --loose, or --off alone"));
    EXPECT_EQ(run(QStringLiteral("replay /no/such/file")), 1);
    EXPECT_TRUE(complained("cannot be read"));
    EXPECT_EQ(prepare(RecordingBuilder().load()), 1);
    EXPECT_TRUE(complained("has nothing to replay"));
    EXPECT_EQ(prepare(RecordingBuilder().load().in(0x6C, 1), "--loose"), 1);
    EXPECT_TRUE(complained("has nothing to replay"));
    EXPECT_EQ(state().mode, ReplayMode::Off);
}

TEST_F(ReplayVerb, RefusesStepsThatItDoesNotUnderstand)
{
    for (const char *wrong :
        {"after 0 request {}\n", "after 0 request {\"command\":\"requestEcUpdate\",\"data\":\"ec.bin\"}\n",
            "after 0 request {\"command\":\"requestMcuUpdate\",\"data\":\"mcu.bin\"}\n",
            "after 0 request {\"command\":1}\n", "after 0 device {}\n",
            "after 0 saved {\"file\":\"TarnService.ini\",\"content\":\"\"}\n",
            "after 0 saved {\"file\":\"../powermodeconfig.xml\",\"content\":\"\"}\n",
            "after 0 saved {\"file\":\"powermodeconfig.xml\"}\n",
            "after 0 saved {\"file\":\"powermodeconfig.xml\",\"content\":\"?\"}\n", "after 0 dance 1\n",
            "after 5 answer 1\nafter 3 answer 1\n",
            "after 0 device "
            "{\"name\":\"a\\nafter 0 answer 77\",\"kind\":\"display\",\"started\":true,\"problem\":0,"
            "\"description\":\"\",\"hardwareId\":\"\",\"instanceId\":\"\"}\n",
            "after 0 device "
            "{\"name\":\"\",\"kind\":\"display\",\"started\":true,\"problem\":0,\"description\":\"\","
            "\"hardwareId\":\"\",\"instanceId\":\"\"}\n",
            "after 0 device "
            "{\"name\":\"a\",\"kind\":\"toy\",\"started\":true,\"problem\":0,\"description\":\"\","
            "\"hardwareId\":\"\",\"instanceId\":\"\"}\n",
            "after 0 device "
            "{\"name\":\"a\",\"kind\":\"display\",\"place\":\"moon\",\"started\":true,\"problem\":0,"
            "\"description\":\"\",\"hardwareId\":\"\",\"instanceId\":\"\"}\n",
            "after 0 device "
            "{\"name\":\"a\",\"kind\":\"display\",\"started\":true,\"problem\":-1,\"description\":\"\","
            "\"hardwareId\":\"\",\"instanceId\":\"\"}\n",
            "after 0 device "
            "{\"name\":\"a\\tb\",\"kind\":\"display\",\"started\":true,\"problem\":0,\"description\":\"\","
            "\"hardwareId\":\"\",\"instanceId\":\"\"}\n"}) {
        steps(wrong);
        EXPECT_EQ(prepare(RecordingBuilder().load().in(0x6C, 1)), 1) << wrong;
        EXPECT_TRUE(complained("cannot be understood") || complained("this cannot be done")) << wrong;
    }
}

// Windows has longer ids than the simulated computer has room for.
TEST_F(ReplayVerb, CutsLongTextsOfDevices)
{
    const std::string longText(126, 'x');
    steps("after 0 device "
          "{\"name\":\"a\",\"kind\":\"display\",\"started\":true,\"problem\":0,\"description\":\""
        + longText + "\xC3\xA4more\",\"hardwareId\":\"" + longText + "yz\",\"instanceId\":\"\"}\n");
    ASSERT_EQ(prepare(RecordingBuilder().load().in(0x6C, 1)), 0) << errors.toStdString();
    load();
    EXPECT_EQ(ports->read(0x6C), 1);
    const auto device = computer->devices().device(*computer->devices().find("a"));
    EXPECT_EQ(device.description, longText);
    EXPECT_EQ(device.hardwareId, longText + 'y');
}

TEST_F(ReplayVerb, LeavesOutDevicesForWhichThereIsNoRoom)
{
    std::string text;
    for (int number = 0; number < 20; ++number) {
        text += "after 0 device {\"name\":\"d" + std::to_string(number)
            + "\",\"kind\":\"audio\",\"started\":true,\"problem\":0,\"description\":\"\",\"hardwareId\":\"\","
              "\"instanceId\":\"\"}\n";
    }
    steps(text);
    ASSERT_EQ(prepare(RecordingBuilder().load().in(0x6C, 1)), 0) << errors.toStdString();
    EXPECT_TRUE(complained("There is no room for these devices: d16, d17, d18, d19."));
    load();
    EXPECT_EQ(ports->read(0x6C), 1);
    EXPECT_EQ(computer->devices().allSlots().size(), 16U);
    EXPECT_TRUE(state().isComplete());
}

TEST_F(ReplayVerb, SaysHowMuchOfADamagedRecordingItHas)
{
    RecordingBuilder recording;
    recording.load().in(0x6C, 1);
    recording.save(file("ec.recording"));
    std::ofstream(file("ec.recording"), std::ios::binary | std::ios::app) << "in 006c 00";
    EXPECT_EQ(runBare({QStringLiteral("--state"), stateFile,
                  QStringLiteral("replay %1").arg(folder.filePath(QStringLiteral("ec.recording")))}),
        0);
    EXPECT_TRUE(complained("damaged from line 4 on"));
    load();
    EXPECT_EQ(ports->read(0x6C), 1);
    EXPECT_TRUE(state().isComplete());
}
