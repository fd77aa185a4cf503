#include "panel/computer/machine_drawing.h"
#include "panel/look/theme.h"
#include "unit/panel/computer/panel_machine.h"

#include <QSet>

using namespace tarnPanel;
using namespace tarnPanelTest;
using namespace tarnSimulator;

namespace {

QImage pictureOf(MachineDrawing &drawing, const ComputerControl &computer)
{
    drawing.show(factsOf(computer));
    return drawing.grab().toImage().convertToFormat(QImage::Format_RGB32);
}

QSet<QRgb> coloursOf(const QImage &image)
{
    QSet<QRgb> colours;
    for (int y = 0; y < image.height(); ++y) {
        for (int x = 0; x < image.width(); ++x)
            colours.insert(image.pixel(x, y));
    }
    return colours;
}

bool plug(ComputerControl &computer, const char *name)
{
    const Accessory *accessory = findAccessory(std::string_view(name));
    if (accessory != nullptr)
        computer.attach(*accessory);
    return accessory != nullptr;
}

class MachineDrawingTest : public PanelMachine
{
protected:
    void SetUp() override
    {
        PanelMachine::SetUp();
        setAppearance(Appearance::Light);
        drawing.resize(440, 170);
    }

    MachineDrawing drawing;
};

} // namespace

TEST_F(MachineDrawingTest, IsNotBlankAndEveryStateLooksDifferent)
{
    QList<QImage> pictures {pictureOf(drawing, *computer)};
    EXPECT_GT(coloursOf(pictures.first()).size(), 30);
    for (const char *name : {"dock", "graphics", "graphics16g", "kvane"}) {
        ASSERT_TRUE(plug(*computer, name));
        pictures << pictureOf(drawing, *computer);
    }
    computer->attach(unknownAccessory(9));
    pictures << pictureOf(drawing, *computer);
    setAppearance(Appearance::Dark);
    drawing.setPalette(QPalette());
    pictures << pictureOf(drawing, *computer);
    for (int one = 0; one < pictures.size(); ++one) {
        for (int other = one + 1; other < pictures.size(); ++other)
            EXPECT_NE(pictures.at(one), pictures.at(other)) << one << " and " << other;
    }
}

// The last line of the accessory with the most.
TEST_F(MachineDrawingTest, ShowsEveryLineInTheSmallestWindow)
{
    const int line = drawing.fontMetrics().height();
    drawing.resize(420, line * 6);
    ASSERT_TRUE(plug(*computer, "kvane"));
    const QImage firmware = pictureOf(drawing, *computer);
    MachineFacts flashing = factsOf(*computer);
    flashing.mcu = McuMode::BootLoader;
    drawing.show(flashing);
    EXPECT_NE(drawing.grab().toImage().convertToFormat(QImage::Format_RGB32), firmware);
}

TEST_F(MachineDrawingTest, ShowsTheLightInTheColourThatTheEcHas)
{
    ASSERT_TRUE(plug(*computer, "graphics"));
    computer->setGraphicsLight({0x12, 0xD0, 0x47});
    EXPECT_TRUE(coloursOf(pictureOf(drawing, *computer)).contains(qRgb(0x12, 0xD0, 0x47)));
    computer->setGraphicsLight({0x90, 0x11, 0xC3});
    const QSet<QRgb> colours = coloursOf(pictureOf(drawing, *computer));
    EXPECT_TRUE(colours.contains(qRgb(0x90, 0x11, 0xC3)));
    EXPECT_FALSE(colours.contains(qRgb(0x12, 0xD0, 0x47)));
}

