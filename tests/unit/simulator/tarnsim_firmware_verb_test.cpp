#include "tarnsim_session.h"

#include "device/ec_registers.h"
#include "simulator/firmware_image.h"

#include <QFile>

class TarnsimFirmware : public tarnSimulatorTest::TarnsimSession
{
protected:
    [[nodiscard]] std::vector<std::uint8_t> made() const
    {
        QFile image(file);
        if (!image.open(QIODevice::ReadOnly))
            return {};
        const QByteArray bytes = image.readAll();
        return {bytes.begin(), bytes.end()};
    }
    int make(const QString &rest) { return runBare({QStringLiteral("firmware ") + file + rest}); }

    QString file = folder.filePath(QStringLiteral("fw.bin"));
};

TEST_F(TarnsimFirmware, MakesAnImage)
{
    EXPECT_EQ(make(QStringLiteral(" 3 4 5")), 0) << errors.toStdString();
    EXPECT_EQ(made(), tarnSimulator::makeFirmwareImage({3, 4, 5}, 16384));
    EXPECT_EQ(make(QStringLiteral(" 255 0 0x10 0x400")), 0);
    EXPECT_EQ(made(), tarnSimulator::makeFirmwareImage({255, 0, 16}, 1024));
    EXPECT_EQ(make(QStringLiteral(" 1 2 3 1048576")), 0);
    EXPECT_EQ(made().size(), 1048576U);
}

TEST_F(TarnsimFirmware, SaysWhatItTakes)
{
    for (const char *wrong : {" 1 2 256", " 1 x 3", " -1 2 3"}) {
        EXPECT_EQ(make(QString::fromUtf8(wrong)), 2) << wrong;
        EXPECT_TRUE(complained("three numbers from 0 to 255"));
    }
    for (const char *wrong : {" 1 2 3 1020", " 1 2 3 1026", " 1 2 3 1048580", " 1 2 3 big"}) {
        EXPECT_EQ(make(QString::fromUtf8(wrong)), 2) << wrong;
        EXPECT_TRUE(complained("1024 to 1048576 bytes"));
    }
    EXPECT_EQ(make(QStringLiteral(" 1 2")), 2);
    EXPECT_TRUE(complained("usage: tarnsim firmware FILE MAJOR MINOR PATCH [SIZE]"));
    EXPECT_FALSE(QFile::exists(file));
    file = folder.filePath(QStringLiteral("no/such/folder.bin"));
    EXPECT_EQ(make(QStringLiteral(" 1 2 3")), 1);
    EXPECT_TRUE(complained("cannot be written"));
}

TEST_F(TarnsimFirmware, ModeOfTheMcuIsShown)
{
    EXPECT_EQ(run(QStringLiteral("get mcu-mode")), 0);
    EXPECT_EQ(output, QStringLiteral("firmware\n"));
    computer->poke(tarnDeviceInfos::EC_MCU_UPDATE_CTRL, 0x28);
    EXPECT_EQ(run(QStringLiteral("attach kvane")), 0);
    EXPECT_EQ(run(QStringLiteral("get mcu-mode")), 0);
    EXPECT_EQ(output, QStringLiteral("boot-loader\n"));
    EXPECT_EQ(run(QStringLiteral("set mcu-mode firmware")), 2);
    EXPECT_EQ(run(QStringLiteral("show")), 0);
    EXPECT_TRUE(said("mcu-update 40, mcu-mode boot-loader"));
}
