#include "pipe/outbox/send_queue_thread.h"

#include "pipe/tarn_pipe_server.h"
#include "support/pipe_peer.h"
#include "support/queued_messages.h"
#include "support/simulated_machine.h"

#include <atomic>
#include <thread>

using namespace tarnPipeServer;
using tarnTest::PipePeer;
using tarnTest::queuedMessages;
using tarnTest::waitUntil;

// Without a client: the loop runs on the test's own thread and the plan on the virtual clock ends it.
class SendLoop : public tarnTest::MachineTest
{
protected:
    SendLoop()
    {
        TarnPipeServer::instance();
        queue = SendQueueThread::instance();
        machine.log.clear();
    }

    SendQueueThread *queue;
};

TEST(SendQueueCreation, IsLoggedInItsOwnWords)
{
    const tarnTest::LogCapture log;
    const SendQueueThread *queue = SendQueueThread::instance();
    EXPECT_EQ(SendQueueThread::instance(), queue);
    EXPECT_EQ(log.lines(), QStringList({"SendQueueThread is creat!"}));
}

TEST_F(SendLoop, WaitsHalfASecondBeforeEachMessage)
{
    for (const char *message : {"one", "two", "three"})
        queue->enqueueMessage(message);
    machine.clock.at(std::chrono::milliseconds(1500), [this] { queue->setRunning(false); });
    queue->run();
    EXPECT_EQ(machine.clock.waits(), std::vector<int>({500, 500, 500}));
    EXPECT_EQ(machine.log.lines(),
        QStringList({"server send is running!", "tarn client is exit!", "tarn client is exit!",
            "tarn client is exit!"}));
    EXPECT_TRUE(queuedMessages().isEmpty());
}

// Half a second for each message, in which the monitor and the handlers would be blocked.
TEST_F(SendLoop, TakesNewMessagesDuringThePause)
{
    queue->enqueueMessage("first");
    std::atomic<bool> taken {false};
    std::thread producer;
    machine.clock.at(std::chrono::milliseconds(500), [&] {
        producer = std::thread([&] {
            queue->enqueueMessage("second");
            taken = true;
        });
        EXPECT_TRUE(waitUntil([&] { return taken.load(); }, 3000));
        queue->setRunning(false);
    });
    queue->run();
    producer.join();
    EXPECT_EQ(queuedMessages(), QStringList({"second"}));
}

TEST_F(SendLoop, DoesNothingWhenItIsNotToRun)
{
    queue->enqueueMessage("kept");
    queue->setRunning(false);
    queue->run();
    EXPECT_TRUE(machine.clock.waits().empty());
    EXPECT_EQ(machine.log.lines(), QStringList({"server send is running!"}));
    EXPECT_EQ(queuedMessages(), QStringList({"kept"}));
}

TEST_F(SendLoop, TakesNothingAfterAStopAndSendsOneEmptyMessage)
{
    queue->enqueueMessage("kept");
    queue->requestStop();
    machine.clock.at(std::chrono::milliseconds(500), [this] { queue->setRunning(false); });
    queue->run();
    EXPECT_EQ(machine.log.lines(),
        QStringList({"send Thread is quit!", "server send is running!", "tarn client is exit!"}));
    EXPECT_EQ(queuedMessages(), QStringList({"kept"}));
}

TEST_F(SendLoop, TakesNothingWhileItsStopIsSetAndGoesOnWhenItIsCleared)
{
    queue->enqueueMessage("kept");
    queue->setStopRequested(true);
    machine.clock.at(std::chrono::milliseconds(500), [this] { queue->setRunning(false); });
    queue->run();
    EXPECT_EQ(machine.log.lines(), QStringList({"server send is running!", "tarn client is exit!"}));
    EXPECT_EQ(queuedMessages(), QStringList({"kept"}));

    queue->setStopRequested(false);
    queue->setRunning(true);
    machine.clock.at(std::chrono::milliseconds(1000), [this] { queue->setRunning(false); });
    queue->run();
    EXPECT_TRUE(queuedMessages().isEmpty());
}

TEST_F(SendLoop, WaitsForTheFirstMessageAndWakesForAStop)
{
    queue->startSending();
    ASSERT_TRUE(waitUntil([this] { return machine.log.contains("Queue is waiting!"); }));
    EXPECT_TRUE(machine.clock.waits().empty());
    queue->setRunning(false);
    queue->requestStop();
    ASSERT_TRUE(waitUntil([this] { return queue->isFinished(); }));
    EXPECT_EQ(machine.log.lines(),
        QStringList({"server send is running!", "Queue is waiting!", "send Thread is quit!",
            "tarn client is exit!"}));
    EXPECT_EQ(machine.clock.waits(), std::vector<int>({500}));
}

