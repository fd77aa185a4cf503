#include "recording/recorded_machine.h"
#include "replay/recording_builder.h"
#include "tarnsim_session.h"

#include "accessory/ec_power_mode_manager.h"
#include "device/ec_dirver_controller_hal.h"
#include "device/ec_registers.h"
#include "device/monitor/ec_dirver_reader.h"

#include <QFile>

using namespace tarnDeviceInfos;
using tarnAccessoryManager::EcPowerModeManager;
using tarnRecording::EcRecord;
using tarnSimulator::Fault;

namespace {

// The verbs need no machine of their own; the recordings are made on another one.
class TarnsimRecording : public tarnSimulatorTest::TarnsimSession
{
protected:
    TarnsimRecording()
    {
        header.startedAt = "2026-11-23T03:12:00.123+01:00";
        header.service = "1.40";
        header.system = "linux";
    }

    // Smart charging and a profile, with looks at what is attached.
    void useEc()
    {
        EcDirverControllerHal::instance();
        EcDirverReader::instance()->pollAccessory();
        EcPowerModeManager *const power = EcPowerModeManager::instance();
        static_cast<void>(power->setSmartChargingStatus(true));
        static_cast<void>(power->getSmartChargingStatus());
        static_cast<void>(power->setEcPowerCtrlMode(PL_CTRL_MANUAL));
        static_cast<void>(power->setEcPowerModeHigh());
        EcDirverReader::instance()->pollAccessory();
    }
    [[nodiscard]] QByteArray content() const
    {
        std::string text = lineOf(header);
        for (const EcRecord &record : recorded.records)
            text += lineOf(record);
        return QByteArray::fromStdString(text);
    }
    void write(const QByteArray &bytes) const
    {
        QFile out(file);
        EXPECT_TRUE(out.open(QIODevice::WriteOnly));
        out.write(bytes);
    }
    int onFile(const char *verb, const char *options = "")
    {
        return runBare({QString::fromUtf8(verb) + QLatin1Char(' ') + file + QString::fromUtf8(options)});
    }
    // The record of the answer to the last read of a register.
    [[nodiscard]] EcRecord &answerOf(std::uint16_t address)
    {
        EcRecord *answer = nullptr;
        std::uint64_t number = 1;
        std::uint64_t wanted = 0;
        const auto decoder = recorded.decode();
        for (const auto &access : decoder.accesses()) {
            if (access.address == address && access.kind == tarnSimulator::DecodedAccess::Kind::Read)
                wanted = access.number;
        }
        for (EcRecord &record : recorded.records) {
            const bool isAnswer = record.kind == EcRecord::Kind::In && record.port == EC_DATA_PORT;
            if (!answer && isAnswer && wanted != 0 && number > wanted)
                answer = &record;
            if (record.kind == EcRecord::Kind::In || record.kind == EcRecord::Kind::Out)
                number += record.count;
        }
        EXPECT_NE(answer, nullptr);
        return *answer;
    }

    QString file = folder.filePath(QStringLiteral("ec.recording"));
    tarnRecording::RecordingHeader header;
    tarnSimulatorTest::RecordedMachine recorded;
};

} // namespace

TEST_F(TarnsimRecording, ShowsRegisterAccesses)
{
    recorded.machine.computer.setHostBattery(77);
    useEc();
    write(content());
    EXPECT_EQ(onFile("recording"), 0) << errors.toStdString();
    EXPECT_TRUE(output.startsWith("of 2026-11-23T03:12:00.123+01:00, Tarn Service 1.40, linux\n"));
    EXPECT_TRUE(said("read   0x06A0 MCU_LINK_STATUS = 0x00 (0)\n"));
    EXPECT_TRUE(said("write  0x04A7 EC_POWERMODE_PL_CTRL = 0x01 (1)\n"));
    EXPECT_TRUE(said("       0.005000  read   0x06A0")) << output.left(200).toStdString();
    EXPECT_TRUE(said("other status bits that were set: 0xFC\n"));
    EXPECT_FALSE(said("broken"));
    EXPECT_FALSE(said("cut off"));
}

TEST_F(TarnsimRecording, SumsUpEachRegister)
{
    useEc();
    write(content());
    EXPECT_EQ(onFile("recording", " --summary"), 0) << errors.toStdString();
    EXPECT_TRUE(said("0x06A0 MCU_LINK_STATUS: 2 reads, 0 writes, taken after ")) << output.toStdString();
    EXPECT_TRUE(said("    read: 0x00 x2\n"));
    EXPECT_TRUE(said("0x04A7 EC_POWERMODE_PL_CTRL: 1 reads, 1 writes"));
    EXPECT_TRUE(said("    written: 0x01\n"));
    EXPECT_FALSE(said(" = 0x"));
}

TEST_F(TarnsimRecording, TellsWhatIsOdd)
{
    useEc();
    recorded.machine.faults().switchOn(Fault::FailRead, EC_TARN_POWER_MODE);
    EcPowerModeManager::instance()->getTarnPowerMode();
    recorded.in(0x62);
    recorded.out(EC_CMD_STATUS_PORT, XDATA_READ_CMD);
    write(content());
    EXPECT_EQ(onFile("recording"), 0);
    EXPECT_TRUE(said(": a read of 0x04FE EC_TARN_POWER_MODE was not finished: no answer in 1000 looks"));
    EXPECT_TRUE(said("unknown port 0x0062: 1 accesses\n"));
    EXPECT_TRUE(said(" s the recording ends in the middle of a read\n"));
    EXPECT_EQ(onFile("compare"), 1);
    EXPECT_TRUE(said("wrong value:\n    access "));
}

