#include "accessory/graphics_colours.h"
#include "graphics/graphics_accessory_manager.h"
#include "power_mode_fixture.h"
#include "support/unprivileged.h"

#include <QDateTime>
#include <QDir>
#include <QFile>
#include <QFileInfo>

using namespace tarnDeviceInfos;
using namespace tarnAccessoryManager;
using tarnSimulator::Colour;
using tarnSimulator::Fault;
using tarnTest::Unprivileged;

namespace {

const char rgbFile[] = "graphicsRGB_config.ini";
const QStringList rgbReadBegun {
    "start to get graphics rgb setting.", "Success to write APP_EC_RGB_READ:  17 to XEC_RGB_CMD."};
const QString rgbPoll = "read ecRGBCmdData from xdata until it is 0.";

QString rgbMailbox(int value)
{
    return QString("read ecRGBCmdData from xdata successed with:  %1").arg(value);
}

QStringList rgbValues(int red, int green, int blue)
{
    return {QString("read rgbRedVer from xdata successed with:  %1").arg(red),
        QString("read rgbGreenVer from xdata successed with:  %1").arg(green),
        QString("read rgbBlueVer from xdata successed with:  %1").arg(blue)};
}

} // namespace

// The light of an attached box.
class GraphicsRgb : public tarnTest::EcLockTest
{
protected:
    GraphicsRgb()
        : manager(GraphicsAccessoryManager::instance())
    {
        EcDirverControllerHal::instance();
        machine.attach(ACCESSORY_GRAPHICS);
        machine.log.clear();
    }

    void shine(int red, int green, int blue)
    {
        machine.computer.setGraphicsLight(
            {static_cast<quint8>(red), static_cast<quint8>(green), static_cast<quint8>(blue)});
    }
    [[nodiscard]] QByteArray saved() const { return machine.folder.read(rgbFile); }
    [[nodiscard]] qsizetype complaints() const
    {
        return machine.log.lines().filter("W: The colour of the graphics box cannot be remembered in").size();
    }

    GraphicsAccessoryManager *manager;
};

struct ColourRow
{
    int number;
    const char *wireName;
    int red;
    int green;
    int blue;
    const char *readText;
};

class GraphicsColours : public GraphicsRgb, public ::testing::WithParamInterface<ColourRow>
{
protected:
    // Off is never remembered.
    [[nodiscard]] static QByteArray expectedFile()
    {
        return GetParam().number == 7
            ? QByteArray()
            : QByteArray("[General]\ngraphicsColor=" + QByteArray::number(GetParam().number) + '\n');
    }
};

TEST_P(GraphicsColours, AreRecognised)
{
    const ColourRow &row = GetParam();
    shine(row.red, row.green, row.blue);
    EXPECT_EQ(manager->getGraphicsRgb(), row.number);
    EXPECT_EQ(machine.log.lines(),
        rgbReadBegun + QStringList({rgbMailbox(0)}) + rgbValues(row.red, row.green, row.blue)
            + QStringList({row.readText}));
    EXPECT_EQ(saved(), expectedFile());
    EXPECT_TRUE(lockHeldThroughout());
}

TEST_P(GraphicsColours, AreSet)
{
    const ColourRow &row = GetParam();
    EXPECT_EQ(manager->setGraphicsRgb(row.number), 0);
    const Colour light = machine.computer.graphicsLight();
    EXPECT_EQ(light.red, row.red);
    EXPECT_EQ(light.green, row.green);
    EXPECT_EQ(light.blue, row.blue);
    EXPECT_EQ(machine.log.lines(),
        QStringList({"begin to set graphics rgb.",
            QString("Success to write rgbColorRed:  %1 to XEC_RGB_RED.").arg(row.red),
            QString("Success to write rgbColorGreen:  %1 to XEC_RGB_GREEN.").arg(row.green),
            QString("Success to write rgbColorBlue:  %1 to XEC_RGB_BLUE.").arg(row.blue),
            "Success to write APP_EC_RGB_WRITE:  18 to XEC_RGB_CMD.",
            QString("Set graphics rgb color successed： %1").arg(row.number)}));
    EXPECT_EQ(saved(), expectedFile());
    EXPECT_TRUE(lockHeldThroughout());
}

TEST_P(GraphicsColours, HaveTheirNamesOnTheWire)
{
    EXPECT_STREQ(graphicsColours[GetParam().number].wireName, GetParam().wireName);
}

