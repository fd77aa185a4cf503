#include "unit/client/client_fixture.h"

using namespace tarnClientTest;
using std::chrono::milliseconds;
using tarn::Accessory;
using tarn::Client;

namespace {

// Answers the queries of the watched values from a table.
class ValuesTest : public ClientTest
{
protected:
    ValuesTest()
    {
        service.onRequest([this](const QJsonObject &request) {
            service.answer(request, "data", texts.value(request.value("cmd").toString()));
        });
    }

    template <typename T>
    [[nodiscard]] bool holds(std::optional<T> (Client::*value)() const, std::optional<T> expected)
    {
        return tarnTest::waitUntil([&] { return (client.*value)() == expected; }, patienceMs);
    }

    void listenToTheBattery()
    {
        QObject::connect(&client, &Client::batteryLevelChanged, &service,
            [this](std::optional<int> level) { levels << level; });
    }

    QHash<QString, QString> texts {{"getAccessoryType", "k_vane"}, {"getTarnBatteryNum", "80"},
        {"getTarnChargingStatus", "1"}, {"getKvaneBatteryNum", "42"}, {"getKvaneChargingStatus", "0"},
        {"getKVaneLedLight", "255"}};
    QList<std::optional<int>> levels;
};

} // namespace

TEST_F(ValuesTest, OnlyThoseThatSomebodyListensToAreRead)
{
    listenToTheBattery();
    openAndConnect();
    EXPECT_TRUE(holds(&Client::batteryLevel, std::optional(80)));
    EXPECT_EQ(levels, QList<std::optional<int>> {80});
    EXPECT_EQ(service.commands(), QStringList {"getTarnBatteryNum"});
    EXPECT_EQ(client.isCharging(), std::nullopt);
}

TEST_F(ValuesTest, AllOfThemHaveASignal)
{
    int signalsSeen = 0;
    const auto count = [&signalsSeen] {
        ++signalsSeen;
    };
    QObject::connect(&client, &Client::accessoryChanged, &service, count);
    QObject::connect(&client, &Client::batteryLevelChanged, &service, count);
    QObject::connect(&client, &Client::chargingChanged, &service, count);
    QObject::connect(&client, &Client::kvaneBatteryLevelChanged, &service, count);
    QObject::connect(&client, &Client::kvaneChargingChanged, &service, count);
    QObject::connect(&client, &Client::kvaneLightChanged, &service, count);
    openAndConnect();
    EXPECT_TRUE(tarnTest::waitUntil([&] { return signalsSeen == 6; }, patienceMs));
    EXPECT_EQ(client.accessory(), Accessory::KVane);
    EXPECT_EQ(client.batteryLevel(), 80);
    EXPECT_EQ(client.isCharging(), true);
    EXPECT_EQ(client.kvaneBatteryLevel(), 42);
    EXPECT_EQ(client.isKvaneCharging(), false);
    EXPECT_EQ(client.kvaneLight(), 255);
}

TEST_F(ValuesTest, AreReadWhenSomebodyBeginsToListen)
{
    openAndConnect();
    listenToTheBattery();
    EXPECT_TRUE(holds(&Client::batteryLevel, std::optional(80)));
}

TEST_F(ValuesTest, FollowTheNotifications)
{
    listenToTheBattery();
    Accessory last = Accessory::Unknown;
    QObject::connect(&client, &Client::accessoryChanged, &service,
        [&last](std::optional<Accessory> accessory) { last = accessory.value_or(Accessory::Unknown); });
    openAndConnect();
    EXPECT_TRUE(holds(&Client::batteryLevel, std::optional(80)));
    service.notify("getTarnBatteryNum", "81");
    service.notify("getTarnBatteryNum", "81");
    service.notify("changeAccessoryType", "dock");
    EXPECT_TRUE(holds(&Client::accessory, std::optional(Accessory::Dock)));
    EXPECT_EQ(last, Accessory::Dock);
    EXPECT_EQ(levels, (QList<std::optional<int>> {80, 81}));
    EXPECT_EQ(service.requests().size(), 2);
}

TEST_F(ValuesTest, WhatTheServiceDoesNotKnowIsNothing)
{
    listenToTheBattery();
    QObject::connect(&client, &Client::kvaneLightChanged, &service, [] {});
    openAndConnect();
    EXPECT_TRUE(holds(&Client::kvaneLight, std::optional(255)));
    service.notify("getTarnBatteryNum", "255");
    service.notify("getKVaneLedLight", "-1");
    EXPECT_TRUE(holds(&Client::kvaneLight, std::optional<int>()));
    EXPECT_EQ(client.batteryLevel(), std::nullopt);
    EXPECT_EQ(levels, (QList<std::optional<int>> {80, std::nullopt}));
}