TEST_F(TarnsimRecording, IsReadUpToWhereItWasCutOff)
{
    useEc();
    QByteArray bytes = content();
    bytes.chop(3);
    write(bytes);
    for (const char *verb : {"recording", "compare"}) {
        EXPECT_EQ(onFile(verb), 0) << errors.toStdString();
        EXPECT_TRUE(said("the file was cut off in line "));
    }
}

TEST_F(TarnsimRecording, FailsOnAFileThatIsDamagedInside)
{
    useEc();
    QByteArray bytes = content();
    char &digit = bytes[bytes.indexOf("in 0068 00") + 11];
    digit = digit == '8' ? '9' : '8'; // the checksum stays as it was
    write(bytes);
    for (const char *verb : {"recording", "compare"}) {
        EXPECT_EQ(onFile(verb), 1);
        EXPECT_TRUE(complained("the file is damaged in line ")) << verb;
        EXPECT_TRUE(complained("the rest was not read")) << verb;
    }
}

TEST_F(TarnsimRecording, ComparesWithoutFinding)
{
    useEc();
    write(content());
    EXPECT_EQ(onFile("compare"), 0) << output.toStdString();
    EXPECT_TRUE(said(" answers compared\n"));
    EXPECT_FALSE(said("wrong"));
    EXPECT_FALSE(said("other"));
}

TEST_F(TarnsimRecording, FindsAByteThatWasChangedByHand)
{
    useEc();
    EcRecord &limit = answerOf(EC_POWERMODE_PL1_CHECK);
    limit.value = static_cast<std::uint16_t>(limit.value + 1);
    write(content());
    EXPECT_EQ(onFile("compare"), 1);
    EXPECT_TRUE(said("wrong value:\n")) << output.toStdString();
    EXPECT_TRUE(said("0x04AB EC_POWERMODE_PL1_CHECK is "));
    EXPECT_FALSE(said("another measurement"));
}

TEST_F(TarnsimRecording, FindsAMeasurementThatWasChangedByHand)
{
    useEc();
    static_cast<void>(EcPowerModeManager::instance()->setEcPowerModeHigh());
    EcRecord &supply = answerOf(EC_POWER_SUPPLY_MODE);
    supply.value ^= 1;
    write(content());
    EXPECT_EQ(onFile("compare"), 0) << output.toStdString();
    EXPECT_TRUE(said("another measurement:\n"));
    EXPECT_TRUE(said("0x04FC EC_POWER_SUPPLY_MODE is 0x01 (1), expected 0x00 (0)"));
    EXPECT_FALSE(said("wrong value"));
}

// A file that somebody sent may differ in every line.
TEST_F(TarnsimRecording, ListsTheFirst200DifferencesOfAKind)
{
    tarnSimulatorTest::RecordingBuilder builder;
    builder.write(EC_POWERMODE_PL1, 0);
    for (std::uint8_t value = 1; value <= 230; ++value)
        builder.read(EC_POWERMODE_PL1, value);
    builder.save(file.toStdString());
    EXPECT_EQ(onFile("compare"), 1);
    EXPECT_EQ(output.count(QLatin1String("EC_POWERMODE_PL1 is ")), 200);
    EXPECT_TRUE(said("EC_POWERMODE_PL1 is 0xC8 (200), expected 0x00 (0)\n    and 30 more\n"))
        << output.toStdString();
    EXPECT_TRUE(said("230 answers compared\n"));
}

TEST_F(TarnsimRecording, PrintsNoControlCharacterOfAName)
{
    file = folder.filePath(QStringLiteral("ec\x1b[31m\n.recording"));
    for (const char *verb : {"recording", "compare"}) {
        EXPECT_EQ(onFile(verb), 1);
        EXPECT_TRUE(complained("ec\\x1B[31m\\x0A.recording\" cannot be read\n")) << errors.toStdString();
        EXPECT_FALSE(complained("\x1b"));
    }
}

TEST_F(TarnsimRecording, AllowsTimesByTheFactor)
{
    recorded.machine.faults().switchOn(Fault::Slow, 20);
    useEc();
    write(content());
    EXPECT_EQ(onFile("compare"), 0) << output.toStdString();
    EXPECT_TRUE(said("other timing:\n    access "));
    EXPECT_TRUE(said("a read was answered late, for 35 ms at least, allowed are 15 ms ("))
        << output.toStdString();
    EXPECT_EQ(onFile("compare", " --factor 7.5"), 0);
    EXPECT_FALSE(said("other timing"));
}

TEST_F(TarnsimRecording, FailsWhenNothingCanBeCompared)
{
    write(content());
    EXPECT_EQ(onFile("compare"), 1);
    EXPECT_TRUE(complained("nothing was compared"));
    EXPECT_EQ(onFile("recording"), 0);
    write("some text\n");
    for (const char *verb : {"recording", "compare"}) {
        EXPECT_EQ(onFile(verb), 1);
        EXPECT_TRUE(complained("is no recording of an EC"));
    }
    QFile::remove(file);
    EXPECT_EQ(onFile("compare"), 1);
    EXPECT_TRUE(complained("cannot be read"));
}

TEST_F(TarnsimRecording, SaysWhatItTakes)
{
    useEc();
    write(content());
    EXPECT_EQ(onFile("recording", " --all"), 2);
    EXPECT_TRUE(complained("recording takes one file, and --summary"));
    for (const char *options :
        {" --factor", " --factor 0.5", " --factor x", " --factor nan", " other", " --all"}) {
        EXPECT_EQ(onFile("compare", options), 2) << options;
        EXPECT_TRUE(complained("compare takes one file, and --factor with a number")) << options;
    }
}
