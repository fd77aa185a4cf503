#include "unit/panel/client/client_side_fixture.h"

#include <QCheckBox>
#include <QRegularExpression>

using namespace panelTest;

namespace {

using ConnectionHeaderTest = ClientSideTest;

// A text that can be marked.
bool isOnlyForTheMouse(const QWidget &widget)
{
    return qobject_cast<const QLabel *>(&widget) != nullptr && (widget.focusPolicy() & Qt::TabFocus) == 0;
}

} // namespace

TEST_F(ConnectionHeaderTest, WarnsBeforeTheFirstConnection)
{
    make();
    EXPECT_TRUE(text("connectionState").startsWith(QStringLiteral("Not connected.")));
    EXPECT_TRUE(text("connectionState").contains(QStringLiteral("takes the place of the application")));
    EXPECT_FALSE(find<QWidget>("disconnect").isEnabled());
    click("connect");
    ASSERT_TRUE(shows("connectionState", QStringLiteral("Connected to the service.")));
    EXPECT_FALSE(text("connectionState").contains(QStringLiteral("takes the place")));
    EXPECT_FALSE(find<QWidget>("connect").isEnabled());
    EXPECT_TRUE(logs(QStringLiteral("Connection"), QStringLiteral("Connected to the service.")));
}

TEST_F(ConnectionHeaderTest, ConnectsByItselfButNotAfterADisconnect)
{
    make();
    side->connectByItself();
    side->connectByItself();
    ASSERT_TRUE(shows("connectionState", QStringLiteral("Connected")));
    click("disconnect");
    ASSERT_TRUE(shows("connectionState", QStringLiteral("Not connected.")));
    side->connectByItself();
    EXPECT_EQ(client->state(), tarn::Client::State::Closed);
    click("connect");
    ASSERT_TRUE(shows("connectionState", QStringLiteral("Connected")));
}

TEST_F(ConnectionHeaderTest, SaysThatNoServiceIsThere)
{
    service.leave();
    make();
    click("connect");
    ASSERT_TRUE(shows("connectionState", QStringLiteral("No service has the pipe")));
    EXPECT_TRUE(text("connectionState").contains(service.pipe));
    service.startListening();
    ASSERT_TRUE(shows("connectionState", QStringLiteral("Connected")));
}

TEST_F(ConnectionHeaderTest, ValuesOfAServiceThatGoesAwayAreOldAndReadAnew)
{
    makeAndConnect();
    ASSERT_TRUE(shows("dockLightStatus", QStringLiteral("off, read")));
    service.leave();
    ASSERT_TRUE(shows("powerModeStatus", QStringLiteral("balance (old), read")));
    EXPECT_TRUE(text("powerModeStatus").contains(QStringLiteral("Not connected.")));
    EXPECT_TRUE(text("accessory").startsWith(QStringLiteral("dock (old)")));
    EXPECT_TRUE(text("mcuVersion").startsWith(QStringLiteral("1.23 (old)")));
    EXPECT_FALSE(find<QWidget>("powerMode").isEnabled());
    EXPECT_FALSE(find<QWidget>("refresh").isEnabled());

    service.values[QStringLiteral("getTarnPowerMode")] = QStringLiteral("high");
    service.startListening();
    ASSERT_TRUE(shows("powerModeStatus", QStringLiteral("high, read")));
    ASSERT_TRUE(becomes([this] { return text("accessory").startsWith(QStringLiteral("dock, read")); }));
    ASSERT_TRUE(becomes([this] { return text("mcuVersion").startsWith(QStringLiteral("1.23, read")); }));
}

TEST_F(ConnectionHeaderTest, OffersToConnectAgainWhenAnotherProgramUsesTheService)
{
    times.quietTime = std::chrono::milliseconds(60);
    times.questionLimit = std::chrono::milliseconds(60);
    times.leavePause = std::chrono::milliseconds(5);
    // What the client library asks by itself.
    for (const char *question : {"getAccessoryType", "getTarnBatteryNum", "getTarnChargingStatus",
             "getKvaneBatteryNum", "getKvaneChargingStatus", "getKVaneLedLight"})
        service.silent << QString::fromLatin1(question);
    make();
    client->open();
    ASSERT_TRUE(shows("connectionState", QStringLiteral("does not talk to this window")));
    service.silent.clear();
    ASSERT_TRUE(find<QWidget>("connect").isEnabled());
    EXPECT_EQ(find<QAbstractButton>("connect").text(), QStringLiteral("&Connect again"));
    click("connect");
    ASSERT_TRUE(shows("connectionState", QStringLiteral("Connected")));
}

TEST_F(ConnectionHeaderTest, F5ReadsAnew)
{
    makeAndConnect();
    side->activateWindow();
    ASSERT_TRUE(becomes([this] { return side->isActiveWindow(); }));
    service.values[QStringLiteral("getTarnPowerMode")] = QStringLiteral("low");
    QTest::keyClick(side.get(), Qt::Key_F5);
    ASSERT_TRUE(shows("powerModeStatus", QStringLiteral("low, read")));
}

