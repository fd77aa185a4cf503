#include "panel/computer/fault_row.h"
#include "simulator/fault_table.h"
#include "simulator/register_table.h"
#include "simulator/tool/tool_text.h"
#include "unit/panel/computer/panel_machine.h"

#include <QCheckBox>
#include <QComboBox>
#include <QLabel>
#include <QLineEdit>
#include <QPushButton>
#include <QSpinBox>
#include <QTabWidget>

#include <algorithm>

using namespace tarnPanel;
using namespace tarnPanelTest;
using namespace tarnSimulator;

namespace {

class FaultsTabTest : public PanelMachine
{
protected:
    void SetUp() override
    {
        PanelMachine::SetUp();
        openSide({440, 820});
        tabs()->setCurrentIndex(1);
    }

    [[nodiscard]] QTabWidget *tabs() const { return find<QTabWidget>(QStringLiteral("computerTabs")); }

    template <typename Widget>
    [[nodiscard]] Widget *field(const FaultDescription &fault, const char *part = "") const
    {
        return find<Widget>(QStringLiteral("fault-") + QLatin1String(part) + toQString(fault.name));
    }

    void toggle(const FaultDescription &fault) const
    {
        QTest::keyClick(field<QCheckBox>(fault), Qt::Key_Space);
    }

    [[nodiscard]] qsizetype shownRows() const
    {
        const QList<FaultRow *> rows = side->findChildren<FaultRow *>();
        return std::ranges::count_if(rows, [](const FaultRow *row) { return row->isVisible(); });
    }
};

} // namespace

TEST_F(FaultsTabTest, EverySwitchSwitchesItsFault)
{
    for (const FaultDescription &fault : faultTable()) {
        ASSERT_NE(field<QCheckBox>(fault), nullptr) << fault.name;
        if (fault.kind == FaultValue::Count)
            field<QLineEdit>(fault, "number-")->setText(QStringLiteral("9"));
        toggle(fault);
        EXPECT_TRUE(computer->faults().isOn(fault.fault)) << fault.name;
        EXPECT_TRUE(field<QCheckBox>(fault)->isChecked()) << fault.name;
        EXPECT_TRUE(lastCommand().startsWith(QStringLiteral("fault ") + toQString(fault.name)));
        toggle(fault);
        EXPECT_FALSE(computer->faults().isOn(fault.fault)) << fault.name;
        EXPECT_FALSE(field<QCheckBox>(fault)->isChecked()) << fault.name;
        EXPECT_EQ(lastCommand(), QStringLiteral("fault %1 off").arg(toQString(fault.name)));
    }
    EXPECT_EQ(commandCount(), 2 * static_cast<int>(faultCount));
}

TEST_F(FaultsTabTest, FieldsSayWhereAndHowOften)
{
    const FaultDescription &slow = describe(Fault::Slow);
    field<QLineEdit>(slow, "number-")->setText(QStringLiteral("345"));
    toggle(slow);
    EXPECT_EQ(computer->faults().value(Fault::Slow), 345);

    const FaultDescription &failRead = describe(Fault::FailRead);
    field<QSpinBox>(describe(Fault::FailWrite), "skip-")->setValue(5);
    EXPECT_FALSE(computer->faults().isOn(Fault::FailWrite)) << "a field alone switches nothing on";
    field<QComboBox>(failRead, "target-")->setCurrentText(QStringLiteral("EC_POWERMODE_PL2"));
    field<QSpinBox>(failRead, "skip-")->setValue(3);
    toggle(failRead);
    EXPECT_EQ(computer->faults().value(Fault::FailRead), tarnDeviceInfos::EC_POWERMODE_PL2);
    EXPECT_EQ(computer->faults().remaining(Fault::FailRead), 3U);
    EXPECT_EQ(lastCommand(), QStringLiteral("fault fail-read EC_POWERMODE_PL2 3"));

    field<QSpinBox>(failRead, "skip-")->setValue(4);
    EXPECT_EQ(computer->faults().remaining(Fault::FailRead), 4U) << "it is on";

    const FaultDescription &failDisable = describe(Fault::FailDeviceDisable);
    auto *device = field<QComboBox>(failDisable, "target-");
    toggle(failDisable);
    EXPECT_EQ(computer->faults().value(Fault::FailDeviceDisable), everyDevice);
    toggle(failDisable);
    device->setCurrentIndex(device->findText(QStringLiteral("gpu")));
    toggle(failDisable);
    EXPECT_EQ(computer->faults().value(Fault::FailDeviceDisable), computer->devices().find("gpu"));
}