TEST_F(MachineDrawingTest, ShowsLightsBatteriesGpuAndMcu)
{
    const auto changes = [this](const auto &change) {
        const QImage before = pictureOf(drawing, *computer);
        change();
        return pictureOf(drawing, *computer) != before;
    };
    EXPECT_TRUE(changes([this] { computer->setHostBattery(5); }));
    EXPECT_TRUE(changes([this] { computer->setHostCharging(0); }));
    EXPECT_TRUE(changes([this] { computer->setPowerSupplyMode(3); }));
    ASSERT_TRUE(plug(*computer, "dock"));
    EXPECT_TRUE(changes([this] { computer->setDockLight({0, 0, 0}); }));
    EXPECT_TRUE(changes([this] { computer->setDockLight({1, 0, 0}); }));
    ASSERT_TRUE(plug(*computer, "kvane"));
    EXPECT_TRUE(changes([this] { computer->setKvaneLed(20); }));
    EXPECT_TRUE(changes([this] { computer->setKvaneLed(200); }));
    EXPECT_TRUE(changes([this] { computer->setKvaneBattery(7); }));
    EXPECT_TRUE(changes([this] { computer->setKvaneCharging(tarnDeviceInfos::KVANE_CHARGING_BIT); }));
    ASSERT_TRUE(plug(*computer, "graphics"));
    const std::int32_t gpu = *computer->devices().find("gpu");
    EXPECT_TRUE(changes([this, gpu] { computer->devices().enable(gpu); }));
}

TEST_F(MachineDrawingTest, SaysTheSameInWords)
{
    const auto words = [this] {
        drawing.show(factsOf(*computer));
        return drawing.accessibleDescription();
    };
    EXPECT_TRUE(words().contains(QStringLiteral("Battery 80 %, charging"))) << words().toStdString();
    EXPECT_TRUE(words().contains(QStringLiteral("Nothing is plugged in")));
    ASSERT_TRUE(plug(*computer, "graphics"));
    computer->setGraphicsLight({1, 2, 3});
    EXPECT_TRUE(words().contains(QStringLiteral("Graphics box"))) << words().toStdString();
    EXPECT_TRUE(words().contains(QStringLiteral("GPU: stopped")));
    EXPECT_TRUE(words().contains(QStringLiteral("Light: 1,2,3")));
    Device gpu = computer->devices().device(*computer->devices().find("gpu"));
    gpu.started = false;
    gpu.problem = 43;
    computer->devices().store(*computer->devices().find("gpu"), gpu);
    EXPECT_TRUE(words().contains(QStringLiteral("GPU: driver problem 43"))) << words().toStdString();
    ASSERT_TRUE(plug(*computer, "kvane"));
    computer->setKvaneBattery(7);
    EXPECT_TRUE(words().contains(QStringLiteral("Plugged in: KVane. Battery 7 %. Light: ")))
        << words().toStdString();
    EXPECT_TRUE(words().contains(QStringLiteral("MCU: firmware runs"))) << words().toStdString();
    computer->attach(unknownAccessory(9));
    EXPECT_TRUE(words().contains(QStringLiteral("Unknown device 9")));
    computer->setLinkStatus(0);
    EXPECT_TRUE(words().contains(QStringLiteral("Nothing is plugged in")));
}

TEST_F(MachineDrawingTest, UnplugsByConnectorDeleteKeyAndPullingOff)
{
    ASSERT_TRUE(plug(*computer, "dock"));
    drawing.show(factsOf(*computer));
    drawing.show();
    int unplugged = 0;
    QObject::connect(&drawing, &MachineDrawing::unplugWanted, &drawing, [&unplugged] { ++unplugged; });
    QTest::mouseClick(&drawing, Qt::LeftButton, {}, drawing.connectorArea().center());
    EXPECT_EQ(unplugged, 1);
    QTest::keyClick(&drawing, Qt::Key_Delete);
    EXPECT_EQ(unplugged, 2);

    const QPoint start = drawing.accessoryArea().center();
    QTest::mouseClick(&drawing, Qt::LeftButton, {}, start);
    EXPECT_EQ(unplugged, 2) << "a click on the accessory pulls nothing";
    QTest::mousePress(&drawing, Qt::LeftButton, {}, start);
    QTest::mouseMove(&drawing, start + QPoint(60, 60));
    QTest::mouseRelease(&drawing, Qt::LeftButton, {}, start + QPoint(60, 60));
    EXPECT_EQ(unplugged, 3);
    QTest::mousePress(&drawing, Qt::LeftButton, {}, start);
    QTest::mouseMove(&drawing, start + QPoint(60, 60));
    QTest::keyClick(&drawing, Qt::Key_Escape);
    QTest::mouseRelease(&drawing, Qt::LeftButton, {}, start + QPoint(60, 60));
    EXPECT_EQ(unplugged, 3);
}
