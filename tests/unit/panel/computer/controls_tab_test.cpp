#include "panel/computer/controls_tab.h"
#include "panel/computer/value_names.h"
#include "simulator/tool/tool_text.h"
#include "simulator/value_text.h"
#include "unit/panel/computer/panel_machine.h"

#include <QApplication>
#include <QCheckBox>
#include <QComboBox>
#include <QLabel>
#include <QLineEdit>
#include <QSlider>
#include <QSpinBox>
#include <QTabWidget>
#include <QWheelEvent>

using namespace tarnPanel;
using namespace tarnPanelTest;
using namespace tarnSimulator;

namespace {

class ControlsTabTest : public PanelMachine
{
protected:
    void SetUp() override
    {
        PanelMachine::SetUp();
        openSide({440, 820});
    }

    template <typename Widget> [[nodiscard]] Widget *control(const QString &name) const
    {
        return find<Widget>(QStringLiteral("value-") + name);
    }

    [[nodiscard]] QString now(const QString &name) const
    {
        return toQString(findMachineValue(name.toStdString())->read(*computer));
    }

    void type(const QString &name, const QString &text) const
    {
        auto *line = control<QLineEdit>(name);
        line->setFocus();
        line->selectAll();
        QTest::keyClicks(line, text);
        QTest::keyClick(line, Qt::Key_Return);
    }
};

// Another text than the value has, of those that its line takes.
QString otherText(const MachineValue &value, const QString &now)
{
    if (value.allowed.find("RED") != std::string_view::npos)
        return QStringLiteral("7,8,9");
    if (value.allowed.find("hexadecimal") != std::string_view::npos)
        return QStringLiteral("0102030405A6B7");
    return now == QStringLiteral("3") ? QStringLiteral("2") : QStringLiteral("3");
}

} // namespace

TEST_F(ControlsTabTest, HasEveryValueOnceAndEachHasANameOfItsOwn)
{
    QStringList titles;
    for (const MachineValue &value : machineValues()) {
        EXPECT_NE(control<QWidget>(toQString(value.name)), nullptr) << value.name;
        EXPECT_FALSE(titles.contains(titleOf(value))) << value.name;
        titles << titleOf(value);
    }
    EXPECT_EQ(titleOf(*findMachineValue("kvane-battery")), QStringLiteral("KVane battery"));
    EXPECT_EQ(titleOf(*findMachineValue("eeprom-ms")), QStringLiteral("EEPROM (ms)"));
}

TEST_F(ControlsTabTest, TheWheelChangesNothingInPassing)
{
    auto *slider = control<QSlider>(QStringLiteral("battery"));
    ASSERT_FALSE(slider->hasFocus());
    const QPointF place(5, 5);
    QWheelEvent wheel(
        place, slider->mapToGlobal(place), {}, {0, 120}, Qt::NoButton, {}, Qt::NoScrollPhase, false);
    QApplication::sendEvent(slider, &wheel);
    EXPECT_EQ(computer->peek(tarnDeviceInfos::EC_TARN_BATTERY_NUM), 80);
    EXPECT_EQ(commandCount(), 0);
    EXPECT_FALSE(wheel.isAccepted());
}

TEST_F(ControlsTabTest, EveryLineChangesItsValueAndShowsIt)
{
    int tried = 0;
    for (const MachineValue &value : machineValues()) {
        if (kindOf(value) != ValueKind::Text)
            continue;
        const QString name = toQString(value.name);
        ASSERT_NE(control<QLineEdit>(name), nullptr) << value.name;
        EXPECT_EQ(control<QLineEdit>(name)->text(), now(name)) << value.name;
        const QString text = otherText(value, now(name));
        const int before = commandCount();
        type(name, text);
        EXPECT_EQ(now(name), text) << value.name;
        EXPECT_EQ(lastCommand(), QStringLiteral("set %1 %2").arg(name, text));
        EXPECT_EQ(commandCount(), before + 1) << value.name;
        ++tried;
    }
    EXPECT_GT(tried, 12);
}

