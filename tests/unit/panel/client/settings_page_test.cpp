#include "unit/panel/client/client_side_fixture.h"

#include <QCheckBox>
#include <QSignalSpy>
#include <QSlider>
#include <QStyleOptionSlider>

using namespace panelTest;

namespace {

using SettingsPageTest = ClientSideTest;

} // namespace

TEST_F(SettingsPageTest, ReadsWhatTheServiceTells)
{
    makeAndConnect();
    EXPECT_EQ(find<QComboBox>("powerMode").currentText(), QStringLiteral("balance"));
    EXPECT_EQ(find<QCheckBox>("smartCharging").checkState(), Qt::Checked);
    ASSERT_TRUE(shows("dockLightStatus", QStringLiteral("off, read")));
    EXPECT_EQ(find<QCheckBox>("dockLight").checkState(), Qt::Unchecked);
    EXPECT_EQ(find<QComboBox>("powerProfile").currentIndex(), -1);
    EXPECT_EQ(
        text("powerProfileStatus"), QStringLiteral("Unknown: the service tells it only when it sets it."));
    EXPECT_TRUE(commands().isEmpty()) << "what the panel reads by itself is nothing that the user did";
}

TEST_F(SettingsPageTest, ShowsAPowerModeOnlyWhenItIsConfirmed)
{
    makeAndConnect();
    service.silent << QStringLiteral("setTarnPowerMode");
    choose("powerMode", QStringLiteral("low"));
    EXPECT_EQ(text("powerModeStatus"), QStringLiteral("Setting to low…"));
    EXPECT_EQ(find<QComboBox>("powerMode").currentText(), QStringLiteral("balance"));
    EXPECT_FALSE(find<QComboBox>("powerMode").isEnabled());
    ASSERT_TRUE(gets(QStringLiteral("setTarnPowerMode low")));
    service.answerHeld();
    ASSERT_TRUE(shows("powerModeStatus", QStringLiteral("low, read")));
    EXPECT_EQ(find<QComboBox>("powerMode").currentText(), QStringLiteral("low"));
    EXPECT_EQ(commands(), QStringList {command(QStringLiteral("setTarnPowerMode low"))});
}

TEST_F(SettingsPageTest, ReturnsToTheConfirmedValueAndSaysWhyItFailed)
{
    makeAndConnect();
    service.failing << QStringLiteral("setTarnPowerMode");
    choose("powerMode", QStringLiteral("high"));
    ASSERT_TRUE(shows("powerModeStatus", QStringLiteral("Not confirmed: high. The service answered")));
    EXPECT_EQ(find<QComboBox>("powerMode").currentText(), QStringLiteral("balance"));
    ASSERT_TRUE(becomes([this] { return find<QComboBox>("powerMode").isEnabled(); }));
    EXPECT_TRUE(find<QComboBox>("powerMode").accessibleDescription().contains(QStringLiteral("failed")));
}

TEST_F(SettingsPageTest, SaysThatTheConnectionEndedBeforeAnAnswer)
{
    makeAndConnect();
    service.silent << QStringLiteral("setSmartChargingStatus");
    QTest::keyClick(&find<QCheckBox>("smartCharging"), Qt::Key_Space);
    ASSERT_TRUE(gets(QStringLiteral("setSmartChargingStatus OFF")));
    service.leave();
    ASSERT_TRUE(shows("smartChargingStatus", QStringLiteral("Not confirmed: off.")));
    EXPECT_TRUE(text("smartChargingStatus").startsWith(QStringLiteral("on (old)")));
    EXPECT_FALSE(find<QCheckBox>("smartCharging").isEnabled());
}

TEST_F(SettingsPageTest, SaysThatNoAnswerCame)
{
    makeAndConnect();
    service.silent << QStringLiteral("setTarnPowerMode");
    choose("powerMode", QStringLiteral("high"));
    ASSERT_TRUE(gets(QStringLiteral("setTarnPowerMode high")));
    click("disconnect");
    ASSERT_TRUE(shows("powerModeStatus", QStringLiteral("Not confirmed: high.")));
    EXPECT_EQ(find<QComboBox>("powerMode").currentText(), QStringLiteral("balance"));
    EXPECT_TRUE(logs(QStringLiteral("Not answered"), QStringLiteral("setTarnPowerMode high: ")));
}

