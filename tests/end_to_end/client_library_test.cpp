#include "client/client_times.h"
#include "device/ec_registers.h"
#include "end_to_end/service_client.h"
#include "end_to_end/service_process.h"
#include "support/pipe_peer.h"

#include "tarn/client.h"

#include <gtest/gtest.h>

using namespace tarnDeviceInfos;
using namespace tarn;
using tarnTest::ServiceClient;
using tarnTest::ServiceProcess;
using tarnTest::waitUntil;

namespace {

constexpr int patienceMs = 60000;

// Looks for silence every few seconds instead of every minute.
ClientTimes watchfulTimes()
{
    using std::chrono::milliseconds;
    ClientTimes times;
    times.quietTime = milliseconds(3000);
    times.questionLimit = milliseconds(5000);
    return times;
}

class ClientLibrary : public ::testing::Test
{
protected:
    ClientLibrary()
        : client(QStringLiteral("tarnPipe"), watchfulTimes())
    {
        QObject::connect(
            &client, &Client::stateChanged, &client, [this](Client::State state) { states << state; });
    }

    template <typename T> [[nodiscard]] static T endOf(const QFuture<T> &future)
    {
        EXPECT_TRUE(waitUntil([&future] { return future.isFinished(); }, patienceMs));
        return future.resultCount() == 1 ? future.result() : T();
    }

    [[nodiscard]] bool becomes(Client::State state)
    {
        return waitUntil([this, state] { return client.state() == state; }, patienceMs);
    }

    ServiceProcess service;
    Client client;
    QList<Client::State> states;
};

} // namespace

TEST_F(ClientLibrary, AsksSetsAndFollowsTheComputer)
{
    QObject::connect(&client, &Client::accessoryChanged, &client, [] {});
    QObject::connect(&client, &Client::kvaneBatteryLevelChanged, &client, [] {});
    client.open();
    ASSERT_TRUE(service.start());
    ASSERT_TRUE(becomes(Client::State::Connected));
    EXPECT_EQ(endOf(client.getAccessoryType()).result(), Accessory::Disconnected);
    service.attach(ACCESSORY_KVANE);
    EXPECT_TRUE(waitUntil([this] { return client.accessory() == Accessory::KVane; }, patienceMs));
    service.computer().setKvaneBattery(42);
    EXPECT_TRUE(waitUntil([this] { return client.kvaneBatteryLevel() == 42; }, patienceMs));
    EXPECT_EQ(endOf(client.getMcuVersion()).result(), "2.05");
    EXPECT_EQ(endOf(client.powerModeControlFirst()).result(), Profile::Balance);
    EXPECT_TRUE(endOf(client.powerModeControl(Profile::Low)).isAnswered());
    EXPECT_EQ(endOf(client.powerModeControlLast()).outcome(), Outcome::Sent);
    EXPECT_EQ(endOf(client.send("noSuchCommand", {}, std::chrono::milliseconds(1500))).outcome(),
        Outcome::NoAnswer);
    EXPECT_EQ(client.state(), Client::State::Connected);
    EXPECT_EQ(service.stop(), 0);
}

TEST_F(ClientLibrary, ComesBackAfterAnotherClientAndAfterARestart)
{
    QObject::connect(&client, &Client::accessoryChanged, &client, [] {});
    ASSERT_TRUE(service.start());
    client.open();
    ASSERT_TRUE(becomes(Client::State::Connected));
    {
        ServiceClient other;
        ASSERT_TRUE(other.connectToService());
        other.leave();
    }
    ASSERT_TRUE(waitUntil([this] { return states.count(Client::State::Waiting) == 2; }, patienceMs));
    ASSERT_TRUE(becomes(Client::State::Connected));
    service.attach(ACCESSORY_DOCK);
    EXPECT_TRUE(waitUntil([this] { return client.accessory() == Accessory::Dock; }, patienceMs));

    const QFuture<Reply> cutShort = client.send("getMcuVersion");
    EXPECT_TRUE(waitUntil([this] { return service.log().contains("getMcuVersion"); }, patienceMs));
    service.kill();
    EXPECT_NE(endOf(cutShort).outcome(), Outcome::NoAnswer);
    ASSERT_TRUE(becomes(Client::State::Waiting));
    EXPECT_EQ(client.accessory(), std::nullopt);
    ASSERT_TRUE(service.start());
    EXPECT_TRUE(waitUntil([this] { return client.accessory() == Accessory::Dock; }, patienceMs));
    EXPECT_FALSE(states.contains(Client::State::TakenOver));
    EXPECT_EQ(service.stop(), 0);
}
