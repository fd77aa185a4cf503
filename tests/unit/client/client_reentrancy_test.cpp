#include "unit/client/client_fixture.h"

#include <QEventLoop>
#include <QTimer>

using namespace tarnClientTest;
using std::chrono::milliseconds;
using tarn::Client;
using tarn::Outcome;
using tarn::Reply;

// What an application may do in slots and continuations.
using ReentrancyTest = ClientTest;

TEST_F(ReentrancyTest, MessagesArriveWhileASlotRunsAnEventLoop)
{
    QEventLoop dialog;
    QString answer;
    QObject::connect(&client, &Client::graphicsDisengaged, &client, [&] {
        client.send("getMcuVersion").then(&client, [&](const Reply &reply) {
            answer = reply.value();
            dialog.quit();
        });
        QTimer::singleShot(patienceMs, &dialog, &QEventLoop::quit);
        dialog.exec();
    });
    answerAll("1.23");
    openAndConnect();
    service.notify("disengagedGraphics", "");
    EXPECT_TRUE(tarnTest::waitUntil([&] { return !answer.isEmpty(); }, 5000));
    EXPECT_EQ(answer, "1.23");
    EXPECT_EQ(endOf(client.send("getMcuVersion")).value(), "1.23");
    EXPECT_EQ(service.connections(), 1);
}

TEST_F(ReentrancyTest, MessagesThatCameTogetherArriveInTheSlotOfTheFirst)
{
    QStringList seen;
    QStringList seenInSlot;
    QObject::connect(
        &client, &Client::notificationReceived, &client, [&](const tarn::Notification &notification) {
            seen << notification.data;
            if (seen.size() > 1)
                return;
            tarnTest::waitUntil([&] { return seen.size() == 3; }, patienceMs);
            seenInSlot = seen;
        });
    openAndConnect();
    QByteArray together;
    for (const char *level : {"1", "2", "3"})
        together += compact({{"cmd", "getTarnBatteryNum"}, {"data", level}});
    service.write(together);
    EXPECT_TRUE(tarnTest::waitUntil([&] { return !seenInSlot.isEmpty(); }, 2 * patienceMs));
    EXPECT_EQ(seenInSlot, (QStringList {"1", "2", "3"}));
}

TEST_F(ReentrancyTest, MessagesKeepTheirOrderThroughAnEventLoop)
{
    QStringList seen;
    QObject::connect(
        &client, &Client::notificationReceived, &client, [&](const tarn::Notification &notification) {
            seen << notification.data;
            if (seen.size() == 1)
                tarnTest::waitUntil([&] { return seen.size() == 4; }, patienceMs);
        });
    openAndConnect();
    for (const char *level : {"1", "2", "3"})
        service.notify("getTarnBatteryNum", level);
    service.later(milliseconds(50), [this] { service.notify("getTarnBatteryNum", "4"); });
    EXPECT_TRUE(tarnTest::waitUntil([&] { return seen.size() == 4; }, patienceMs));
    EXPECT_EQ(seen, (QStringList {"1", "2", "3", "4"}));
}

TEST_F(ReentrancyTest, NothingIsDeliveredAfterASlotHasClosedTheClient)
{
    QStringList seen;
    QObject::connect(
        &client, &Client::notificationReceived, &client, [&](const tarn::Notification &notification) {
            seen << notification.data;
            client.close();
        });
    openAndConnect();
    service.write(compact({{"cmd", "getTarnBatteryNum"}, {"data", "1"}})
        + compact({{"cmd", "getTarnBatteryNum"}, {"data", "2"}}));
    EXPECT_TRUE(becomes(Client::State::Closed));
    tarnTest::waitUntil([] { return false; }, 100);
    EXPECT_EQ(seen, QStringList {"1"});
}

TEST_F(ReentrancyTest, ASlotThatClosesTheClientIsTheLastOfItsMessage)
{
    int after = 0;
    QObject::connect(&client, &Client::graphicsDisengaged, &client, &Client::close);
    QObject::connect(&client, &Client::notificationReceived, &client, [&after] { ++after; });
    openAndConnect();
    service.notify("disengagedGraphics", "");
    EXPECT_TRUE(becomes(Client::State::Closed));
    EXPECT_EQ(after, 0);
}