TEST_F(ControlsTabTest, EverySwitchChangesItsValueAndShowsIt)
{
    int tried = 0;
    for (const MachineValue &value : machineValues()) {
        if (kindOf(value) != ValueKind::Switch)
            continue;
        const QString name = toQString(value.name);
        auto *box = control<QCheckBox>(name);
        ASSERT_NE(box, nullptr) << value.name;
        for (int turn = 0; turn < 2; ++turn) {
            const bool wasOn = box->isChecked();
            EXPECT_EQ(isOn(value, now(name)), wasOn) << value.name;
            QTest::keyClick(box, Qt::Key_Space);
            EXPECT_EQ(isOn(value, now(name)), !wasOn) << value.name;
            EXPECT_EQ(box->isChecked(), !wasOn) << value.name;
            EXPECT_EQ(
                lastCommand(), QStringLiteral("set %1 %2").arg(name, QLatin1String(wasOn ? "off" : "on")));
        }
        ++tried;
    }
    EXPECT_EQ(tried, 3);
}

TEST_F(ControlsTabTest, EveryLevelChangesItsValueBySliderAndByNumber)
{
    int tried = 0;
    for (const MachineValue &value : machineValues()) {
        if (kindOf(value) != ValueKind::Level)
            continue;
        const QString name = toQString(value.name);
        auto *slider = control<QSlider>(name);
        auto *number = find<QSpinBox>(QStringLiteral("value-%1-number").arg(name));
        QTest::keyClick(slider, Qt::Key_Home);
        EXPECT_EQ(now(name), QStringLiteral("0")) << value.name;
        EXPECT_EQ(number->value(), 0);
        QTest::keyClick(slider, Qt::Key_End);
        EXPECT_EQ(now(name).toInt(), slider->maximum()) << value.name;
        number->setFocus();
        number->selectAll();
        QTest::keyClicks(number, QStringLiteral("77"));
        QTest::keyClick(number, Qt::Key_Return);
        EXPECT_EQ(now(name), QStringLiteral("77")) << value.name;
        EXPECT_EQ(slider->value(), 77) << value.name;
        EXPECT_EQ(lastCommand(), QStringLiteral("set %1 77").arg(name));
        ++tried;
    }
    EXPECT_EQ(tried, 3);
    EXPECT_EQ(control<QSlider>(QStringLiteral("battery"))->maximum(), 100);
}

TEST_F(ControlsTabTest, EveryChoiceChangesItsValue)
{
    int tried = 0;
    for (const MachineValue &value : machineValues()) {
        if (kindOf(value) != ValueKind::Choice)
            continue;
        const QString name = toQString(value.name);
        auto *box = control<QComboBox>(name);
        for (int turn = 0; turn < box->count(); ++turn) {
            QTest::keyClick(box, turn == 0 ? Qt::Key_End : Qt::Key_Up);
            EXPECT_EQ(now(name), box->currentData().toString()) << value.name;
            EXPECT_EQ(lastCommand(), QStringLiteral("set %1 %2").arg(name, now(name)));
        }
        ++tried;
    }
    EXPECT_EQ(tried, 2);
    computer->desktop().setAnswer(7);
    EXPECT_TRUE(
        soon([this] { return control<QComboBox>(QStringLiteral("gui-answer"))->currentIndex() == -1; }));
    EXPECT_EQ(control<QComboBox>(QStringLiteral("gui-answer"))->placeholderText(), QStringLiteral("7"));
}