TEST_F(ValuesTest, AreNothingWithoutAConnectionAndReadAnewAfterwards)
{
    listenToTheBattery();
    openAndConnect();
    EXPECT_TRUE(holds(&Client::batteryLevel, std::optional(80)));
    texts["getTarnBatteryNum"] = "60";
    service.onConnection(
        [this] { service.notify("getTarnBatteryNum", "70"); }); // kept by the service, long ago
    service.dropClient();
    EXPECT_TRUE(holds(&Client::batteryLevel, std::optional(60)));
    EXPECT_EQ(levels, (QList<std::optional<int>> {80, std::nullopt, 60}));
    client.close();
    EXPECT_EQ(client.batteryLevel(), std::nullopt);
    EXPECT_EQ(levels.size(), 4);
}

TEST_F(ValuesTest, AnAnswerThatANotificationOvertookIsAskedForAgain)
{
    listenToTheBattery();
    QObject::connect(&client, &Client::accessoryChanged, &service, [] {});
    service.onRequest([this](const QJsonObject &request) {
        const bool isFirst = service.commands().count("getTarnBatteryNum") == 1;
        if (request.value("cmd") == "getTarnBatteryNum" && isFirst)
            service.notify("getTarnBatteryNum", "79");
        service.answer(
            request, "data", request.value("cmd") == "getAccessoryType" ? "dock" : (isFirst ? "80" : "79"));
    });
    openAndConnect();
    EXPECT_TRUE(holds(&Client::batteryLevel, std::optional(79)));
    EXPECT_EQ(service.commands().count("getTarnBatteryNum"), 2);
}

// The service does not announce what was attached when it started.
TEST_F(ValuesTest, NothingAttachedIsAskedForOnceMore)
{
    QObject::connect(&client, &Client::accessoryChanged, &service, [] {});
    texts["getAccessoryType"] = "disconnected";
    openAndConnect();
    EXPECT_TRUE(holds(&Client::accessory, std::optional(Accessory::Disconnected)));
    texts["getAccessoryType"] = "dock";
    EXPECT_TRUE(holds(&Client::accessory, std::optional(Accessory::Dock)));
    EXPECT_EQ(service.requests().size(), 2);

    // Once on each connection.
    texts["getAccessoryType"] = "disconnected";
    service.dropClient();
    EXPECT_TRUE(tarnTest::waitUntil([this] { return service.requests().size() == 4; }, patienceMs));
    tarnTest::waitUntil([] { return false; }, 250);
    EXPECT_EQ(service.requests().size(), 4);
}

TEST_F(ValuesTest, TheApplicationsRequestsGoFirst)
{
    listenToTheBattery();
    client.open();
    const auto future = client.send("getMcuVersion");
    EXPECT_TRUE(holds(&Client::batteryLevel, std::optional(80)));
    EXPECT_EQ(service.commands(), (QStringList {"getMcuVersion", "getTarnBatteryNum"}));
    EXPECT_TRUE(future.isFinished());
}

TEST_F(ValuesTest, NotificationsHaveSignals)
{
    QStringList seen;
    QObject::connect(
        &client, &Client::notificationReceived, &service, [&seen](const tarn::Notification &notification) {
            seen << notification.name + '=' + notification.data;
        });
    QObject::connect(&client, &Client::graphicsDisengaged, &service,
        [&seen](bool isOld) { seen << (isOld ? "old disengaged" : "disengaged"); });
    QObject::connect(&client, &Client::smartChargingRestored, &service,
        [&seen](bool isOld) { seen << (isOld ? "old restored" : "restored"); });
    openAndConnect();
    service.notify("disengagedGraphics", "");
    EXPECT_TRUE(tarnTest::waitUntil([&] { return seen.size() == 2; }, patienceMs));
    EXPECT_EQ(seen.first(), "old disengaged"); // nothing has been answered yet
    seen.clear();
    EXPECT_TRUE(endOf(client.getAccessoryType()).isAnswered());
    service.notify("disengagedGraphics", "");
    service.notify("getSmartChargingStatus", "ON");
    service.notify("getKvaneBatteryNum", "5");
    service.notify("somethingNew", "5");
    EXPECT_TRUE(tarnTest::waitUntil([&] { return seen.size() >= 5; }, patienceMs));
    EXPECT_EQ(seen,
        (QStringList {"disengaged", "disengagedGraphics=", "restored", "getSmartChargingStatus=ON",
            "getKvaneBatteryNum=5"}));
}
