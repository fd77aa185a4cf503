#include "end_to_end/flasher_fixture.h"

#include <algorithm>

using tarnSimulator::Fault;
using tarnSimulator::McuMode;
using tarnTest::Bytes;
using tarnTest::FlasherRun;
using tarnTest::portName;

class Flasher : public tarnTest::FlasherFixture
{ };

TEST_F(Flasher, WritesVerifiesAndStartsAFirmware)
{
    write(QStringLiteral("fw.bin"), firmware);
    enterBootLoader();
    EXPECT_EQ(version(), 20005);
    const FlasherRun run = flash();
    EXPECT_EQ(run.exitCode, 0);
    EXPECT_EQ(run.err, QString());
    EXPECT_TRUE(run.out.contains("Device ID    : 0x0410 (STM32F10xxx Medium-density)"))
        << run.out.toStdString();
    EXPECT_TRUE(run.out.contains("Wrote and verified address 0x08004000 (100.00%) Done."));
    EXPECT_TRUE(run.out.contains("Starting execution at address 0x08000000... done."));

    Bytes expected = firmware;
    expected.resize(0x20000, 0xFF);
    EXPECT_EQ(computer->mcuFlash(), expected);
    EXPECT_EQ(computer->mcuMode(), McuMode::Firmware);
    EXPECT_EQ(version(), 70102);
    startFirmware();
    EXPECT_EQ(computer->mcuMode(), McuMode::Firmware);
    EXPECT_EQ(version(), 70102);
}

// It erases only the pages that it is about to write.
TEST_F(Flasher, FillsTheWholeFlashAndTakesOddSizes)
{
    const Bytes full = tarnSimulator::makeFirmwareImage({1, 2, 3}, 0x20000);
    write(QStringLiteral("fw.bin"), full);
    enterBootLoader();
    EXPECT_EQ(flash().err, QString());
    EXPECT_EQ(computer->mcuFlash(), full);

    write(QStringLiteral("odd.bin"), Bytes(1001, 0x5A));
    enterBootLoader();
    EXPECT_EQ(flash(QStringLiteral("odd.bin")).err, QString());
    Bytes expected = full;
    std::fill_n(expected.begin(), 1024, std::uint8_t {0xFF});
    std::fill_n(expected.begin(), 1001, std::uint8_t {0x5A});
    EXPECT_EQ(computer->mcuFlash(), expected);
    startFirmware();
    EXPECT_EQ(computer->mcuMode(), McuMode::NoFirmware);
    EXPECT_EQ(version(), 0);
}

TEST_F(Flasher, PathsWithBlanksDoNotKeepTheShimOut)
{
    const QTemporaryDir other;
    const QString blanks = other.filePath(QStringLiteral("a folder"));
    ASSERT_TRUE(QFile::rename(inMcuFolder(QString()), blanks));
    ASSERT_TRUE(QDir(folder.path()).mkdir(QStringLiteral("function/MCU")));
    const FlasherRun run = [&blanks] {
        QProcess process;
        process.setWorkingDirectory(blanks);
        process.start(blanks + QStringLiteral("/stm32flash.exe"), {portName});
        process.waitForFinished(60000);
        return FlasherRun {
            process.exitCode(), QString(), QString::fromLocal8Bit(process.readAllStandardError())};
    }();
    // It has got as far as the MCU, which runs its firmware.
    EXPECT_EQ(run.err, QStringLiteral("Failed to init device, timeout.\n"));
}

TEST_F(Flasher, SaysSoWhenTheRealOneIsNotInstalled)
{
    QProcess process;
    QProcessEnvironment environment = QProcessEnvironment::systemEnvironment();
    environment.insert(QStringLiteral("PATH"), folder.path());
    process.setProcessEnvironment(environment);
    process.start(QStringLiteral("/bin/sh"), {inMcuFolder(QStringLiteral("stm32flash.exe"))});
    process.waitForFinished(60000);
    EXPECT_EQ(process.exitCode(), 127);
    EXPECT_TRUE(process.readAllStandardError().contains("stm32flash is not installed"));
}

// Failures of which the standard error says nothing: to the service these updates have worked.

TEST_F(Flasher, SilentMcuLeavesNoErrorText)
{
    const FlasherRun run = flashWith(Fault::FlashSilent);
    EXPECT_EQ(run.exitCode, 1);
    EXPECT_EQ(run.err, QString());
    EXPECT_FALSE(run.out.contains("Wrote"));
    expectRepaired();
}