TEST_F(ControlsTabTest, EveryValueThatCanOnlyBeReadIsShown)
{
    int tried = 0;
    for (const MachineValue &value : machineValues()) {
        if (kindOf(value) != ValueKind::ReadOnly)
            continue;
        const auto *label = control<QLabel>(toQString(value.name));
        ASSERT_NE(label, nullptr) << value.name;
        EXPECT_EQ(label->text(), now(toQString(value.name)));
        ++tried;
    }
    EXPECT_GT(tried, 8);
    computer->poke(tarnDeviceInfos::EC_POWERMODE_PL1_CHECK, 19);
    EXPECT_TRUE(
        soon([this] { return control<QLabel>(QStringLiteral("pl1"))->text() == QStringLiteral("19"); }));
}

TEST_F(ControlsTabTest, ADragSetsAsItMovesAndIsOneCommand)
{
    auto *slider = control<QSlider>(QStringLiteral("battery"));
    slider->setSliderDown(true);
    for (const int level : {70, 60, 51}) {
        slider->setSliderPosition(level);
        EXPECT_EQ(computer->peek(tarnDeviceInfos::EC_TARN_BATTERY_NUM), level);
    }
    EXPECT_EQ(commandCount(), 0);
    slider->setSliderDown(false);
    EXPECT_EQ(commandCount(), 1);
    EXPECT_EQ(lastCommand(), QStringLiteral("set battery 51"));
}

TEST_F(ControlsTabTest, ARefusedTextStaysWithItsComplaint)
{
    auto *complaint = find<QLabel>(QStringLiteral("complaint-supply-mode"));
    EXPECT_FALSE(complaint->isVisible());
    type(QStringLiteral("supply-mode"), QStringLiteral("many"));
    EXPECT_TRUE(complaint->isVisible());
    EXPECT_TRUE(complaint->text().contains(QStringLiteral("allowed: 0 to 255")));
    EXPECT_EQ(control<QLineEdit>(QStringLiteral("supply-mode"))->text(), QStringLiteral("many"));
    EXPECT_EQ(commandCount(), 0);
    type(QStringLiteral("supply-mode"), QStringLiteral("2"));
    EXPECT_FALSE(complaint->isVisible());
    EXPECT_EQ(computer->peek(tarnDeviceInfos::EC_POWER_SUPPLY_MODE), 2);
}

TEST_F(ControlsTabTest, FollowsWhatTheServiceChanges)
{
    computer->setHostBattery(200);
    computer->setSmartCharging(true);
    auto *number = find<QSpinBox>(QStringLiteral("value-battery-number"));
    EXPECT_TRUE(soon([number] { return number->value() == 200; }));
    EXPECT_TRUE(control<QCheckBox>(QStringLiteral("smart-charging"))->isChecked());
    computer->pokeEeprom(tarnDeviceInfos::EEP_SMART_CHARGING, 1);
    EXPECT_TRUE(soon([this] {
        return control<QCheckBox>(QStringLiteral("smart-charging"))->checkState() == Qt::PartiallyChecked;
    })) << "neither on nor off";
    EXPECT_EQ(commandCount(), 0);
}

TEST_F(ControlsTabTest, WhatIsBeingTypedIsNotReplaced)
{
    auto *number = find<QSpinBox>(QStringLiteral("value-battery-number"));
    side->activateWindow();
    ASSERT_TRUE(QTest::qWaitForWindowActive(side.get()));
    number->setFocus();
    number->selectAll();
    QTest::keyClicks(number, QStringLiteral("12"));
    computer->setHostBattery(200);
    ASSERT_TRUE(soon([this] { return control<QLabel>(QStringLiteral("pl1")) != nullptr; }));
    QTest::qWait(static_cast<int>(3 * MachineWatch::lookPeriod.count()));
    EXPECT_EQ(number->text(), QStringLiteral("12"));
    QTest::keyClick(number, Qt::Key_Return);
    EXPECT_EQ(computer->peek(tarnDeviceInfos::EC_TARN_BATTERY_NUM), 12);
    computer->setHostBattery(201);
    EXPECT_TRUE(soon([number] { return number->value() == 201; })) << "it is typed no more";
}
