#include "unit/client/client_fixture.h"

using namespace tarnClientTest;
using tarn::Outcome;

// By it the giver of a request knows what cancelling does.
TEST_F(ClientTest, AFutureTellsThatItsRequestHasBeenWritten)
{
    openAndConnect();
    const auto written = client.getHardwareVersion();
    auto waiting = client.send("setDockLedStatus", "on");
    ASSERT_TRUE(tarnTest::waitUntil([this] { return !service.requests().isEmpty(); }, patienceMs));
    EXPECT_EQ(written.progressValue(), 1);
    EXPECT_EQ(waiting.progressValue(), 0);
    waiting.cancel();

    answerAll("2");
    service.answer(QJsonDocument::fromJson(service.requests().value(0)).object(), "data", "2");
    const auto next = client.getHardwareVersion();
    EXPECT_EQ(endOf(next).outcome(), Outcome::Answered);
    EXPECT_EQ(next.progressValue(), 1);
    EXPECT_EQ(service.commands(), (QStringList {"getHardwareVersion", "getHardwareVersion"}));
}