INSTANTIATE_TEST_SUITE_P(Table, GraphicsColours,
    ::testing::Values(ColourRow {0, "white", 255, 255, 255, "Graphics RGB is white."},
        ColourRow {1, "red", 230, 0, 18, "Graphics RGB is red."},
        ColourRow {2, "yellow", 248, 182, 45, "Graphics RGB is yellow."},
        ColourRow {3, "green", 143, 195, 31, "Graphics RGB is green."},
        ColourRow {4, "cyan", 0, 255, 255, "Graphics RGB is cyan."},
        ColourRow {5, "blue", 30, 149, 212, "Graphics RGB is blue."},
        ColourRow {6, "purplishred", 255, 0, 255, "Graphics RGB is purplish red."},
        ColourRow {7, "shutdown", 0, 0, 0, "Graphics RGB is close."}));

TEST_F(GraphicsRgb, IsReadWithItsOwnPauses)
{
    shine(230, 0, 18);
    EXPECT_EQ(manager->getGraphicsRgb(), 1);
    EXPECT_EQ(machine.timeline(),
        QStringList({"20 W 04B0 11", "50 R 04B0 00", "80 R 04B1 E6", "130 R 04B2 00", "160 R 04B3 12"}));
}

TEST_F(GraphicsRgb, IsSetWithItsOwnPauses)
{
    EXPECT_EQ(manager->setGraphicsRgb(1), 0);
    EXPECT_EQ(
        machine.timeline(), QStringList({"20 W 04B1 E6", "50 W 04B2 00", "80 W 04B3 12", "110 W 04B0 12"}));
}

TEST_F(GraphicsRgb, AShadeThatIsNotOfTheTableIsOffAndNotRemembered)
{
    machine.folder.write(rgbFile, "[General]\ngraphicsColor=3\n");
    shine(255, 255, 0);
    EXPECT_EQ(manager->getGraphicsRgb(), 7);
    EXPECT_EQ(machine.log.lines().last(),
        "ec operation successed but get graphics rgb failed with wrong rgbver or rgb is down.");
    EXPECT_EQ(manager->readGraphicsColor(), 3);
}

TEST_F(GraphicsRgb, AMailboxThatClearsLateIsPolled)
{
    machine.state->timing.mailboxBusyMs = 100; // from its command at 20 on
    EXPECT_EQ(manager->getGraphicsRgb(), 0);
    EXPECT_EQ(machine.timeline().mid(0, 4),
        QStringList({"20 W 04B0 11", "50 R 04B0 11", "120 R 04B0 00", "150 R 04B1 FF"}));
    EXPECT_EQ(
        machine.log.lines().mid(2, 3), QStringList({rgbMailbox(APP_EC_RGB_READ), rgbPoll, rgbMailbox(0)}));
}

TEST_F(GraphicsRgb, AMailboxThatNeverClearsIsGivenUpAndTheColourReadAllTheSame)
{
    machine.faults().switchOn(Fault::MailboxStuck);
    EXPECT_EQ(manager->getGraphicsRgb(), 0);
    EXPECT_EQ(machine.traffic().filter("R 04B0 11").size(), 11);
    EXPECT_EQ(machine.log.count(rgbPoll), 10);
}

TEST_F(GraphicsRgb, AFailedLookAtTheMailboxCountsAsNotFinished)
{
    machine.faults().switchOn(Fault::FailRead, XEC_RGB_CMD);
    EXPECT_EQ(manager->getGraphicsRgb(), 0);
    EXPECT_EQ(machine.log.count("W: read ecRGBCmdData from xdata failed."), 11);
}

TEST_F(GraphicsRgb, ACommandThatCannotBeWrittenFails)
{
    machine.faults().switchOn(Fault::FailWrite, XEC_RGB_CMD);
    EXPECT_EQ(manager->getGraphicsRgb(), -1);
    EXPECT_TRUE(machine.traffic().isEmpty());
    EXPECT_EQ(machine.log.lines().last(), "W: Failed to write APP_EC_RGB_READ:  17 to XEC_RGB_CMD. ");
}

struct ColourRegister
{
    quint16 address;
    const char *readFailed;
    const char *writeFailed;
    int before; // accesses that go well
};

class GraphicsRgbFailure : public GraphicsRgb, public ::testing::WithParamInterface<ColourRegister>
{ };

