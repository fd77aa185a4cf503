#include "panel/computer/accessory_button.h"
#include "panel/computer/machine_drawing.h"
#include "simulator/accessory_catalog.h"
#include "simulator/tool/tool_text.h"
#include "unit/panel/computer/panel_machine.h"

#include <QPushButton>

using namespace tarnPanel;
using namespace tarnPanelTest;
using namespace tarnSimulator;

namespace {

class AccessoryRowTest : public PanelMachine
{
protected:
    void SetUp() override
    {
        PanelMachine::SetUp();
        openSide();
    }

    [[nodiscard]] AccessoryButton *button(const QString &name) const
    {
        return find<AccessoryButton>(QStringLiteral("accessory-") + name);
    }

    void drag(AccessoryButton *from, QWidget *to, bool isCancelled = false)
    {
        QTest::mousePress(from, Qt::LeftButton, {}, from->rect().center());
        const QPoint target = from->mapFromGlobal(to->mapToGlobal(to->rect().center()));
        QTest::mouseMove(from, from->rect().center() + QPoint(30, 0));
        QTest::mouseMove(from, target);
        if (isCancelled)
            QTest::keyClick(from, Qt::Key_Escape);
        QTest::mouseRelease(from, Qt::LeftButton, {}, target);
    }
};

} // namespace

TEST_F(AccessoryRowTest, AClickPlugsInEachAccessory)
{
    for (const Accessory &accessory : accessoryCatalog()) {
        const QString name = toQString(accessory.name);
        ASSERT_NE(button(name), nullptr) << accessory.name;
        QTest::mouseClick(button(name), Qt::LeftButton);
        EXPECT_EQ(linkedAccessory(file->state()), accessory.code);
        EXPECT_EQ(lastCommand(), QStringLiteral("attach %1").arg(name));
        EXPECT_TRUE(button(name)->isChecked());
    }
    QTest::mouseClick(button(QStringLiteral("unknown")), Qt::LeftButton);
    EXPECT_TRUE(computer->isAttached());
    EXPECT_EQ(findAccessory(linkedAccessory(file->state())), nullptr);
    EXPECT_TRUE(button(QStringLiteral("unknown"))->isChecked());
    EXPECT_FALSE(button(QStringLiteral("kvane"))->isChecked());
    QTest::mouseClick(button(QStringLiteral("nothing")), Qt::LeftButton);
    EXPECT_FALSE(computer->isAttached());
    EXPECT_EQ(lastCommand(), QStringLiteral("detach"));
    EXPECT_TRUE(button(QStringLiteral("nothing"))->isChecked());
}

TEST_F(AccessoryRowTest, TheKeyboardPlugsIn)
{
    QTest::keyClick(button(QStringLiteral("dock")), Qt::Key_Space);
    EXPECT_EQ(linkedAccessory(file->state()), tarnDeviceInfos::ACCESSORY_DOCK);
}

TEST_F(AccessoryRowTest, ADropOnTheComputerPlugsIn)
{
    auto *drawing = find<MachineDrawing>(QStringLiteral("machineDrawing"));
    drag(button(QStringLiteral("kvane")), drawing);
    EXPECT_EQ(linkedAccessory(file->state()), tarnDeviceInfos::ACCESSORY_KVANE);
    EXPECT_EQ(commandCount(), 1);
    drag(button(QStringLiteral("dock")), find<QWidget>(QStringLiteral("registers")));
    EXPECT_EQ(linkedAccessory(file->state()), tarnDeviceInfos::ACCESSORY_KVANE) << "dropped elsewhere";
    drag(button(QStringLiteral("dock")), drawing, true);
    EXPECT_EQ(linkedAccessory(file->state()), tarnDeviceInfos::ACCESSORY_KVANE) << "cancelled";
    EXPECT_EQ(commandCount(), 1);
}

