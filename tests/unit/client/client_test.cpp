#include "unit/client/client_fixture.h"

#include <QPointer>
#include <QThread>

using namespace tarnClientTest;
using std::chrono::milliseconds;
using tarn::Client;
using tarn::Outcome;
using tarn::Reply;

TEST_F(ClientTest, ConnectsAndSaysSo)
{
    EXPECT_EQ(client.state(), Client::State::Closed);
    client.open();
    EXPECT_EQ(client.state(), Client::State::Waiting);
    EXPECT_TRUE(becomes(Client::State::Connected));
    EXPECT_EQ(states, (QList {Client::State::Waiting, Client::State::Connected}));
    client.close();
    EXPECT_EQ(client.state(), Client::State::Closed);
    EXPECT_EQ(states.last(), Client::State::Closed);
    EXPECT_TRUE(service.requests().isEmpty());
}

TEST_F(ClientTest, WaitsForTheService)
{
    service.stopListening();
    int failures = 0;
    QObject::connect(&client, &Client::connectingFailed, &service, [&] {
        if (++failures == 3)
            service.startListening();
    });
    client.open();
    EXPECT_TRUE(becomes(Client::State::Connected));
    EXPECT_GE(failures, 3);
    EXPECT_EQ(client.problem(), Client::Problem::NoProblem);
}

TEST_F(ClientTest, TellsWhyThereIsNoConnection)
{
    service.stopListening();
    client.open();
    EXPECT_TRUE(
        tarnTest::waitUntil([this] { return client.problem() != Client::Problem::NoProblem; }, patienceMs));
    EXPECT_EQ(client.problem(), Client::Problem::NoService);
    EXPECT_TRUE(client.pipePath().endsWith(service.pipeName())) << client.pipePath().toStdString();

    Client tooLong(QString(500, 'x'));
    tooLong.open();
    EXPECT_TRUE(
        tarnTest::waitUntil([&] { return tooLong.problem() != Client::Problem::NoProblem; }, patienceMs));
    EXPECT_EQ(tooLong.problem(), Client::Problem::NameTooLong);
    EXPECT_EQ(tooLong.state(), Client::State::Waiting);
}

TEST_F(ClientTest, GivesTheAnswerAsTheServiceGaveIt)
{
    answerAll("1.23");
    openAndConnect();
    const Reply reply = endOf(client.send("getMcuVersion"));
    EXPECT_EQ(reply.outcome(), Outcome::Answered);
    EXPECT_TRUE(reply.isAnswered());
    EXPECT_EQ(reply.command(), "getMcuVersion");
    EXPECT_EQ(reply.value(), "1.23");
    EXPECT_EQ(reply.answer(), (QJsonObject {{"cmd", "getMcuVersion"}, {"data", "1.23"}}));
    EXPECT_TRUE(reply.wasSent());
    EXPECT_TRUE(reply.reason().isEmpty());
    const QJsonObject request = QJsonDocument::fromJson(service.requests().value(0)).object();
    EXPECT_EQ(request.keys(), (QStringList {"cmd", "id"}));
}

TEST_F(ClientTest, SendsData)
{
    answerAll("successed");
    openAndConnect();
    EXPECT_EQ(endOf(client.send("setDockLedStatus", "on")).value(), "successed");
    EXPECT_EQ(endOf(client.send("setDockLedStatus", "")).value(), "successed");
    EXPECT_EQ(QJsonDocument::fromJson(service.requests().value(0)).object().value("data"), QJsonValue("on"));
    EXPECT_EQ(QJsonDocument::fromJson(service.requests().value(1)).object().value("data"), QJsonValue(""));
}