TEST_F(SettingsPageTest, TakesAndGivesBackManualControl)
{
    makeAndConnect();
    click("powerProfile-first");
    ASSERT_TRUE(shows("powerProfileStatus", QStringLiteral("balance, told")));
    EXPECT_EQ(find<QComboBox>("powerProfile").currentText(), QStringLiteral("balance"));
    choose("powerProfile", QStringLiteral("high"));
    ASSERT_TRUE(shows("powerProfileStatus", QStringLiteral("high, applied")));
    click("powerProfile-last");
    ASSERT_TRUE(shows("powerProfileStatus", QStringLiteral("Sent; the service never answers this.")));
    EXPECT_EQ(find<QComboBox>("powerProfile").currentIndex(), -1);
    EXPECT_EQ(commands(),
        (QStringList {command(QStringLiteral("powerModeControl first")),
            command(QStringLiteral("powerModeControl high")),
            command(QStringLiteral("powerModeControl last"))}));
}

TEST_F(SettingsPageTest, SaysWhenNoProfileWasApplied)
{
    service.profileOfFirst = QStringLiteral("-10");
    makeAndConnect();
    click("powerProfile-first");
    ASSERT_TRUE(shows("powerProfileStatus", QStringLiteral("applied none (it answered -10)")));
}

TEST_F(SettingsPageTest, SwitchesTheDockLight)
{
    makeAndConnect();
    ASSERT_TRUE(shows("dockLightStatus", QStringLiteral("off, read")));
    QTest::keyClick(&find<QCheckBox>("dockLight"), Qt::Key_Space);
    ASSERT_TRUE(shows("dockLightStatus", QStringLiteral("on, read")));
    EXPECT_EQ(find<QCheckBox>("dockLight").checkState(), Qt::Checked);
    EXPECT_EQ(service.count(QStringLiteral("setDockLedStatus on")), 1);
}

TEST_F(SettingsPageTest, SetsEveryColourAndTheLastOne)
{
    makeAndConnect(QStringLiteral("graphics"));
    ASSERT_TRUE(shows("graphicsLightStatus", QStringLiteral("cyan, read")));
    EXPECT_EQ(find<QComboBox>("graphicsLight").count(), 8);
    choose("graphicsLight", QStringLiteral("purplishred"));
    ASSERT_TRUE(shows("graphicsLightStatus", QStringLiteral("purplish red, read")));
    click("graphicsLight-on");
    ASSERT_TRUE(shows("graphicsLightStatus", QStringLiteral("red, read")));
    ASSERT_TRUE(gets(QStringLiteral("setGraphicsRGB on")));
}

TEST_F(SettingsPageTest, SetsTheLightOfTheKVane)
{
    makeAndConnect(QStringLiteral("k_vane"));
    ASSERT_TRUE(shows("kvaneLightStatus", QStringLiteral("10, ")));
    auto &slider = find<QSlider>("kvaneLight");
    EXPECT_EQ(slider.value(), 10);
    QTest::keyClick(&slider, Qt::Key_End);
    ASSERT_TRUE(gets(QStringLiteral("setKVaneLedLight 255")));
    ASSERT_TRUE(shows("kvaneLightStatus", QStringLiteral("255, read")));
    service.notify(QStringLiteral("getKVaneLedLight"), QStringLiteral("7"));
    ASSERT_TRUE(shows("kvaneLightStatus", QStringLiteral("7, told")));
    EXPECT_EQ(slider.value(), 7);
}

TEST_F(SettingsPageTest, ALightThatCannotBeSetAnyMoreGoesBack)
{
    makeAndConnect(QStringLiteral("k_vane"));
    ASSERT_TRUE(shows("kvaneLightStatus", QStringLiteral("10, ")));
    auto &slider = find<QSlider>("kvaneLight");
    QTest::keyClick(&slider, Qt::Key_End);
    EXPECT_EQ(slider.value(), 255);
    client->close();
    EXPECT_TRUE(becomes([&slider] { return slider.value() == 10; }));
    EXPECT_TRUE(commands().isEmpty());
}

TEST_F(SettingsPageTest, SaysWhyAControlIsDisabled)
{
    make();
    EXPECT_EQ(text("powerModeStatus"), QStringLiteral("Not connected."));
    EXPECT_FALSE(find<QWidget>("powerMode").isEnabled());
    click("connect");
    ASSERT_TRUE(logs(QStringLiteral("Answer"), QStringLiteral("getKVaneLedLight")));
    EXPECT_EQ(text("kvaneLightStatus"), QStringLiteral("Needs a KVane; attached: dock."));
    EXPECT_TRUE((find<QWidget>("kvaneLightStatus").focusPolicy() & Qt::TabFocus) != 0);
    EXPECT_TRUE(
        find<QWidget>("kvaneLightStatus").accessibleDescription().contains(QStringLiteral("Needs a KVane")));
    EXPECT_FALSE(find<QWidget>("kvaneLight").isEnabled());
    EXPECT_TRUE(
        find<QWidget>("kvaneLight").accessibleDescription().contains(QStringLiteral("Needs a KVane")));
    EXPECT_TRUE(find<QWidget>("kvaneLight").toolTip().contains(QStringLiteral("Needs a KVane")));
    EXPECT_EQ(text("graphicsLightStatus"), QStringLiteral("Needs a graphics box; attached: dock."));
    EXPECT_FALSE(find<QWidget>("disableGpu").isEnabled());
    EXPECT_FALSE(service.requests.contains(QStringLiteral("getGraphicsRGB")));
}

