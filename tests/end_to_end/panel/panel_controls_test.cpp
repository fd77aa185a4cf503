#include "device/ec_registers.h"
#include "end_to_end/panel/panel_fixture.h"

#include <QAbstractButton>
#include <QCheckBox>
#include <QComboBox>
#include <QSlider>
#include <QSpinBox>

// Each control of the client's half changes the register that it should, and shows what the service
// confirmed; each of the computer's half is seen by the service.
using namespace tarnDeviceInfos;
using tarnSimulator::Colour;

namespace {

using PanelControls = tarnTest::PanelFixture;

} // namespace

TEST_F(PanelControls, TheAccessoryThatIsClickedIsSeenByTheService)
{
    open();
    ASSERT_TRUE(becomesConnected());
    const std::pair<const char *, const char *> accessories[] = {
        {"dock", "dock"}, {"graphics", "graphics"}, {"kvane", "k_vane"}};
    for (const auto &[button, name] : accessories) {
        attach(QString::fromLatin1(button));
        EXPECT_EQ(peek(MCU_LINK_STATUS), 4);
        EXPECT_TRUE(lastCommand().endsWith(QStringLiteral(" attach ") + QString::fromLatin1(button)))
            << lastCommand().toStdString();
        EXPECT_TRUE(service.waitForLog(QString::fromLatin1(name))) << name;
    }
    EXPECT_TRUE(becomes([this] { return says(QStringLiteral("accessory"), QStringLiteral("KVane")); }));
    attach(QStringLiteral("nothing"));
    EXPECT_TRUE(becomes([this] { return says(QStringLiteral("accessory"), QStringLiteral("nothing")); }))
        << text(QStringLiteral("accessory")).toStdString();
}

TEST_F(PanelControls, SettingsOfTheComputer)
{
    open();
    ASSERT_TRUE(becomesConnected());
    click(QStringLiteral("powerProfile-first"));
    ASSERT_TRUE(becomes([this] { return peek(EC_POWERMODE_PL_CTRL) == 1; }));
    const auto profileIs = [this](const QString &word) {
        return becomes(
            [this, word] { return find<QComboBox>(QStringLiteral("powerProfile")).currentData() == word; });
    };
    ASSERT_TRUE(becomes([this] { return find(QStringLiteral("powerProfile")).isEnabled(); }));
    choose(QStringLiteral("powerProfile"), Qt::Key_L);
    EXPECT_TRUE(profileIs(QStringLiteral("low")));
    EXPECT_EQ(lastCommand(), QStringLiteral("./tarnctl powerModeControl low"));
    const int low = peek(EC_POWERMODE_PL1_CHECK);
    choose(QStringLiteral("powerProfile"), Qt::Key_H);
    EXPECT_TRUE(profileIs(QStringLiteral("high")));
    EXPECT_GT(peek(EC_POWERMODE_PL1_CHECK), low);

    choose(QStringLiteral("powerMode"), Qt::Key_H);
    EXPECT_TRUE(
        becomes([this] { return find<QComboBox>(QStringLiteral("powerMode")).currentText() == u"high"; }));
    EXPECT_EQ(peek(EC_TARN_POWER_MODE), TARN_POWER_MODE_HIGH);

    const auto &charging = find<QCheckBox>(QStringLiteral("smartCharging"));
    ASSERT_TRUE(becomes(
        [&charging] { return charging.isEnabled() && charging.checkState() != Qt::PartiallyChecked; }));
    const bool wasOn = charging.isChecked();
    click(QStringLiteral("smartCharging"));
    EXPECT_TRUE(becomes([&] { return charging.isEnabled() && charging.isChecked() != wasOn; }));
    EXPECT_EQ(computer().peekEeprom(EEP_SMART_CHARGING), wasOn ? SMART_CHARGING_OFF : SMART_CHARGING_ON);

    click(QStringLiteral("powerProfile-last"));
    EXPECT_TRUE(becomes([this] { return peek(EC_POWERMODE_PL_CTRL) == 0; }));
    EXPECT_EQ(lastCommand(), QStringLiteral("./tarnctl powerModeControl last"));
}