TEST_F(ClientTest, FailedIsAnOutcomeOfItsOwn)
{
    answerAll("failed");
    openAndConnect();
    const Reply reply = endOf(client.send("setDockLedStatus", "on"));
    EXPECT_EQ(reply.outcome(), Outcome::Failed);
    EXPECT_EQ(reply.value(), "failed");
    EXPECT_EQ(reply.reason(), "The service answered \"failed\" to setDockLedStatus.");
    // A query may answer with that word; it is a value then.
    EXPECT_EQ(endOf(client.send("getMcuVersion")).outcome(), Outcome::Answered);
}

TEST_F(ClientTest, WritesOneRequestAtATimeInOrder)
{
    QList<QJsonObject> open;
    service.onRequest([&](const QJsonObject &request) {
        open << request;
        EXPECT_EQ(open.size(), 1);
        service.later(milliseconds(15), [&] { service.answer(open.takeFirst(), "data", "x"); });
    });
    openAndConnect();
    QList<QFuture<Reply>> futures;
    for (const char *command :
        {"getMcuVersion", "getAccessoryCode", "getHardwareVersion", "getAccessoryCode"})
        futures << client.send(command);
    for (const QFuture<Reply> &future : futures)
        EXPECT_EQ(endOf(future).outcome(), Outcome::Answered);
    EXPECT_EQ(service.commands(),
        (QStringList {"getMcuVersion", "getAccessoryCode", "getHardwareVersion", "getAccessoryCode"}));
    EXPECT_EQ(service.connections(), 1);
}

TEST_F(ClientTest, AnAnswerToAnotherRequestIsNotTaken)
{
    QList<QJsonObject> others;
    QObject::connect(&client, &Client::otherMessageReceived, &service,
        [&](const QJsonObject &message) { others << message; });
    service.onRequest([this](const QJsonObject &request) {
        service.answer(withField(request, "id", "of another program"), "data", "wrong");
        service.answer({{"cmd", "getMcuVersion"}}, "data", "wrong");
        service.answer(request, "data", "right");
    });
    openAndConnect();
    EXPECT_EQ(endOf(client.send("getMcuVersion")).value(), "right");
    ASSERT_EQ(others.size(), 2);
    EXPECT_EQ(others.first().value("data"), QJsonValue("wrong"));
}

TEST_F(ClientTest, NoAnswerInTime)
{
    openAndConnect();
    const Reply reply = endOf(client.send("getMcuVersion", {}, milliseconds(50)));
    EXPECT_EQ(reply.outcome(), Outcome::NoAnswer);
    EXPECT_TRUE(reply.wasSent());
    EXPECT_GE(reply.waited(), milliseconds(50));
    EXPECT_TRUE(reply.value().isEmpty());
    EXPECT_EQ(reply.reason(), "No answer to getMcuVersion within 0.05 s.");
}

TEST_F(ClientTest, AnAnswerThatCameWhileTheThreadWasBusyIsTaken)
{
    service.onRequest([this](const QJsonObject &request) {
        service.answer(request, "data", "1.23");
        QThread::msleep(400); // client and service are on this thread
    });
    openAndConnect();
    EXPECT_EQ(endOf(client.send("getMcuVersion", {}, milliseconds(100))).value(), "1.23");
}

TEST_F(ClientTest, ALateAnswerEndsNothingElse)
{
    QJsonObject first;
    service.onRequest([&](const QJsonObject &request) {
        if (request.value("cmd") == "getMcuVersion") {
            first = request;
        } else if (request.value("cmd") == "getAccessoryCode") {
            service.answer(first, "data", "late");
            service.answer(request, "data", "4");
        } else {
            service.answer(request, "data", "dock");
        }
    });
    openAndConnect();
    EXPECT_EQ(endOf(client.send("getMcuVersion", {}, milliseconds(30))).outcome(), Outcome::NoAnswer);
    EXPECT_EQ(endOf(client.send("getAccessoryCode")).value(), "4");
}