TEST_P(GraphicsRgbFailure, EndsTheReading)
{
    machine.faults().switchOn(Fault::FailRead, GetParam().address);
    EXPECT_EQ(manager->getGraphicsRgb(), -2);
    EXPECT_EQ(machine.log.lines().last(), QString("W: ") + GetParam().readFailed);
    EXPECT_EQ(machine.traffic().size(), 2 + GetParam().before);
    EXPECT_TRUE(saved().isEmpty());
}

TEST_P(GraphicsRgbFailure, EndsTheSettingBeforeTheCommand)
{
    machine.faults().switchOn(Fault::FailWrite, GetParam().address);
    EXPECT_EQ(manager->setGraphicsRgb(1), -2);
    EXPECT_EQ(machine.log.lines().last(), QString("W: ") + GetParam().writeFailed);
    EXPECT_EQ(machine.traffic().size(), GetParam().before);
    EXPECT_TRUE(saved().isEmpty());
}

INSTANTIATE_TEST_SUITE_P(Bytes, GraphicsRgbFailure,
    ::testing::Values(ColourRegister {XEC_RGB_RED, "read rgbRedVer from xdata failed.",
                          "Failed to write rgbColorRed:  230 to XEC_RGB_RED. ", 0},
        ColourRegister {XEC_RGB_GREEN, "read rgbGreenVer from xdata failed.",
            "Failed to write rgbColorGreen:  0 to XEC_RGB_GREEN. ", 1},
        ColourRegister {XEC_RGB_BLUE, "read rgbBlueVer from xdata failed.",
            "Failed to write rgbColorBlue:  18 to XEC_RGB_BLUE. ", 2}));

TEST_F(GraphicsRgb, AFailedCommandAfterTheColourFails)
{
    machine.faults().switchOn(Fault::FailWrite, XEC_RGB_CMD);
    EXPECT_EQ(manager->setGraphicsRgb(1), -2);
    EXPECT_EQ(machine.log.lines().last(), "W: Failed to write APP_EC_RGB_WRITE:  18 to XEC_RGB_CMD. ");
    EXPECT_TRUE(saved().isEmpty());
}

TEST_F(GraphicsRgb, ColoursOutsideTheTableAreRefused)
{
    for (const int colour : {-1, 8, 255}) {
        machine.log.clear();
        EXPECT_EQ(manager->setGraphicsRgb(colour), -1);
        EXPECT_EQ(machine.log.lines(),
            QStringList({"begin to set graphics rgb.", "Set graphics rgb with wrong color!"}));
    }
    EXPECT_TRUE(machine.traffic().isEmpty());
}

TEST_F(GraphicsRgb, OffKeepsTheRememberedColour)
{
    EXPECT_EQ(manager->setGraphicsRgb(5), 0);
    EXPECT_EQ(manager->setGraphicsRgb(7), 0);
    EXPECT_EQ(machine.computer.graphicsLight().toWord(), 0U);
    EXPECT_EQ(manager->readGraphicsColor(), 5);
}

// The monitor and every other user of the EC wait while the file goes to the disk.
TEST_F(GraphicsRgb, IsNotSavedAgainWhenItIsRememberedAlready)
{
    ASSERT_EQ(manager->setGraphicsRgb(1), 0);
    const QDateTime longAgo = QDateTime::fromSecsSinceEpoch(1000000000);
    QFile file(machine.folder.path(rgbFile));
    ASSERT_TRUE(file.open(QIODevice::ReadWrite) && file.setFileTime(longAgo, QFile::FileModificationTime));
    file.close();
    EXPECT_EQ(manager->setGraphicsRgb(1), 0);
    EXPECT_EQ(manager->getGraphicsRgb(), 1);
    EXPECT_EQ(QFileInfo(file.fileName()).lastModified(), longAgo);
    EXPECT_EQ(manager->setGraphicsRgb(2), 0);
    EXPECT_EQ(saved(), "[General]\ngraphicsColor=2\n");
}

// White is also what an absent colour reads as.
TEST_F(GraphicsRgb, WhiteIsSavedLikeEveryColour)
{
    machine.folder.write(rgbFile, "[General]\ngraphicsColor=9\n");
    EXPECT_EQ(manager->setGraphicsRgb(0), 0);
    EXPECT_EQ(saved(), "[General]\ngraphicsColor=0\n");
}

class RememberedColour : public GraphicsRgb,
                         public ::testing::WithParamInterface<std::pair<const char *, int>>
{ };

TEST_P(RememberedColour, IsWhiteWhenInDoubt)
{
    machine.folder.write(rgbFile, GetParam().first);
    EXPECT_EQ(manager->readGraphicsColor(), GetParam().second);
}