TEST_F(PanelControls, LightsOfTheAccessories)
{
    open();
    ASSERT_TRUE(becomesConnected());
    EXPECT_FALSE(find(QStringLiteral("dockLight")).isEnabled());
    attach(QStringLiteral("dock"));
    const auto &dock = find<QCheckBox>(QStringLiteral("dockLight"));
    ASSERT_TRUE(becomes([&dock] { return dock.isEnabled() && dock.checkState() != Qt::PartiallyChecked; }));
    const bool wasOn = dock.isChecked();
    EXPECT_EQ(computer().dockLight().red != 0, wasOn);
    click(QStringLiteral("dockLight"));
    EXPECT_TRUE(becomes([&] { return dock.isEnabled() && dock.isChecked() != wasOn; }));
    EXPECT_EQ(computer().dockLight().red != 0, !wasOn);

    attach(QStringLiteral("graphics"));
    const auto &box = find<QComboBox>(QStringLiteral("graphicsLight"));
    ASSERT_TRUE(becomes([&box] { return box.isEnabled() && box.currentIndex() >= 0; }));
    EXPECT_FALSE(dock.isEnabled());
    choose(QStringLiteral("graphicsLight"), Qt::Key_R);
    EXPECT_TRUE(becomes([&box] { return box.isEnabled() && box.currentText() == u"red"; }));
    EXPECT_EQ(computer().graphicsLight().green, 0);
    EXPECT_GT(computer().graphicsLight().red, 0);

    attach(QStringLiteral("kvane"));
    auto &kvane = find<QSlider>(QStringLiteral("kvaneLight"));
    ASSERT_TRUE(becomes([&kvane] { return kvane.isEnabled(); }));
    bring(kvane);
    kvane.setFocus();
    QTest::keyClick(&kvane, Qt::Key_End);
    EXPECT_TRUE(becomes([this] { return computer().kvaneLed() == 255; }));
    EXPECT_TRUE(becomes([&kvane] { return kvane.isEnabled() && kvane.value() == 255; }));
    EXPECT_EQ(lastCommand(), QStringLiteral("./tarnctl setKVaneLedLight 255"));
}

TEST_F(PanelControls, TheQuestionIsAnsweredInTheWindow)
{
    open();
    ASSERT_TRUE(becomesConnected());
    computer().desktop().setAnswer(tarnSimulator::Desktop::waits);
    attach(QStringLiteral("graphics"));
    ASSERT_TRUE(service.waitForLog(QStringLiteral("Successed to active graphics.")));
    EXPECT_FALSE(find(QStringLiteral("askedWindow")).isVisible());
    click(QStringLiteral("gpuKey"));
    ASSERT_TRUE(becomes([this] { return find(QStringLiteral("askedWindow")).isVisible(); }));
    click(QStringLiteral("askedYes"));
    EXPECT_TRUE(service.waitForLog(QStringLiteral("Graphics disengagement process finished.")));
    EXPECT_TRUE(becomes([this] { return !find(QStringLiteral("askedWindow")).isVisible(); }));
    const auto gpu = computer().devices().find("gpu");
    ASSERT_TRUE(gpu.has_value());
    EXPECT_FALSE(computer().devices().device(*gpu).started);
    // The next question waits as well.
    EXPECT_TRUE(becomes([this] { return computer().desktop().answer() == tarnSimulator::Desktop::waits; }));
}

TEST_F(PanelControls, ValuesAndFaultsOfTheComputerReachTheClient)
{
    open();
    ASSERT_TRUE(becomesConnected());
    attach(QStringLiteral("kvane"));
    ASSERT_TRUE(becomes([this] { return says(QStringLiteral("accessory"), QStringLiteral("KVane")); }));
    auto &battery = find<QSlider>(QStringLiteral("value-battery"));
    bring(battery);
    battery.setFocus();
    QTest::keyClick(&battery, Qt::Key_Home);
    EXPECT_TRUE(becomes([this] { return says(QStringLiteral("battery"), QStringLiteral("0 %")); }));

    click(QStringLiteral("fault-no-answer"));
    EXPECT_TRUE(computer().faults().isOn(tarnSimulator::Fault::NoAnswer));
    EXPECT_TRUE(lastCommand().endsWith(QStringLiteral(" fault no-answer"))) << lastCommand().toStdString();
    EXPECT_TRUE(service.waitForLog(QStringLiteral("Library loaded second"), 1, 60000));
    click(QStringLiteral("fault-no-answer"));
    EXPECT_FALSE(computer().faults().isOn(tarnSimulator::Fault::NoAnswer));
}