TEST_F(ClientTest, MessagesBeforeTheAnswerGiveItMoreTime)
{
    service.onRequest([this](const QJsonObject &request) {
        for (int message = 0; message < 4; ++message) // half a second each
            service.notify("getTarnBatteryNum", "50");
        service.later(milliseconds(1700), [this, request] { service.answer(request, "data", "x"); });
    });
    openAndConnect();
    EXPECT_EQ(endOf(client.send("getMcuVersion", {}, milliseconds(1500))).outcome(), Outcome::Answered);
}

TEST_F(ClientTest, TheNextRequestIsWrittenWellAfterOneWithoutAnAnswer)
{
    QElapsedTimer sinceFirst;
    qint64 between = -1;
    service.onRequest([&](const QJsonObject &) {
        if (sinceFirst.isValid() && between < 0)
            between = sinceFirst.elapsed();
        else
            sinceFirst.start();
    });
    tarn::ClientTimes times = shortTimes();
    times.unansweredPause = milliseconds(1000);
    Client pausing(service.pipeName(), times);
    pausing.open();
    const QFuture<Reply> first = pausing.send("getMcuVersion", {}, milliseconds(1));
    const QFuture<Reply> second = pausing.send("getAccessoryCode", {}, milliseconds(1));
    EXPECT_EQ(endOf(first).outcome(), Outcome::NoAnswer);
    EXPECT_EQ(endOf(second).outcome(), Outcome::NoAnswer);
    EXPECT_GE(between, 500); // the service may see the first one late
}

TEST_F(ClientTest, WhatIsNeverAnsweredEndsAsSent)
{
    openAndConnect();
    QElapsedTimer time;
    time.start();
    const QFuture<Reply> last = client.send("powerModeControl", "last");
    const QFuture<Reply> next = client.send("getMcuVersion", {}, milliseconds(1));
    const Reply reply = endOf(last);
    EXPECT_EQ(reply.outcome(), Outcome::Sent);
    EXPECT_TRUE(reply.wasSent());
    EXPECT_TRUE(reply.reason().isEmpty());
    EXPECT_GE(time.elapsed(), 55);
    EXPECT_EQ(service.commands(), QStringList {"powerModeControl"});
    EXPECT_EQ(endOf(next).outcome(), Outcome::NoAnswer);
}

TEST_F(ClientTest, RequestsWaitForAConnectionButNotForEver)
{
    service.stopListening();
    client.open();
    const Reply reply = endOf(client.send("getMcuVersion"));
    EXPECT_EQ(reply.outcome(), Outcome::ServiceGone);
    EXPECT_FALSE(reply.wasSent());
    EXPECT_EQ(reply.reason(), "There is no connection to the service.");

    const QFuture<Reply> waiting = client.send("getMcuVersion");
    answerAll("1.23");
    service.startListening();
    EXPECT_EQ(endOf(waiting).outcome(), Outcome::Answered);
}

TEST_F(ClientTest, TheServiceGoesBeforeItAnswers)
{
    service.onRequest([this](const QJsonObject &request) {
        if (request.value("cmd") == "getMcuVersion")
            service.dropClient();
        else
            service.answer(request, "data", "4");
    });
    openAndConnect();
    const QFuture<Reply> lost = client.send("getMcuVersion");
    const QFuture<Reply> next = client.send("getAccessoryCode");
    const Reply reply = endOf(lost);
    EXPECT_EQ(reply.outcome(), Outcome::ServiceGone);
    EXPECT_TRUE(reply.wasSent());
    EXPECT_EQ(reply.reason(), "The service went away before it answered getMcuVersion.");
    EXPECT_EQ(endOf(next).value(), "4");
    EXPECT_EQ(service.connections(), 2);
    EXPECT_EQ(states.mid(2), (QList {Client::State::Waiting, Client::State::Connected}));
}

