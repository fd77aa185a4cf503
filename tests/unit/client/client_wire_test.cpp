#include "unit/client/client_fixture.h"

#include <algorithm>

using namespace tarnClientTest;
using tarn::Client;
using tarn::Outcome;
using tarn::Reply;

namespace {

// What a program sees that shows all that passes.
class WireTest : public ClientTest
{
protected:
    WireTest()
    {
        QObject::connect(
            &client, &Client::requestWritten, &client, [this](const QByteArray &bytes) { written << bytes; });
        QObject::connect(
            &client, &Client::answerReceived, &client, [this](const QByteArray &bytes) { answers << bytes; });
    }

    [[nodiscard]] static QString field(const QByteArray &bytes, const char *name)
    {
        return QJsonDocument::fromJson(bytes).object().value(QLatin1StringView(name)).toString();
    }

    QList<QByteArray> written;
    QList<QByteArray> answers;
};

} // namespace

TEST_F(WireTest, HasEachRequestAndItsAnswerAsTheyAreOnThePipe)
{
    answerAll("1.23");
    openAndConnect();
    const Reply reply = endOf(client.send("setDockLedStatus", "on"));
    ASSERT_EQ(written.size(), 1);
    ASSERT_EQ(answers.size(), 1);
    EXPECT_EQ(field(written.front(), "cmd"), "setDockLedStatus");
    EXPECT_EQ(field(written.front(), "data"), "on");
    EXPECT_FALSE(field(written.front(), "id").isEmpty());
    EXPECT_EQ(field(answers.front(), "id"), field(written.front(), "id"));
    EXPECT_EQ(reply.outcome(), Outcome::Answered);
}

TEST_F(WireTest, HasTheClientsOwnQuestionsToo)
{
    QObject::connect(&client, &Client::batteryLevelChanged, &client, [](std::optional<int>) {});
    answerAll("42");
    openAndConnect();
    ASSERT_TRUE(tarnTest::waitUntil([this] { return client.batteryLevel() == 42; }, patienceMs));
    const auto isOf = [](const QByteArray &bytes) {
        return field(bytes, "cmd") == "getTarnBatteryNum";
    };
    EXPECT_EQ(std::ranges::count_if(written, isOf), 1);
    EXPECT_EQ(std::ranges::count_if(answers, isOf), 1);
}

TEST_F(WireTest, HasNothingOfWhatIsNoAnswer)
{
    openAndConnect();
    bool hasCome = false;
    QObject::connect(&client, &Client::notificationReceived, &client, [&hasCome] { hasCome = true; });
    service.notify("getTarnBatteryNum", "1");
    ASSERT_TRUE(tarnTest::waitUntil([&hasCome] { return hasCome; }, patienceMs));
    for (const QByteArray &answer : answers)
        EXPECT_NE(field(answer, "data"), "1");
}

TEST_F(WireTest, MayCloseTheClientInItsSlots)
{
    openAndConnect();
    QObject::connect(&client, &Client::requestWritten, &client, &Client::close);
    EXPECT_EQ(endOf(client.send("getMcuVersion")).outcome(), Outcome::NoAnswer);
    EXPECT_EQ(client.state(), Client::State::Closed);

    QObject::disconnect(&client, &Client::requestWritten, &client, &Client::close);
    QObject::connect(&client, &Client::answerReceived, &client, &Client::close);
    answerAll("1.23");
    openAndConnect();
    EXPECT_EQ(endOf(client.send("getMcuVersion")).value(), "1.23");
    EXPECT_EQ(client.state(), Client::State::Closed);
}
