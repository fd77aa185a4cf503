#include "unit/client/client_fixture.h"

using namespace tarnClientTest;
using std::chrono::milliseconds;
using tarn::Client;
using tarn::Outcome;
using tarn::Reply;

namespace {

// Plays a service that sends nothing any more until the next connection, as it does when some client has
// left.
class SilenceTest : public ClientTest
{
protected:
    SilenceTest()
        : ClientTest(watchfulTimes())
    {
        service.onConnection([this] { isSilent = silentConnections-- > 0; });
        service.onRequest([this](const QJsonObject &request) {
            if (!isSilent)
                service.answer(request, "data", "dock");
        });
    }

    void listen()
    {
        QObject::connect(&client, &Client::notificationReceived, &service, [] {});
    }

    [[nodiscard]] bool connectsTimes(int count)
    {
        return tarnTest::waitUntil([this, count] { return service.connections() == count; }, patienceMs);
    }

    // So many connections, from the next one on, get no answers.
    int silentConnections = 0;
    bool isSilent = false;
};

} // namespace

TEST_F(SilenceTest, NobodyListensSoNothingIsAsked)
{
    Client unheard(service.pipeName(), watchfulTimes());
    unheard.open();
    EXPECT_TRUE(connectsTimes(1));
    tarnTest::waitUntil([] { return false; }, 700); // more than twice the quiet time
    EXPECT_TRUE(service.requests().isEmpty());
}

// Another client was told of it.
TEST_F(SilenceTest, TheAnswerIsTheAccessory)
{
    std::optional<tarn::Accessory> now;
    QObject::connect(&client, &Client::accessoryChanged, &service,
        [&now](std::optional<tarn::Accessory> accessory) { now = accessory; });
    openAndConnect();
    ASSERT_TRUE(tarnTest::waitUntil([&now] { return now == tarn::Accessory::Dock; }, patienceMs));
    service.onRequest([this](const QJsonObject &request) { service.answer(request, "data", "k_vane"); });
    EXPECT_TRUE(tarnTest::waitUntil([&now] { return now == tarn::Accessory::KVane; }, patienceMs));
    EXPECT_EQ(client.accessory(), tarn::Accessory::KVane);
    EXPECT_EQ(service.connections(), 1);
}

TEST_F(SilenceTest, AsksAfterAQuietTimeWhileSomebodyListens)
{
    listen();
    openAndConnect();
    QElapsedTimer time;
    time.start();
    EXPECT_TRUE(tarnTest::waitUntil([this] { return service.requests().size() == 3; }, patienceMs));
    EXPECT_EQ(service.commands().first(), "getAccessoryType");
    EXPECT_GE(time.elapsed(), 600); // the first may have begun a little before
    EXPECT_EQ(service.connections(), 1);
}

TEST_F(SilenceTest, MessagesPutTheQuestionOff)
{
    tarn::ClientTimes times = watchfulTimes();
    times.quietTime = milliseconds(1500);
    Client listener(service.pipeName(), times);
    QObject::connect(&listener, &Client::notificationReceived, &service, [] {});
    listener.open();
    EXPECT_TRUE(connectsTimes(1));
    for (int i = 0; i < 40; ++i)
        service.later(milliseconds(50 * i), [this] { service.notify("getTarnBatteryNum", "50"); });
    tarnTest::waitUntil([] { return false; }, 2000);
    EXPECT_TRUE(service.requests().isEmpty());
}

TEST_F(SilenceTest, AsksAtOnceWhereOldNotificationsWouldMislead)
{
    tarn::ClientTimes times = watchfulTimes();
    times.quietTime = milliseconds(2 * patienceMs);
    Client listener(service.pipeName(), times);
    QObject::connect(&listener, &Client::graphicsDisengaged, &service, [] {});
    listener.open();
    EXPECT_TRUE(tarnTest::waitUntil([this] { return service.requests().size() == 1; }, patienceMs));
}

TEST_F(SilenceTest, ConnectsAnewWhenTheServiceHasFallenSilent)
{
    listen();
    openAndConnect();
    isSilent = true;
    EXPECT_TRUE(connectsTimes(2));
    EXPECT_TRUE(becomes(Client::State::Connected));
    EXPECT_EQ(states,
        (QList {Client::State::Waiting, Client::State::Connected, Client::State::Waiting,
            Client::State::Connected}));
    EXPECT_EQ(service.commands(), QStringList {"getAccessoryType"});
}

TEST_F(SilenceTest, ClosesTheOldConnectionBeforeItOpensTheNext)
{
    listen();
    openAndConnect();
    isSilent = true;
    QList<int> openThen;
    service.onConnection([&] { openThen << service.openConnections(); });
    EXPECT_TRUE(connectsTimes(2));
    EXPECT_EQ(openThen, QList {1});
}