TEST_F(ClientTest, ComesBackEveryTimeTheServiceGoes)
{
    answerAll("1");
    openAndConnect();
    for (int i = 0; i < 20; ++i) {
        service.stopListening();
        service.dropClient();
        const QFuture<Reply> future = client.send("getMcuVersion");
        service.later(milliseconds(30), [this] { service.startListening(); });
        EXPECT_TRUE(tarnTest::waitUntil([&] { return future.isFinished(); }, patienceMs));
        ASSERT_TRUE(tarnTest::waitUntil([&] { return service.connections() == i + 2; }, patienceMs));
    }
    EXPECT_EQ(endOf(client.send("getMcuVersion")).value(), "1");
    EXPECT_EQ(service.connections(), 21);
    EXPECT_FALSE(states.contains(Client::State::TakenOver));
}

TEST_F(ClientTest, OpeningItTwiceChangesNothing)
{
    answerAll("1");
    openAndConnect();
    client.open();
    EXPECT_EQ(client.state(), Client::State::Connected);
    EXPECT_EQ(endOf(client.send("getMcuVersion")).value(), "1");
    EXPECT_EQ(service.connections(), 1);
}

TEST_F(ClientTest, ARequestThatFoundAConnectionWaitsForItsTurn)
{
    service.onRequest([this](const QJsonObject &request) {
        service.later(milliseconds(400), [this, request] { service.answer(request, "data", "1"); });
    });
    client.open();
    const QFuture<Reply> first = client.send("getMcuVersion");
    const QFuture<Reply> second =
        client.send("getMcuVersion"); // longer than a request waits for a connection
    EXPECT_EQ(endOf(first).outcome(), Outcome::Answered);
    EXPECT_EQ(endOf(second).outcome(), Outcome::Answered);
}

TEST_F(ClientTest, AnyLimitEndsTheRequest)
{
    openAndConnect();
    EXPECT_EQ(endOf(client.send("getMcuVersion", {}, milliseconds(-5))).outcome(), Outcome::NoAnswer);
    service.onRequest([this](const QJsonObject &request) {
        service.notify("getTarnBatteryNum", "50");
        service.later(milliseconds(800), [this, request] { service.answer(request, "data", "x"); });
    });
    EXPECT_EQ(endOf(client.send("getMcuVersion", {}, milliseconds::max())).outcome(), Outcome::Answered);
    EXPECT_EQ(
        endOf(client.send("getMcuVersion", {}, std::chrono::hours(24 * 30))).outcome(), Outcome::Answered);
}

TEST_F(ClientTest, HalfAMessageIsGivenUp)
{
    tarn::ClientTimes times = shortTimes();
    times.quietTime = milliseconds(patienceMs); // an answer would become part of the message
    Client patient(service.pipeName(), times);
    QByteArray garbage;
    QObject::connect(
        &patient, &Client::garbageReceived, &service, [&](const QByteArray &bytes) { garbage += bytes; });
    answerAll("x");
    patient.open();
    EXPECT_EQ(endOf(patient.send("getMcuVersion")).value(), "x");
    service.write(R"({"cmd":"getTarnBatteryNum","da)");
    EXPECT_TRUE(tarnTest::waitUntil([&] { return !garbage.isEmpty(); }, patienceMs));
    EXPECT_EQ(garbage, R"({"cmd":"getTarnBatteryNum","da)");
    EXPECT_EQ(endOf(patient.send("getMcuVersion")).value(), "x");
}

TEST_F(ClientTest, RefusesWhatCannotBeSent)
{
    const Reply closed = endOf(client.send("getMcuVersion"));
    EXPECT_EQ(closed.outcome(), Outcome::Refused);
    EXPECT_EQ(closed.reason(), "The client is not open.");

    answerAll("successed");
    openAndConnect();
    EXPECT_EQ(endOf(client.send("")).reason(), "A request needs the name of a command.");
    const Reply tooLarge = endOf(client.send("setDockLedStatus", QString(5000, 'x')));
    EXPECT_EQ(tooLarge.outcome(), Outcome::Refused);
    EXPECT_FALSE(tooLarge.wasSent());
    EXPECT_TRUE(tooLarge.reason().endsWith("the service takes up to 4095."))
        << tooLarge.reason().toStdString();
    // What fits exactly goes.
    const Reply small = endOf(client.send("setDockLedStatus", "x"));
    const auto frame = service.requests().last().size() - 1;
    EXPECT_EQ(small.outcome(), Outcome::Answered);
    EXPECT_EQ(
        endOf(client.send("setDockLedStatus", QString(4000 - frame, 'x'))).outcome(), Outcome::Answered);
}