TEST_F(FaultsTabTest, ANumberIsAppliedWithEnter)
{
    const FaultDescription &slow = describe(Fault::Slow);
    toggle(slow);
    EXPECT_EQ(computer->faults().value(Fault::Slow), slow.onValue);
    auto *number = field<QLineEdit>(slow, "number-");
    QTest::keyClicks(number, QStringLiteral("77"));
    QTest::keyClick(number, Qt::Key_Return);
    EXPECT_EQ(computer->faults().value(Fault::Slow), 77);
}

TEST_F(FaultsTabTest, ARefusedValueLeavesTheSwitchOffAndSaysWhy)
{
    const FaultDescription &failAfter = describe(Fault::FailAfter);
    toggle(failAfter);
    EXPECT_FALSE(computer->faults().isOn(Fault::FailAfter));
    EXPECT_FALSE(field<QCheckBox>(failAfter)->isChecked());
    const auto *complaint = field<QLabel>(failAfter, "complaint-");
    EXPECT_TRUE(complaint->isVisible());
    EXPECT_TRUE(complaint->text().contains(QStringLiteral("needs a value")))
        << complaint->text().toStdString();
    EXPECT_TRUE(find<QLabel>(QStringLiteral("complaint"))->isVisible());
    EXPECT_EQ(commandCount(), 0);
}

TEST_F(FaultsTabTest, TheTitleCountsAndAllCanBeSwitchedOff)
{
    auto *allOff = find<QPushButton>(QStringLiteral("faultsOff"));
    EXPECT_FALSE(allOff->isEnabled());
    EXPECT_EQ(tabs()->tabText(1), QStringLiteral("Fau&lts"));
    computer->faults().switchOn(Fault::IbfStuck);
    computer->faults().switchOn(Fault::EepromBusy);
    EXPECT_TRUE(soon([this] { return tabs()->tabText(1) == QStringLiteral("Fau&lts (2 on)"); }));
    QTest::mouseClick(allOff, Qt::LeftButton);
    EXPECT_FALSE(computer->faults().isOn(Fault::IbfStuck));
    EXPECT_FALSE(computer->faults().isOn(Fault::EepromBusy));
    EXPECT_EQ(lastCommand(), QStringLiteral("clear-faults"));
    EXPECT_EQ(tabs()->tabText(1), QStringLiteral("Fau&lts"));
}

TEST_F(FaultsTabTest, TheFilterLooksAtNamesAndSentencesAndIsRemembered)
{
    EXPECT_EQ(shownRows(), static_cast<qsizetype>(faultCount));
    QTest::keyClicks(find<QLineEdit>(QStringLiteral("faultFilter")), QStringLiteral("boot LOADER"));
    EXPECT_GT(shownRows(), 2);
    EXPECT_LT(shownRows(), 10);
    EXPECT_FALSE(field<QCheckBox>(describe(Fault::Slow))->isVisible());
    const qsizetype before = shownRows();
    side.reset();
    openSide();
    tabs()->setCurrentIndex(1);
    EXPECT_EQ(shownRows(), before);
}

TEST_F(FaultsTabTest, AnAddressThatIsTypedTakesEffectWithEnter)
{
    const FaultDescription &failRead = describe(Fault::FailRead);
    auto *target = field<QComboBox>(failRead, "target-");
    target->setCurrentText(QStringLiteral("EC_POWERMODE_PL1"));
    toggle(failRead);
    ASSERT_TRUE(computer->faults().isOn(Fault::FailRead));
    const int before = commandCount();
    target->lineEdit()->selectAll();
    // The box has the focus and hands the keys to its line.
    QTest::keyClicks(target, QStringLiteral("0x0123"));
    QTest::keyClick(target, Qt::Key_Return);
    EXPECT_EQ(computer->faults().value(Fault::FailRead), 0x0123);
    EXPECT_EQ(commandCount(), before + 1);
}