TEST_F(ReentrancyTest, ASlotMayCloseTheClientWhenItsStateChanges)
{
    QObject::connect(&client, &Client::stateChanged, &client, [this](Client::State state) {
        if (state == Client::State::Connected)
            client.close();
    });
    client.open();
    const QFuture<Reply> future = client.send("getMcuVersion");
    EXPECT_EQ(endOf(future).outcome(), Outcome::Refused);
    EXPECT_EQ(client.state(), Client::State::Closed);
    tarnTest::waitUntil([] { return false; }, 400); // more than the quiet time
    EXPECT_TRUE(service.requests().isEmpty());
    EXPECT_EQ(client.state(), Client::State::Closed);
}

TEST_F(ReentrancyTest, ASlotMayCloseTheClientWhenTheConnectionIsLost)
{
    std::optional<Client::State> last;
    QObject::connect(&client, &Client::batteryLevelChanged, &client, [this](std::optional<int> level) {
        if (!level)
            client.close();
    });
    answerAll("80");
    openAndConnect();
    EXPECT_TRUE(tarnTest::waitUntil([this] { return client.batteryLevel() == 80; }, patienceMs));
    service.dropClient();
    EXPECT_TRUE(becomes(Client::State::Closed));
    tarnTest::waitUntil([] { return false; }, 200);
    EXPECT_EQ(states.last(), Client::State::Closed);
    EXPECT_EQ(service.connections(), 1);
}

TEST_F(ReentrancyTest, AContinuationOfAClosedClientMayOpenItAgain)
{
    openAndConnect();
    client.send("getMcuVersion").then(&client, [](const Reply &) {});
    QFuture<Reply> written = client.send("getMcuVersion");
    written.then([this](const Reply &) { client.open(); });
    answerAll("2");
    client.close();
    EXPECT_EQ(client.state(), Client::State::Waiting);
    EXPECT_EQ(endOf(client.send("getMcuVersion")).value(), "2");
    EXPECT_EQ(states.last(), Client::State::Connected);
}

TEST_F(ReentrancyTest, AContinuationOfADestroyedClientIsRefused)
{
    auto mortal = std::make_unique<Client>(service.pipeName(), shortTimes());
    Client *dying = mortal.get();
    mortal->open();
    QFuture<Reply> second;
    mortal->send("getMcuVersion").then([&](const Reply &) { second = dying->send("getMcuVersion"); });
    EXPECT_TRUE(tarnTest::waitUntil([this] { return service.requests().size() == 1; }, patienceMs));
    mortal.reset();
    EXPECT_EQ(endOf(second).outcome(), Outcome::Refused);
    EXPECT_EQ(endOf(second).reason(), "The client is not open.");
}

TEST_F(ReentrancyTest, AContinuationMayCancelTheNextRequest)
{
    answerAll("1");
    openAndConnect();
    QFuture<Reply> second;
    QFuture<Reply> first = client.send("getMcuVersion");
    first.then([&](const Reply &) { second.cancel(); });
    second = client.send("getAccessoryCode");
    EXPECT_TRUE(tarnTest::waitUntil([&] { return second.isFinished(); }, patienceMs));
    EXPECT_EQ(service.commands(), QStringList {"getMcuVersion"});
}

// The answer is read, and the end of the connection is seen, before the application is told of either.
TEST_F(ReentrancyTest, AValueFromAServiceThatHasGoneIsReadAnew)
{
    QString text = "80";
    service.onRequest([&](const QJsonObject &request) {
        service.answer(request, "data", text);
        if (text == "80")
            service.dropClient();
        text = "60";
    });
    QList<std::optional<int>> levels;
    QObject::connect(
        &client, &Client::batteryLevelChanged, &client, [&](std::optional<int> level) { levels << level; });
    QObject::connect(&client, &Client::kvaneBatteryLevelChanged, &client, [] {});
    client.open();
    EXPECT_TRUE(tarnTest::waitUntil([this] { return client.batteryLevel() == 60; }, patienceMs));
    EXPECT_EQ(levels.last(), 60);
    EXPECT_TRUE(levels == QList<std::optional<int>>({60})
        || levels == (QList<std::optional<int>> {80, std::nullopt, 60}));
}