TEST_F(SettingsPageTest, FollowsTheAccessory)
{
    makeAndConnect();
    ASSERT_TRUE(shows("dockLightStatus", QStringLiteral("off, read")));
    service.values[QStringLiteral("getAccessoryType")] = QStringLiteral("graphics");
    service.notify(QStringLiteral("changeAccessoryType"), QStringLiteral("graphics"));
    ASSERT_TRUE(shows("graphicsLightStatus", QStringLiteral("cyan, read")));
    EXPECT_EQ(text("dockLightStatus"), QStringLiteral("Needs a dock; attached: graphics box."));
    EXPECT_EQ(find<QCheckBox>("dockLight").checkState(), Qt::PartiallyChecked);
}

TEST_F(SettingsPageTest, SmartChargingThatComesBackIsSeen)
{
    service.values[QStringLiteral("getSmartChargingStatus")] = QStringLiteral("OFF");
    make();
    click("connect");
    ASSERT_TRUE(shows("smartChargingStatus", QStringLiteral("off, read")));
    service.notify(QStringLiteral("getSmartChargingStatus"), QStringLiteral("ON"));
    ASSERT_TRUE(shows("smartChargingStatus", QStringLiteral("on, told")));
    EXPECT_EQ(find<QCheckBox>("smartCharging").checkState(), Qt::Checked);
}

TEST_F(SettingsPageTest, AValueThatCannotBeReadIsUnknown)
{
    service.values[QStringLiteral("getTarnPowerMode")] = QStringLiteral("hide");
    make();
    click("connect");
    ASSERT_TRUE(shows("powerModeStatus", QStringLiteral("The service answered \"hide\"")));
    EXPECT_EQ(find<QComboBox>("powerMode").currentIndex(), -1);
    service.values[QStringLiteral("getTarnPowerMode")] = QStringLiteral("low");
    click("refresh");
    ASSERT_TRUE(shows("powerModeStatus", QStringLiteral("low, read")));
    EXPECT_FALSE(text("powerModeStatus").contains(QStringLiteral("hide")));
}

TEST_F(SettingsPageTest, DisablesTheGpuAndTellsThatTheServiceDoes)
{
    makeAndConnect(QStringLiteral("graphics"));
    click("disableGpu");
    ASSERT_TRUE(shows("gpuStatus", QStringLiteral("Whether it worked is only in the service's log")));
    EXPECT_EQ(commands(), QStringList {command(QStringLiteral("requestBeginGraphicsMcuUpdate"))});
    service.notify(QStringLiteral("disengagedGraphics"), QString());
    ASSERT_TRUE(shows("gpuStatus", QStringLiteral("announced that it disables it")));
}

TEST_F(SettingsPageTest, AControlThatWaitsGetsTheKeyboardBack)
{
    makeAndConnect();
    side->activateWindow();
    auto &box = find<QComboBox>("powerMode");
    box.setFocus();
    ASSERT_TRUE(becomes([&box] { return box.hasFocus(); }));
    choose("powerMode", QStringLiteral("high"));
    EXPECT_FALSE(box.hasFocus());
    ASSERT_TRUE(shows("powerModeStatus", QStringLiteral("high, read")));
    EXPECT_TRUE(box.hasFocus());
}

TEST_F(SettingsPageTest, AWheelThatScrollsChangesNothing)
{
    makeAndConnect();
    auto &box = find<QComboBox>("powerMode");
    const QPointF middle = box.rect().center();
    QWheelEvent wheel(middle, box.mapToGlobal(middle), {}, {0, -120}, Qt::NoButton, Qt::NoModifier,
        Qt::NoScrollPhase, false);
    QApplication::sendEvent(&box, &wheel);
    EXPECT_TRUE(find<QComboBox>("powerMode").isEnabled());
    EXPECT_TRUE(commands().isEmpty());
}