// The end of the process would otherwise wait half a second for an empty message.
TEST_F(SendLoop, EndsQuietlyWithoutAPause)
{
    queue->startSending();
    ASSERT_TRUE(waitUntil([this] { return machine.log.contains("Queue is waiting!"); }));
    queue->endQuietly();
    ASSERT_TRUE(waitUntil([this] { return queue->isFinished(); }));
    EXPECT_FALSE(machine.log.contains("send Thread is quit!"));
    EXPECT_TRUE(machine.clock.waits().empty());
}

TEST_F(SendLoop, ARestartIsNeverLost)
{
    // Restarts at every point of the old loop's return.
    for (int round = 0; round < 300; ++round) {
        queue->startSending();
        queue->setRunning(false);
        queue->requestStop();
        if (round % 3 == 0)
            QThread::usleep(static_cast<unsigned long>(round));
        queue->startSending();
        queue->enqueueMessage(QString::number(round));
        ASSERT_TRUE(waitUntil([] { return queuedMessages().isEmpty(); })) << round;
        queue->setRunning(false);
        queue->requestStop();
    }
    ASSERT_TRUE(waitUntil([this] { return queue->isFinished(); }));
}

class SendToClient : public SendLoop
{
protected:
    void SetUp() override
    {
        ASSERT_TRUE(client.connectToService());
        ASSERT_TRUE(waitUntil([this] { return machine.log.contains("Queue is waiting!"); }));
    }

    PipePeer client;
};

TEST(SendQueueBeforeAnyClient, DeliversWhatWaitedAheadOfTheFirstReply)
{
    tarnTest::SimulatedMachine machine;
    TarnPipeServer::instance();
    SendQueueThread::instance()->enqueueMessage("{\"cmd\":\"a\"}");
    SendQueueThread::instance()->enqueueMessage("{\"cmd\":\"b\"}");
    PipePeer client;
    ASSERT_TRUE(client.connectToService());
    client.write(R"({"cmd":"getAccessoryType"})");
    const QByteArray expected = R"({"cmd":"a"}{"cmd":"b"}{"cmd":"getAccessoryType","data":"disconnected"})";
    EXPECT_EQ(client.take(expected), expected);
    EXPECT_EQ(machine.clock.waits(), std::vector<int>({500, 500, 500}));
}

TEST_F(SendToClient, KeepsTheOrderOfManyMessages)
{
    QByteArray expected;
    for (int number = 0; number < 1000; ++number) {
        const QString message = tarnTest::notification("n", QString::number(number));
        expected += message.toUtf8();
        queue->enqueueMessage(message);
    }
    EXPECT_EQ(client.take(expected), expected);
    const auto waits = machine.clock.waits();
    EXPECT_EQ(waits.size(), 1000U);
    EXPECT_TRUE(std::all_of(waits.begin(), waits.end(), [](int wait) { return wait == 500; }));
}

TEST_F(SendToClient, AnEmptyMessageIsAPauseAndAnEmptyWrite)
{
    queue->enqueueMessage(QString());
    queue->enqueueMessage("x");
    EXPECT_EQ(client.take("x"), "x");
    EXPECT_EQ(machine.log.lines().filter(QRegularExpression("^send(x)?$")), QStringList({"send", "sendx"}));
    EXPECT_EQ(machine.clock.waits(), std::vector<int>({500, 500}));
}

TEST_F(SendToClient, WhatIsQueuedWhileNobodyIsThereGoesToTheNextClient)
{
    client.leave();
    ASSERT_TRUE(waitUntil([this] { return queue->isFinished(); }));
    EXPECT_EQ(machine.log.lines().mid(machine.log.lines().indexOf("Tarn pipe client is exit!")),
        QStringList({"Tarn pipe client is exit!", "send Thread is quit!", "tarn client is exit!"}));

    queue->enqueueMessage("kept");
    PipePeer next;
    ASSERT_TRUE(next.connectToService());
    EXPECT_EQ(next.take("kept"), "kept");
}

TEST_F(SendToClient, SurvivesManyQuickReconnections)
{
    client.leave();
    ASSERT_TRUE(waitUntil([this] { return machine.log.contains("Tarn pipe client is exit!"); }));
    for (int round = 0; round < 50; ++round) {
        PipePeer next;
        ASSERT_TRUE(next.connectToService());
        const QByteArray message = QByteArray::number(round) + ";";
        ASSERT_TRUE(waitUntil([&] { return machine.log.count("is connection!") == round + 2; }));
        queue->enqueueMessage(message);
        ASSERT_EQ(next.take(message), message) << round;
        next.leave();
        ASSERT_TRUE(waitUntil([&] { return machine.log.count("Tarn pipe client is exit!") == round + 2; }));
    }
}
