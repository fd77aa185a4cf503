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

tarn::ClientTimes withoutPauses()
{
    tarn::ClientTimes times;
    times.unansweredPause = milliseconds(50);
    return times;
}

} // namespace

TEST(ClientNoAnswerTest, IsFollowedByAQuestionForSilence)
{
    FakeService service;
    Client client(service.pipeName(), withoutPauses());
    client.open();
    const QFuture<tarn::Reply> reply = client.send("getMcuVersion", {}, milliseconds(100));
    EXPECT_TRUE(waitUntil([&] { return service.requests().size() == 2; }));
    EXPECT_EQ(service.commands(), (QStringList {"getMcuVersion", "getAccessoryType"}));
    EXPECT_EQ(reply.result().outcome(), tarn::Outcome::NoAnswer);
}

TEST(ClientNoAnswerTest, AndAnApplicationThatClosesThenSendsNothingMore)
{
    FakeService service;
    Client client(service.pipeName(), withoutPauses());
    client.open();
    client.send("getMcuVersion", {}, milliseconds(100)).then(&client, [&client](const tarn::Reply &) {
        client.close();
    });
    EXPECT_TRUE(waitUntil([&client] { return client.state() == Client::State::Closed; }));
    EXPECT_FALSE(waitUntil([&service] { return service.requests().size() > 1; }, 200));
}
