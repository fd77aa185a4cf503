#include "client/client_times.h"
#include "support/pipe_peer.h"
#include "tarn/client.h"
#include "unit/client/fake_service.h"

#include <gtest/gtest.h>

using namespace tarnClientTest;
using std::chrono::milliseconds;
using tarn::Client;
using tarnTest::waitUntil;

namespace {

tarn::ClientTimes lossTimes()
{
    tarn::ClientTimes times;
    times.firstRetry = milliseconds(50);
    times.leavePause = milliseconds(50);
    times.quietTime = milliseconds(400);
    times.questionLimit = milliseconds(400);
    return times;
}

// What problem() said each time when the client had lost its connection.
QList<Client::Problem> problemsOfLosses(Client &client)
{
    QList<Client::Problem> problems;
    int states = 0;
    const QMetaObject::Connection connection =
        QObject::connect(&client, &Client::stateChanged, [&](Client::State state) {
            if (++states > 1 && state != Client::State::Connected)
                problems << client.problem();
        });
    client.open();
    EXPECT_TRUE(waitUntil([&] { return !problems.isEmpty() && client.state() == Client::State::Connected; }));
    EXPECT_EQ(client.problem(), Client::Problem::NoProblem);
    QObject::disconnect(connection);
    return problems;
}

} // namespace

TEST(ClientProblemTest, AServiceThatLeavesIsToldAsSuch)
{
    FakeService service;
    service.onConnection([&service] {
        if (service.connections() == 1)
            service.later(milliseconds(20), [&service] { service.dropClient(); });
    });
    Client client(service.pipeName(), lossTimes());
    EXPECT_EQ(problemsOfLosses(client), QList {Client::Problem::ServiceGone});
}

TEST(ClientProblemTest, SilenceIsNoServiceThatLeaves)
{
    FakeService service;
    Client client(service.pipeName(), lossTimes());
    EXPECT_EQ(problemsOfLosses(client), QList {Client::Problem::Silence});
    EXPECT_EQ(service.commands().value(0), "getAccessoryType");
}

TEST(ClientProblemTest, AClosedClientHasNone)
{
    Client client("tarnctlTestNobody", lossTimes());
    client.open();
    EXPECT_TRUE(waitUntil([&client] { return client.problem() == Client::Problem::NoService; }));
    client.close();
    EXPECT_EQ(client.problem(), Client::Problem::NoProblem);
}