TEST_F(ClientTest, TakesALimitedNumberOfRequests)
{
    openAndConnect();
    QList<QFuture<Reply>> futures;
    for (int i = 0; i < 1005; ++i)
        futures << client.send("getMcuVersion");
    EXPECT_TRUE(futures.last().isFinished());
    EXPECT_EQ(futures.last().result().outcome(), Outcome::Refused);
    EXPECT_EQ(futures.last().result().reason(), "Too many requests wait: 1000.");
    EXPECT_FALSE(futures.at(999).isFinished());
}

TEST_F(ClientTest, EveryRequestEndsWithTheClient)
{
    auto mortal = std::make_unique<Client>(service.pipeName(), shortTimes());
    mortal->open();
    const QFuture<Reply> written = mortal->send("getMcuVersion");
    const QFuture<Reply> waiting = mortal->send("getMcuVersion");
    EXPECT_TRUE(tarnTest::waitUntil([this] { return service.requests().size() == 1; }, patienceMs));
    mortal.reset();
    EXPECT_EQ(endOf(written).outcome(), Outcome::NoAnswer);
    EXPECT_TRUE(endOf(written).wasSent());
    EXPECT_EQ(endOf(written).reason(), "The client was closed before the answer came.");
    EXPECT_EQ(endOf(waiting).outcome(), Outcome::Refused);
    EXPECT_EQ(endOf(waiting).reason(), "The client was closed before the request was sent.");
}

TEST_F(ClientTest, CloseEndsRequestsAndOpenBeginsAnew)
{
    openAndConnect();
    const QFuture<Reply> written = client.send("getMcuVersion");
    EXPECT_TRUE(tarnTest::waitUntil([this] { return service.requests().size() == 1; }, patienceMs));
    client.close();
    EXPECT_EQ(endOf(written).outcome(), Outcome::NoAnswer);
    answerAll("2");
    client.open();
    EXPECT_EQ(endOf(client.send("getMcuVersion")).value(), "2");
}

TEST_F(ClientTest, ACanceledRequestIsNotWritten)
{
    QJsonObject first;
    service.onRequest([&](const QJsonObject &request) {
        if (first.isEmpty())
            first = request;
        else
            service.answer(request, "data", "x");
    });
    openAndConnect();
    const QFuture<Reply> written = client.send("getMcuVersion");
    QFuture<Reply> canceled = client.send("getAccessoryCode");
    const QFuture<Reply> after = client.send("getHardwareVersion");
    EXPECT_TRUE(tarnTest::waitUntil([&] { return !first.isEmpty(); }, patienceMs));
    canceled.cancel();
    // It leaves the queue at once, not when its turn comes.
    EXPECT_TRUE(tarnTest::waitUntil([&] { return canceled.isFinished(); }, patienceMs));
    EXPECT_FALSE(written.isFinished());
    EXPECT_EQ(canceled.resultCount(), 0);
    service.answer(first, "data", "x");
    EXPECT_EQ(endOf(after).outcome(), Outcome::Answered);
    EXPECT_EQ(service.commands(), (QStringList {"getMcuVersion", "getHardwareVersion"}));
}