// Also what the client library keeps, and each question as the command that asks it.
TEST_F(ConnectionHeaderTest, RefreshReadsEverythingAndIsACommandEach)
{
    makeAndConnect(QStringLiteral("k_vane"));
    ASSERT_TRUE(shows("battery", QStringLiteral("80 %")));
    EXPECT_EQ(session.rowCount(), 0) << "what the panel reads by itself";
    service.values[QStringLiteral("getTarnBatteryNum")] = QStringLiteral("79");
    service.values[QStringLiteral("getTarnChargingStatus")] = QStringLiteral("0");
    service.values[QStringLiteral("getKvaneBatteryNum")] = QStringLiteral("54");
    service.values[QStringLiteral("getKvaneChargingStatus")] = QStringLiteral("1");
    // By the underlined letter: F5 is a second key.
    side->activateWindow();
    ASSERT_TRUE(becomes([this] { return side->isActiveWindow(); }));
    QTest::keyClick(side.get(), Qt::Key_R, Qt::AltModifier);
    EXPECT_TRUE(shows("battery", QStringLiteral("79 %")));
    EXPECT_TRUE(shows("charging", QStringLiteral("no")));
    EXPECT_TRUE(shows("kvaneBattery", QStringLiteral("54 %")));
    EXPECT_TRUE(shows("kvaneCharging", QStringLiteral("yes")));
    EXPECT_TRUE(
        becomes([this] { return commands().contains(command(QStringLiteral("getTarnKvaneSnCode"))); }));
    for (const char *asked :
        {"getTarnPowerMode", "getAccessoryType", "getTarnBatteryNum", "getMcuUpdateParameters"})
        EXPECT_EQ(commands().count(command(QLatin1String(asked))), 1) << asked;
}

TEST_F(ConnectionHeaderTest, TellsTheAgeOfAValue)
{
    makeAndConnect();
    const QRegularExpression seconds(QStringLiteral("^balance, read \\d+ s ago\\.$"));
    EXPECT_TRUE(becomes([this, &seconds] { return text("powerModeStatus").contains(seconds); }))
        << text("powerModeStatus").toStdString();
    EXPECT_FALSE(find<QWidget>("powerMode").accessibleDescription().contains(QStringLiteral("ago")));
}

TEST_F(ConnectionHeaderTest, AnswersThatComeAfterTheWindowAreHarmless)
{
    makeAndConnect();
    service.silent << QStringLiteral("setTarnPowerMode");
    choose("powerMode", QStringLiteral("low"));
    ASSERT_TRUE(gets(QStringLiteral("setTarnPowerMode low")));
    side.reset();
    service.answerHeld();
    QCoreApplication::processEvents();
    EXPECT_EQ(session.rowCount(), 1);
}

TEST_F(ConnectionHeaderTest, FitsIntoItsHalfOfTheSmallestWindow)
{
    makeAndConnect();
    EXPECT_LE(side->minimumSizeHint().width(), 440);
    EXPECT_LE(side->minimumSizeHint().height(), 520);
}

TEST_F(ConnectionHeaderTest, RemembersItsTab)
{
    make();
    find<QTabWidget>("clientTabs").setCurrentIndex(2);
    make();
    EXPECT_EQ(find<QTabWidget>("clientTabs").currentIndex(), 2);
}

TEST_F(ConnectionHeaderTest, EveryControlHasANameAndCanBeReachedByTab)
{
    makeAndConnect();
    for (const QWidget *widget : side->findChildren<QWidget *>()) {
        const bool isControl = !widget->objectName().isEmpty() && widget->focusPolicy() != Qt::NoFocus
            && !widget->objectName().startsWith(QStringLiteral("qt_"));
        if (!isControl || qobject_cast<const QAbstractButton *>(widget) != nullptr
            || isOnlyForTheMouse(*widget))
            continue;
        EXPECT_FALSE(widget->accessibleName().isEmpty()) << widget->objectName().toStdString();
        EXPECT_TRUE((widget->focusPolicy() & Qt::TabFocus) != 0) << widget->objectName().toStdString();
    }
    for (const auto *button : side->findChildren<QAbstractButton *>()) {
        const bool isOwn =
            !button->objectName().isEmpty() && !button->objectName().startsWith(QStringLiteral("qt_"));
        const bool isNamed = !(button->text() + button->accessibleName()).isEmpty();
        EXPECT_TRUE(isNamed || !isOwn) << button->objectName().toStdString();
    }
}

TEST_F(ConnectionHeaderTest, EveryReasonCanBeReachedByTabAndIsReadOut)
{
    make();
    find<QComboBox>("updateKind").setCurrentIndex(1);
    for (const char *name :
        {"powerModeStatus", "kvaneLightStatus", "gpuStatus", "updateObjection", "modeStatus"}) {
        const auto &label = find<QLabel>(name);
        EXPECT_TRUE((label.focusPolicy() & Qt::TabFocus) != 0) << name;
        EXPECT_FALSE(label.accessibleName().isEmpty()) << name;
        EXPECT_TRUE(label.accessibleDescription().contains(QStringLiteral("Not connected."))) << name;
    }
}

// The pauses between the attempts have grown meanwhile.
TEST_F(ConnectionHeaderTest, ConnectsSoonAfterTheServiceWasStarted)
{
    times.firstRetry = std::chrono::seconds(60);
    times.longestRetry = std::chrono::seconds(60);
    makeAndConnect();
    service.leave();
    ASSERT_TRUE(shows("connectionState", QStringLiteral("Waiting")));
    service.startListening();
    side->connectSoon();
    EXPECT_TRUE(shows("connectionState", QStringLiteral("Connected")));
    click("disconnect");
    side->connectSoon();
    EXPECT_FALSE(find<QWidget>("disconnect").isEnabled()) << "it is not trying";
}