TEST_F(SettingsPageTest, DropsAValueOfAnAccessoryThatIsGone)
{
    makeAndConnect();
    ASSERT_TRUE(shows("dockLightStatus", QStringLiteral("off, read")));
    service.silent << QStringLiteral("getDockLedStatus");
    click("refresh");
    ASSERT_TRUE(becomes([this] { return service.count(QStringLiteral("getDockLedStatus")) == 2; }));
    attach(QStringLiteral("disconnected"), QStringLiteral("nothing attached"));
    service.answerHeld();
    useAllAnswers();
    EXPECT_EQ(text("dockLightStatus"), QStringLiteral("Needs a dock; attached: nothing attached."));
    EXPECT_EQ(find<QCheckBox>("dockLight").checkState(), Qt::PartiallyChecked);
}

TEST_F(SettingsPageTest, AValueThatIsToldEndsTheTroubleOfReadingIt)
{
    makeAndConnect(QStringLiteral("k_vane"));
    ASSERT_TRUE(shows("kvaneLightStatus", QStringLiteral("10, ")));
    service.failing << QStringLiteral("getKVaneLedLight");
    click("refresh");
    ASSERT_TRUE(shows("kvaneLightStatus", QStringLiteral("which is no value")));
    service.notify(QStringLiteral("getKVaneLedLight"), QStringLiteral("50"));
    ASSERT_TRUE(shows("kvaneLightStatus", QStringLiteral("50, told")));
    EXPECT_FALSE(text("kvaneLightStatus").contains(QStringLiteral("which is no value")));
}

TEST_F(SettingsPageTest, AClickOnAnUnknownLightAsksForNothing)
{
    makeAndConnect(QStringLiteral("k_vane"));
    ASSERT_TRUE(shows("kvaneLightStatus", QStringLiteral("10, ")));
    service.failing << QStringLiteral("getKVaneLedLight");
    click("refresh");
    ASSERT_TRUE(shows("kvaneLightStatus", QStringLiteral("which is no value")));
    auto &slider = find<QSlider>("kvaneLight");
    QStyleOptionSlider option;
    option.initFrom(&slider);
    option.maximum = slider.maximum();
    option.subControls = QStyle::SC_All;
    const QRect handle =
        slider.style()->subControlRect(QStyle::CC_Slider, &option, QStyle::SC_SliderHandle, &slider);
    const QSignalSpy released(&slider, &QSlider::sliderReleased);
    QTest::mouseClick(&slider, Qt::LeftButton, {}, handle.center());
    ASSERT_EQ(released.count(), 1);
    QTest::keyClick(&slider, Qt::Key_Left);
    QTest::qWait(1500);
    EXPECT_TRUE(commands().filter(QStringLiteral("setKVaneLedLight")).isEmpty());
    QTest::keyClick(&slider, Qt::Key_Home);
    EXPECT_TRUE(gets(QStringLiteral("setKVaneLedLight 0")));
}

TEST_F(SettingsPageTest, TheReasonOfTheGpuCanBeReached)
{
    makeAndConnect();
    EXPECT_TRUE((find<QWidget>("gpuStatus").focusPolicy() & Qt::TabFocus) != 0);
    EXPECT_EQ(find<QWidget>("gpuStatus").accessibleDescription(),
        QStringLiteral("Needs a graphics box; attached: dock."));
    attach(QStringLiteral("graphics"), QStringLiteral("graphics box"));
    click("disableGpu");
    ASSERT_TRUE(shows("gpuStatus", QStringLiteral("in the service's log; it answered ")));
    EXPECT_EQ(find<QWidget>("gpuStatus").accessibleDescription(),
        QStringLiteral("Whether it worked is only in the service's log; it answered."));
}

TEST_F(SettingsPageTest, SaysWhatAProfileNeedsWhenItFails)
{
    makeAndConnect();
    service.failing << QStringLiteral("powerModeControl");
    choose("powerProfile", QStringLiteral("low"));
    EXPECT_TRUE(shows("powerProfileStatus", QStringLiteral("\"Take control\" comes first.")));
}

TEST_F(SettingsPageTest, ARefreshForgetsWhatFailedBefore)
{
    makeAndConnect();
    service.failing << QStringLiteral("setTarnPowerMode");
    choose("powerMode", QStringLiteral("low"));
    ASSERT_TRUE(shows("powerModeStatus", QStringLiteral("Not confirmed: low.")));
    click("refresh");
    EXPECT_TRUE(becomes([this] {
        const QString status = text("powerModeStatus");
        return status.startsWith(QStringLiteral("balance, read"))
            && !status.contains(QStringLiteral("Not confirmed"));
    }));
}
