#include "pipe/handler_threads.h"

#include "../update/update_fixture.h"
#include "pipe/tarn_pipe_server.h"
#include "support/pipe_peer.h"

using tarnDeviceInfos::ecAccessMutex;
using tarnPipeServer::TarnPipeServer;
using tarnTest::waitUntil;

// More requests wait for the EC than there are threads for them.
class HandlerThreads : public tarnTest::UpdateTest
{
protected:
    HandlerThreads() { TarnPipeServer::instance(); }
    ~HandlerThreads() override
    {
        ecAccessMutex.releaseWaiters();
        while (!tarnPipeServer::waitForHandlers(100)) { }
    }

    void crowd()
    {
        for (int sent = 1; sent <= crowdSize; ++sent) {
            client.write(R"({"cmd":"getAccessoryCode"})");
            ASSERT_TRUE(
                waitUntil([&] { return machine.log.count(R"("{\"cmd\":\"getAccessoryCode\"}")") == sent; }));
        }
    }
    void expectCrowdAnswered()
    {
        const QByteArray reply = R"({"cmd":"getAccessoryCode","data":"4"})";
        EXPECT_TRUE(waitUntil([&] { return client.received().count(reply) == crowdSize; }));
    }
    bool isAnswered(const QByteArray &reply)
    {
        return waitUntil([&] { return client.received().contains(reply); }, 3000);
    }

    static constexpr int crowdSize = 300;
    tarnTest::PipePeer client;
};

// A client that polls while a question to the user is open must still get what needs no EC.
TEST_F(HandlerThreads, WaitingForTheEcLeaveTheOthersAlone)
{
    ASSERT_TRUE(ecAccessMutex.lock());
    ASSERT_TRUE(client.connectToService());
    crowd();
    client.write(R"({"cmd":"getAccessoryType"})");
    EXPECT_TRUE(isAnswered(R"({"cmd":"getAccessoryType","data":"k_vane"})"));
    client.write("nonsense");
    EXPECT_TRUE(waitUntil([this] { return machine.log.contains("\"nonsense\""); }));
    ecAccessMutex.unlock();
    expectCrowdAnswered();
}

TEST_F(HandlerThreads, DoNotShutTheClientOutOfTheEndOfAnMcuUpdate)
{
    ASSERT_TRUE(client.connectToService());
    client.write(R"({"cmd":"requestEnterMcuUpdateMode"})");
    ASSERT_TRUE(isAnswered(R"({"cmd":"requestEnterMcuUpdateMode","data":"successed"})"));
    crowd();
    client.write(R"({"cmd":"requestLeaveMcuUpdateMode"})");
    EXPECT_TRUE(isAnswered(R"({"cmd":"requestLeaveMcuUpdateMode","data":"2.05"})"));
    expectCrowdAnswered();
}

TEST_F(HandlerThreads, DoNotShutTheClientOutOfAnEcUpdate)
{
    ASSERT_TRUE(client.connectToService());
    client.write(R"({"cmd":"requestStartEcUpdate"})");
    ASSERT_TRUE(isAnswered(R"({"cmd":"requestStartEcUpdate","data":"successed"})"));
    crowd();
    client.write(R"({"cmd":"requestEcUpdate","data":"missing.rom"})");
    EXPECT_TRUE(isAnswered(R"({"cmd":"requestEcUpdate","data":"failed"})"));
}