// The mouse has left the button before the movement is long enough for a drag.
TEST_F(AccessoryRowTest, ASlowDragFromTheEdgePlugsInToo)
{
    auto *drawing = find<MachineDrawing>(QStringLiteral("machineDrawing"));
    AccessoryButton *from = button(QStringLiteral("dock"));
    const QPoint edge(from->width() / 2, 2);
    QTest::mousePress(from, Qt::LeftButton, {}, edge);
    for (int step = 1; step <= 20; ++step)
        QTest::mouseMove(from, edge - QPoint(0, 2 * step));
    const QPoint target = from->mapFromGlobal(drawing->mapToGlobal(drawing->rect().center()));
    QTest::mouseMove(from, target);
    QTest::mouseRelease(from, Qt::LeftButton, {}, target);
    EXPECT_EQ(linkedAccessory(file->state()), tarnDeviceInfos::ACCESSORY_DOCK);
    EXPECT_EQ(commandCount(), 1);
}

TEST_F(AccessoryRowTest, AfterEscapeTheRestOfADragIsNoClick)
{
    AccessoryButton *from = button(QStringLiteral("dock"));
    const QPoint inside = from->rect().center();
    QTest::mousePress(from, Qt::LeftButton, {}, inside);
    QTest::mouseMove(from, inside + QPoint(30, 0));
    QTest::keyClick(from, Qt::Key_Escape);
    QTest::mouseMove(from, inside);
    QTest::mouseRelease(from, Qt::LeftButton, {}, inside);
    EXPECT_EQ(commandCount(), 0);
    QTest::mouseClick(from, Qt::LeftButton);
    EXPECT_EQ(commandCount(), 1);
}

TEST_F(AccessoryRowTest, TheConnectorIsClickedOnlyWhereItWasPressed)
{
    QTest::mouseClick(button(QStringLiteral("dock")), Qt::LeftButton);
    auto *drawing = find<MachineDrawing>(QStringLiteral("machineDrawing"));
    QTest::mousePress(drawing, Qt::LeftButton, {}, QPoint(2, 2));
    QTest::mouseRelease(drawing, Qt::LeftButton, {}, drawing->connectorArea().center());
    EXPECT_TRUE(computer->isAttached());
}

TEST_F(AccessoryRowTest, TheKeySaysWhetherTheUserIsAsked)
{
    QTest::mouseClick(button(QStringLiteral("graphics16g")), Qt::LeftButton);
    auto *key = find<QPushButton>(QStringLiteral("gpuKey"));
    computer->desktop().setAnswer(1);
    EXPECT_TRUE(
        soon([key] { return key->accessibleDescription().contains(QStringLiteral("answers at once")); }));
    computer->desktop().setAnswer(Desktop::waits);
    EXPECT_TRUE(
        soon([key] { return key->accessibleDescription().contains(QStringLiteral("comes up here")); }));
}

TEST_F(AccessoryRowTest, TheComputerUnplugs)
{
    QTest::mouseClick(button(QStringLiteral("dock")), Qt::LeftButton);
    auto *drawing = find<MachineDrawing>(QStringLiteral("machineDrawing"));
    QTest::mouseClick(drawing, Qt::LeftButton, {}, drawing->connectorArea().center());
    EXPECT_FALSE(computer->isAttached());
    EXPECT_EQ(lastCommand(), QStringLiteral("detach"));
}

TEST_F(AccessoryRowTest, TheKeyNeedsAGraphicsBoxAndSaysSo)
{
    auto *key = find<QPushButton>(QStringLiteral("gpuKey"));
    EXPECT_FALSE(key->isEnabled());
    EXPECT_TRUE(key->accessibleDescription().contains(QStringLiteral("Only a graphics box")));
    QTest::mouseClick(button(QStringLiteral("graphics16g")), Qt::LeftButton);
    ASSERT_TRUE(key->isEnabled());
    QTest::mouseClick(key, Qt::LeftButton);
    ASSERT_EQ(computer->armedEvents().size(), 1U);
    EXPECT_EQ(computer->armedEvents().front().code, ComputerControl::gpuKeyEvent.code);
    EXPECT_EQ(lastCommand(), QStringLiteral("press-gpu-key"));
}

TEST_F(AccessoryRowTest, FollowsWhatOthersPlugIn)
{
    computer->attach(*findAccessory("dock"));
    EXPECT_TRUE(soon([this] { return button(QStringLiteral("dock"))->isChecked(); }));
}