TEST_F(ClientTest, ARequestThatIsCanceledWhileItIsOnItsWayIsCarriedOut)
{
    QJsonObject first;
    service.onRequest([&](const QJsonObject &request) { first = request; });
    openAndConnect();
    QFuture<Reply> canceled = client.send("getMcuVersion");
    const QFuture<Reply> next = client.send("getAccessoryCode");
    EXPECT_TRUE(tarnTest::waitUntil([&] { return !first.isEmpty(); }, patienceMs));
    canceled.cancel();
    answerAll("4");
    service.answer(first, "data", "x");
    EXPECT_EQ(endOf(next).value(), "4");
    EXPECT_TRUE(canceled.isFinished());
    EXPECT_EQ(canceled.resultCount(), 0);
}

TEST_F(ClientTest, AContinuationMaySendAndClose)
{
    answerAll("1");
    openAndConnect();
    QPointer<QObject> context(new QObject(&service));
    QFuture<Reply> second;
    client.send("getMcuVersion").then(context, [&](const Reply &) {
        second = client.send("getAccessoryCode");
    });
    EXPECT_TRUE(tarnTest::waitUntil([&] { return second.isValid() && second.isFinished(); }, patienceMs));
    client.send("getMcuVersion").then([&](const Reply &) { client.close(); });
    EXPECT_TRUE(becomes(Client::State::Closed));
}

TEST_F(ClientTest, AReplyInSinglePiecesIsOneReply)
{
    QByteArray left;
    const std::function<void()> writeNext = [&] {
        service.write(left.left(1));
        left.remove(0, 1);
        if (!left.isEmpty())
            service.later(milliseconds(1), writeNext);
    };
    service.onRequest([&](const QJsonObject &request) {
        left = compact(withField(request, "data", QStringLiteral("Grün {\"")));
        writeNext();
    });
    openAndConnect();
    EXPECT_EQ(endOf(client.send("getMcuVersion")).value(), QStringLiteral("Grün {\""));
}

TEST_F(ClientTest, GarbageIsReportedAndDisturbsNothing)
{
    QByteArray garbage;
    QObject::connect(
        &client, &Client::garbageReceived, &service, [&](const QByteArray &bytes) { garbage += bytes; });
    service.onRequest([this](const QJsonObject &request) {
        service.write(QByteArrayLiteral("\xff\x00]]}}\"\"[1,2]"));
        service.write("{not json}");
        service.write("{\"cmd\":5,\"data\":[]}");
        service.answer(request, "data", "1.23");
    });
    openAndConnect();
    EXPECT_EQ(endOf(client.send("getMcuVersion")).value(), "1.23");
    EXPECT_TRUE(garbage.contains("]]}}")) << garbage.toStdString();
    EXPECT_TRUE(garbage.contains("{not json}")) << garbage.toStdString();
}

TEST_F(ClientTest, NotificationsFromBeforeTheFirstAnswerAreOld)
{
    QList<tarn::Notification> seen;
    QList<std::optional<int>> levels;
    QObject::connect(&client, &Client::notificationReceived, &service,
        [&](const tarn::Notification &notification) { seen << notification; });
    QObject::connect(
        &client, &Client::batteryLevelChanged, &service, [&](std::optional<int> level) { levels << level; });
    service.onConnection([this] {
        for (int i = 0; i < 10000; ++i)
            service.notify("getTarnBatteryNum", QString::number(i % 100));
    });
    service.onRequest([this](const QJsonObject &request) { service.answer(request, "data", "77"); });
    openAndConnect();
    EXPECT_TRUE(tarnTest::waitUntil([&] { return !levels.isEmpty(); }, patienceMs));
    EXPECT_EQ(levels, QList<std::optional<int>> {77});
    ASSERT_EQ(seen.size(), 10000);
    EXPECT_TRUE(seen.first().isOld);
    EXPECT_TRUE(seen.last().isOld);
    service.notify("getTarnBatteryNum", "78");
    EXPECT_TRUE(tarnTest::waitUntil([&] { return levels.size() == 2; }, patienceMs));
    EXPECT_FALSE(seen.last().isOld);
    EXPECT_EQ(service.commands().count("getTarnBatteryNum"), 1);
}