TEST_F(SilenceTest, ARequestWithoutAnAnswerIsAReasonToAsk)
{
    service.onRequest([this](const QJsonObject &request) {
        if (request.value("cmd") == "getAccessoryType")
            service.answer(request, "data", "dock");
    });
    openAndConnect();
    EXPECT_EQ(endOf(client.send("getMcuVersion", {}, milliseconds(30))).outcome(), Outcome::NoAnswer);
    EXPECT_TRUE(tarnTest::waitUntil([this] { return service.requests().size() == 2; }, patienceMs));
    // The second time it has to wait, although nobody listens.
    QElapsedTimer time;
    time.start();
    EXPECT_EQ(endOf(client.send("getMcuVersion", {}, milliseconds(70))).outcome(), Outcome::NoAnswer);
    EXPECT_TRUE(tarnTest::waitUntil([this] { return service.requests().size() == 4; }, patienceMs));
    EXPECT_GE(time.elapsed(), 150); // the request itself takes 70
    EXPECT_EQ(service.commands(),
        (QStringList {"getMcuVersion", "getAccessoryType", "getMcuVersion", "getAccessoryType"}));
    EXPECT_EQ(service.connections(), 1);
}

TEST_F(SilenceTest, RequestsThatWaitGoOutOnTheNextConnection)
{
    openAndConnect();
    isSilent = true;
    const QFuture<Reply> unanswered = client.send("getMcuVersion", {}, milliseconds(30));
    const QFuture<Reply> waiting = client.send("getAccessoryCode");
    EXPECT_EQ(endOf(unanswered).outcome(), Outcome::NoAnswer);
    EXPECT_EQ(endOf(waiting).outcome(), Outcome::Answered);
    EXPECT_EQ(service.connections(), 2);
}

TEST_F(SilenceTest, ThreeLossesInARowAreSaidOnce)
{
    listen();
    silentConnections = 3;
    client.open();
    EXPECT_TRUE(becomes(Client::State::TakenOver));
    EXPECT_EQ(service.connections(), 3);
    const Reply reply = endOf(client.send("getMcuVersion"));
    EXPECT_EQ(reply.outcome(), Outcome::ServiceGone);
    EXPECT_FALSE(reply.wasSent());

    silentConnections = 1;
    QElapsedTimer pause;
    pause.start();
    EXPECT_TRUE(connectsTimes(4));
    EXPECT_GE(pause.elapsed(), 300);
    EXPECT_TRUE(connectsTimes(5)); // a pause later
    EXPECT_GE(pause.elapsed(), 800);
    EXPECT_TRUE(becomes(Client::State::Connected));
    EXPECT_EQ(states.count(Client::State::TakenOver), 1);
    EXPECT_EQ(endOf(client.send("getMcuVersion")).value(), "dock");
}

TEST_F(SilenceTest, NothingIsSaidToBeConnectedAfterATakeOverBeforeAnAnswer)
{
    listen();
    silentConnections = 4;
    client.open();
    EXPECT_TRUE(becomes(Client::State::TakenOver));
    EXPECT_TRUE(connectsTimes(4));
    const QFuture<Reply> waiting = client.send("getMcuVersion");
    EXPECT_EQ(client.state(), Client::State::TakenOver);
    EXPECT_EQ(endOf(waiting).outcome(), Outcome::ServiceGone);
    EXPECT_FALSE(service.commands().contains("getMcuVersion"));
}

TEST_F(SilenceTest, TheApplicationMayAskForTheNextTry)
{
    tarn::ClientTimes times = watchfulTimes();
    times.takenOverPause = milliseconds(2 * patienceMs);
    Client patient(service.pipeName(), times);
    QObject::connect(&patient, &Client::notificationReceived, &service, [] {});
    silentConnections = 3;
    patient.open();
    EXPECT_TRUE(tarnTest::waitUntil([&] { return patient.state() == Client::State::TakenOver; }, patienceMs));
    patient.open();
    EXPECT_EQ(patient.state(), Client::State::Waiting);
    EXPECT_EQ(endOf(patient.send("getMcuVersion")).value(), "dock");
}

TEST_F(SilenceTest, AServiceThatGoesHasNotBeenTakenOver)
{
    listen();
    silentConnections = 3;
    client.open();
    EXPECT_TRUE(becomes(Client::State::TakenOver));
    service.stopListening();
    EXPECT_TRUE(becomes(Client::State::Waiting));
    service.startListening();
    EXPECT_TRUE(becomes(Client::State::Connected));
}

TEST_F(SilenceTest, AServiceThatAnswersNothingForAMinuteIsFoundAgain)
{
    openAndConnect();
    listen();
    silentConnections = 5;
    isSilent = true;
    QList<QFuture<Reply>> futures;
    for (int i = 0; i < 10; ++i) {
        futures << client.send("getMcuVersion", {}, milliseconds(50));
        tarnTest::waitUntil([] { return false; }, 100);
    }
    for (const QFuture<Reply> &future : futures)
        EXPECT_NE(endOf(future).outcome(), Outcome::Answered);
    EXPECT_TRUE(becomes(Client::State::Connected));
    EXPECT_EQ(endOf(client.send("getMcuVersion")).outcome(), Outcome::Answered);
}
