#include "client/client_times.h"
#include "support/pipe_peer.h"
#include "tarn/client.h"
#include "unit/client/fake_service.h"

#include <gtest/gtest.h>

using namespace tarnClientTest;
using tarn::Client;
using tarnTest::waitUntil;

TEST(ClientOtherMessageTest, HasNoMark)
{
    FakeService service;
    service.onRequest([&service](const QJsonObject &request) {
        EXPECT_FALSE(request.value("id").toString().isEmpty());
        service.answer(withField(request, "id", "another"), "data", "22");
    });
    Client client(service.pipeName());
    QJsonObject received;
    QObject::connect(&client, &Client::otherMessageReceived,
        [&received](const QJsonObject &message) { received = message; });
    client.open();
    const QFuture<tarn::Reply> reply = client.send("getTarnBatteryNum");
    EXPECT_TRUE(waitUntil([&received] { return !received.isEmpty(); }));
    EXPECT_EQ(compact(received), R"({"cmd":"getTarnBatteryNum","data":"22"})");
    EXPECT_FALSE(reply.isFinished());
}

TEST(ClientOtherMessageTest, IsNoLateAnswerToAQuestionOfTheClientsOwn)
{
    tarn::ClientTimes times;
    times.leavePause = std::chrono::milliseconds(30);
    times.quietTime = std::chrono::milliseconds(30);
    times.questionLimit = std::chrono::milliseconds(60);
    FakeService service;
    QJsonObject unanswered;
    service.onRequest([&](const QJsonObject &request) {
        if (service.connections() == 1)
            unanswered = request;
        else
            service.answer(request, "data", "dock");
    });
    service.onConnection([&] {
        if (service.connections() == 1)
            return;
        service.answer(unanswered, "data", "late");
        service.answer({{"cmd", "getTarnBatteryNum"}, {"id", "another"}}, "data", "22");
    });
    Client client(service.pipeName(), times);
    QStringList received;
    QObject::connect(&client, &Client::otherMessageReceived,
        [&received](const QJsonObject &message) { received << message.value("data").toString(); });
    // It is still an answer, for a program that shows all that passes.
    bool hasLateAnswer = false;
    QObject::connect(&client, &Client::answerReceived, [&hasLateAnswer](const QByteArray &bytes) {
        hasLateAnswer = hasLateAnswer || bytes.contains("late");
    });
    client.open();
    EXPECT_TRUE(waitUntil([&received] { return received.contains("22"); }));
    EXPECT_EQ(received, QStringList {"22"});
    EXPECT_TRUE(hasLateAnswer);
}