INSTANTIATE_TEST_SUITE_P(Files, RememberedColour,
    ::testing::Values(std::pair {"[General]\ngraphicsColor=6\n", 6}, std::pair {"graphicsColor=2\n", 2},
        std::pair {"[General]\r\ngraphicsColor=4\r\n", 4}, std::pair {"[General]\ngraphicsColor=7\n", 0},
        std::pair {"[General]\ngraphicsColor=9\n", 0}, std::pair {"[General]\ngraphicsColor=-1\n", 0},
        std::pair {"[General]\ngraphicsColor=red\n", 0}, std::pair {"[General]\ngraphicsColor=\n", 0},
        std::pair {"[Other]\ngraphicsColor=3\n", 0}, std::pair {"\xFF\xFE[[[", 0}, std::pair {"", 0}));

TEST_F(GraphicsRgb, ARememberedColourIsWhiteWithoutAFile)
{
    EXPECT_EQ(manager->readGraphicsColor(), 0);
}

TEST_F(GraphicsRgb, AColourThatCannotBeRememberedIsSetAllTheSame)
{
    QDir(machine.folder.path(".")).mkpath(rgbFile); // a folder in the file's place
    EXPECT_EQ(manager->setGraphicsRgb(3), 0);
    EXPECT_TRUE(
        machine.log.lines().last().startsWith("W: The colour of the graphics box cannot be remembered in"));
    EXPECT_EQ(manager->readGraphicsColor(), 0);
}

// A file that cannot be replaced either, in a folder that cannot be written to.
class ColourFileThatCannotBeWritten : public GraphicsRgb
{
protected:
    ColourFileThatCannotBeWritten()
    {
        machine.folder.write(rgbFile, "[General]\ngraphicsColor=4\n");
        setModes(0444, 0555);
    }
    ~ColourFileThatCannotBeWritten() override { setModes(0644, 0755); }

    void setModes(unsigned ofFile, unsigned ofFolder)
    {
        tarnTest::setMode(machine.folder.path(rgbFile), ofFile);
        tarnTest::setMode(machine.folder.path("."), ofFolder);
    }
    void set(int colour)
    {
        const Unprivileged unprivileged;
        EXPECT_EQ(manager->setGraphicsRgb(colour), 0);
    }
};

TEST_F(ColourFileThatCannotBeWritten, IsReportedEachTime)
{
    for (int time = 1; time <= 3; ++time) {
        set(5);
        EXPECT_EQ(complaints(), time);
    }
    EXPECT_EQ(saved(), "[General]\ngraphicsColor=4\n");
}

TEST_F(ColourFileThatCannotBeWritten, IsWrittenAsSoonAsItCanBe)
{
    set(5);
    setModes(0644, 0755);
    set(5);
    EXPECT_EQ(saved(), "[General]\ngraphicsColor=5\n");
    EXPECT_EQ(complaints(), 1);
}

// A colour that could not be written must not be restored later.
TEST_F(ColourFileThatCannotBeWritten, NeedsNoWritingForTheColourThatItHolds)
{
    set(5);
    set(4);
    EXPECT_EQ(complaints(), 1);
    EXPECT_EQ(manager->readGraphicsColor(), 4);
    setModes(0644, 0755);
    set(4);
    EXPECT_EQ(saved(), "[General]\ngraphicsColor=4\n");
}

class GarbledColourFile : public GraphicsRgb, public ::testing::WithParamInterface<const char *>
{ };

TEST_P(GarbledColourFile, IsPutRightWithoutAComplaint)
{
    machine.folder.write(rgbFile, GetParam());
    EXPECT_EQ(manager->setGraphicsRgb(3), 0);
    EXPECT_EQ(complaints(), 0);
    EXPECT_EQ(manager->readGraphicsColor(), 3);
    EXPECT_TRUE(saved().contains("graphicsColor=3\n"));
    EXPECT_EQ(manager->getGraphicsRgb(), 3);
    EXPECT_EQ(complaints(), 0);
}

INSTANTIATE_TEST_SUITE_P(Contents, GarbledColourFile,
    ::testing::Values("\xFF\xFE[[[", "no key\n", "[General\ngraphicsColor=3\n", "[Other]\ngraphicsColor=3\n",
        "[General]\ngraphicsColor=33\n", "[General]\ngraphicsColor=9\ngraphicsColor\n"));