TEST_F(Flasher, RefusedStartLeavesNoErrorText)
{
    const FlasherRun run = flashWith(Fault::FlashGoRefused);
    EXPECT_EQ(run.exitCode, 0);
    EXPECT_EQ(run.err, QString());
    EXPECT_TRUE(run.out.contains("Starting execution at address 0x08000000... failed."));
    EXPECT_EQ(computer->mcuMode(), McuMode::BootLoader);
    startFirmware(); // the reset afterwards starts it all the same
    EXPECT_EQ(version(), 70102);
    expectRepaired();
}

TEST_F(Flasher, EmptyAndTooLargeFilesLeaveNoErrorText)
{
    write(QStringLiteral("empty.bin"), {});
    write(QStringLiteral("large.bin"), tarnSimulator::makeFirmwareImage({1, 2, 3}, 0x20004));
    write(QStringLiteral("fw.bin"), firmware);
    for (const char *name : {"empty.bin", "large.bin"}) {
        enterBootLoader();
        const FlasherRun run = flash(QString::fromUtf8(name));
        EXPECT_EQ(run.exitCode, 0) << name;
        EXPECT_EQ(run.err, QString()) << name;
        startFirmware();
        EXPECT_EQ(computer->mcuMode(), McuMode::NoFirmware) << name; // erased, or cut off
        EXPECT_EQ(version(), 0) << name;
    }
    expectRepaired();
}

// Failures with an error text.

TEST_F(Flasher, RefusedWriteIsAnError)
{
    const FlasherRun run = flashWith(Fault::FlashWriteRefused, 8);
    EXPECT_EQ(run.exitCode, 1);
    EXPECT_EQ(run.err, QStringLiteral("Failed to write memory at address 0x08000800\n"));
    EXPECT_EQ(flash().err, run.err); // it goes on being refused
    startFirmware();
    EXPECT_EQ(version(), 0); // half a firmware is none
    expectRepaired();
}

TEST_F(Flasher, CorruptFlashFailsToVerify)
{
    const FlasherRun run = flashWith(Fault::FlashCorrupt);
    EXPECT_EQ(run.exitCode, 1);
    EXPECT_TRUE(run.err.startsWith("Failed to verify at address 0x08000300, expected 0x"))
        << run.err.toStdString();
    expectRepaired();
}

TEST_F(Flasher, UnpluggedMcuIsAnErrorEachTime)
{
    const FlasherRun run = flashWith(Fault::FlashUnplugged, 8);
    EXPECT_EQ(run.exitCode, 1);
    EXPECT_EQ(run.err,
        QStringLiteral("Failed to read ACK byte\nUnexpected reply from device on command 0x11\n"
                       "Failed to read memory at address 0x08000700\n"));
    const FlasherRun again = flash();
    EXPECT_EQ(again.exitCode, 1);
    EXPECT_EQ(again.err, QStringLiteral("Failed to init device, timeout.\n"));
    expectRepaired();
}

TEST_F(Flasher, FirmwareInsteadOfTheBootLoaderIsAnError)
{
    write(QStringLiteral("fw.bin"), firmware);
    const FlasherRun run = flash();
    EXPECT_EQ(run.exitCode, 1);
    EXPECT_EQ(run.err, QStringLiteral("Failed to init device, timeout.\n"));
    expectRepaired();
}

TEST_F(Flasher, MissingFileIsAnError)
{
    enterBootLoader();
    const FlasherRun run = flash(QStringLiteral("missing.bin"));
    EXPECT_EQ(run.exitCode, 1);
    EXPECT_TRUE(run.err.contains("missing.bin: No such file or directory")) << run.err.toStdString();
}

// A warning of a flasher that has done everything: to the service a failure, and no MCU answers its second
// try.
TEST_F(Flasher, NoiseAtTheBeginningIsAnErrorTextOfASuccess)
{
    const FlasherRun run = flashWith(Fault::FlashInitNoise);
    EXPECT_EQ(run.exitCode, 0);
    EXPECT_EQ(run.err, QStringLiteral("Warning: the interface was not closed properly.\n"));
    EXPECT_EQ(computer->mcuMode(), McuMode::Firmware);
    EXPECT_EQ(version(), 70102);
    EXPECT_EQ(flash().err, QStringLiteral("Failed to init device, timeout.\n"));
    expectRepaired();
}
