#include "pipe/tarn_pipe_server.h"

#include "device/ec_access_lock.h"
#include "pipe/outbox/send_queue_thread.h"
#include "support/pipe_peer.h"
#include "support/queued_messages.h"
#include "support/simulated_machine.h"

#include <QCoreApplication>
#include <QFile>
#include <QFutureWatcher>
#include <QLocalServer>
#include <QMetaMethod>
#include <QRegularExpression>
#include <QThreadPool>

using namespace tarnPipeServer;
using tarnTest::PipePeer;
using tarnTest::queuedMessages;
using tarnTest::waitUntil;

class PipeServer : public tarnTest::MachineTest
{
protected:
    PipeServer()
    {
        server = TarnPipeServer::instance();
        creation = machine.log.lines();
        machine.log.clear();
    }

    // A reply that differs from every other message.
    static QByteArray typeReply() { return R"({"cmd":"getAccessoryType","data":"disconnected"})"; }
    static QByteArray typeRequest() { return R"({"cmd":"getAccessoryType"})"; }

    TarnPipeServer *server;
    QStringList creation;
    PipePeer client;
};

TEST_F(PipeServer, ListensFromItsCreation)
{
    EXPECT_TRUE(creation.first().startsWith("TarnPipeServer ThreadID():  "));
    EXPECT_TRUE(client.connectToService());
    EXPECT_GE(QThreadPool::globalInstance()->maxThreadCount(), 64);
}

TEST_F(PipeServer, HasTheMetaObjectThatOthersConnectTo)
{
    const QMetaObject &meta = TarnPipeServer::staticMetaObject;
    for (const char *signal : {"dataReceived()", "startChangingTimer()", "stopChangingTimer()"})
        EXPECT_NE(meta.indexOfSignal(signal), -1) << signal;
    for (const char *slot :
        {"handleConnection()", "handleDisconnection()", "readDataFromClient()", "sendDataToClient(QString)"})
        EXPECT_NE(meta.indexOfSlot(slot), -1) << slot;
}

TEST_F(PipeServer, GreetsAClientInTheLogOnly)
{
    ASSERT_TRUE(client.connectToService());
    ASSERT_TRUE(waitUntil([this] { return machine.log.contains("Queue is waiting!"); }));
    EXPECT_EQ(
        machine.log.lines().mid(0, 2), QStringList({"is connection!", "Tarn Service version is  \"1.40\""}));
    EXPECT_TRUE(client.received().isEmpty());
}

TEST_F(PipeServer, AnswersOneDocumentARead)
{
    ASSERT_TRUE(client.connectToService());
    client.write(typeRequest());
    EXPECT_EQ(client.take(typeReply()), typeReply());
    const QStringList lines = machine.log.lines();
    EXPECT_TRUE(lines.contains(R"("{\"cmd\":\"getAccessoryType\"}")"));
    EXPECT_TRUE(lines.contains("\"getAccessoryType\""));
    EXPECT_TRUE(lines.contains("send" + typeReply()));
}

TEST_F(PipeServer, TellsWhichThreadsReadARequestAndWorkOnIt)
{
    ASSERT_TRUE(client.connectToService());
    ASSERT_TRUE(waitUntil([this] { return machine.log.contains("Queue is waiting!"); }));
    const QString mainThread = QDebug::toString(QThread::currentThreadId());
    EXPECT_EQ(machine.log.count(mainThread), 1); // accepted the client
    machine.log.clear();
    client.write(typeRequest());
    ASSERT_EQ(client.take(typeReply()), typeReply());
    QStringList lines = machine.log.lines();
    ASSERT_GE(lines.size(), 5);
    const QString worker = lines.takeAt(2);
    EXPECT_TRUE(QRegularExpression("^0x[0-9a-f]+$").match(worker).hasMatch()) << worker.toStdString();
    EXPECT_NE(worker, mainThread);
    EXPECT_EQ(lines.mid(0, 3),
        QStringList({mainThread, R"("{\"cmd\":\"getAccessoryType\"}")", "\"getAccessoryType\""}));
}

TEST_F(PipeServer, KeepsNothingOfARequestThatIsAnswered)
{
    ASSERT_TRUE(client.connectToService());
    for (const char *request :
        {R"({"cmd":"getAccessoryType"})", R"({"cmd":"requestLeaveMcuUpdateMode"})", "nonsense"}) {
        machine.log.clear();
        client.write(request);
        ASSERT_TRUE(waitUntil(
            [this] { return !machine.log.lines().filter(QRegularExpression("^send($|\\{)")).isEmpty(); }));
        EXPECT_TRUE(
            waitUntil([this] { return server->findChildren<QFutureWatcherBase *>().isEmpty(); }, 2000))
            << request;
    }
}

TEST_F(PipeServer, EchoesEveryFieldInKeyOrder)
{
    ASSERT_TRUE(client.connectToService());
    client.write(R"({"zeta":[1,null],"cmd":"getAccessoryType","id":7,"Alpha":{"b":true},"data":"replaced"})");
    const QByteArray reply =
        R"({"Alpha":{"b":true},"cmd":"getAccessoryType","data":"disconnected","id":7,"zeta":[1,null]})";
    EXPECT_EQ(client.take(reply), reply);
}

struct BadRequest
{
    QByteArray bytes;
    QString line;
};

class PipeServerGiven : public PipeServer, public ::testing::WithParamInterface<BadRequest>
{ };

const QString noCommand = QStringLiteral("cmd is not a string.");

INSTANTIATE_TEST_SUITE_P(BadRequests, PipeServerGiven,
    ::testing::Values(BadRequest {R"({"cmd":5})", noCommand}, BadRequest {R"({"cmd":null})", noCommand},
        BadRequest {R"({"cmd":["getAccessoryType"]})", noCommand}, BadRequest {R"({"data":"x"})", noCommand},
        BadRequest {"hello", noCommand}, BadRequest {"[1,2]", noCommand}, BadRequest {"\"text\"", noCommand},
        BadRequest {R"({"cmd":"getAccessoryType")", noCommand},
        BadRequest {QByteArray("\0\0\xff\xfe", 4), noCommand},
        BadRequest {R"({"cmd":"getAccessoryType"}{"cmd":"getAccessoryType"})", noCommand},
        BadRequest {R"({"cmd":"noSuchThing"})", "Unknown command:  \"noSuchThing\""},
        BadRequest {R"({"cmd":""})", "Unknown command:  \"\""},
        BadRequest {R"({"cmd":"GETACCESSORYTYPE"})", "Unknown command:  \"GETACCESSORYTYPE\""},
        BadRequest {QByteArray(8000, '['), noCommand}));

TEST_P(PipeServerGiven, AnswersWithAnEmptyWriteAndTheNextGoodRequestAsEver)
{
    ASSERT_TRUE(client.connectToService());
    client.write(GetParam().bytes);
    ASSERT_TRUE(waitUntil([this] { return machine.log.contains("send"); }));
    EXPECT_TRUE(client.received().isEmpty());

    client.write(typeRequest());
    EXPECT_EQ(client.take(typeReply()), typeReply());
    // One read gets one answer, whatever it holds.
    EXPECT_EQ(machine.log.count(GetParam().line), 1);
    EXPECT_EQ(machine.log.lines().filter(QRegularExpression("^send[^ ]*$")),
        QStringList({"send", "send" + typeReply()}));
}

TEST_F(PipeServer, ARequestInTwoReadsIsNotUnderstood)
{
    ASSERT_TRUE(client.connectToService());
    client.write(R"({"cmd":"getAcc)");
    ASSERT_TRUE(waitUntil([this] { return machine.log.count(noCommand) == 1; }));
    client.write(R"(essoryType"})");
    ASSERT_TRUE(waitUntil([this] { return machine.log.count(noCommand) == 2; }));
    ASSERT_TRUE(waitUntil([this] { return machine.log.count("send") == 2; }));
    EXPECT_TRUE(client.received().isEmpty());
}

TEST_F(PipeServer, ASecondClientGetsTheRepliesAfterItConnects)
{
    ASSERT_TRUE(client.connectToService());
    PipePeer second;
    ASSERT_TRUE(second.connectToService());
    ASSERT_TRUE(waitUntil([this] { return machine.log.count("is connection!") == 2; }));
    SendQueueThread::instance()->enqueueMessage("news");
    EXPECT_EQ(second.take("news"), "news");
    EXPECT_TRUE(client.received().isEmpty());
    EXPECT_EQ(client.socket.state(), QLocalSocket::ConnectedState);

    // Messages go to the client that asked last.
    client.write(typeRequest());
    EXPECT_EQ(client.take(typeReply()), typeReply());
    SendQueueThread::instance()->enqueueMessage("more");
    EXPECT_EQ(client.take("more"), "more");
    EXPECT_TRUE(second.received().isEmpty());
}

TEST_F(PipeServer, WhenEitherOfTwoClientsLeavesNothingIsSentUntilTheNextConnection)
{
    ASSERT_TRUE(client.connectToService());
    PipePeer second;
    ASSERT_TRUE(second.connectToService());
    ASSERT_TRUE(waitUntil([this] { return machine.log.count("is connection!") == 2; }));
    second.leave();
    ASSERT_TRUE(waitUntil([] { return SendQueueThread::instance()->isFinished(); }));
    client.write(typeRequest());
    ASSERT_TRUE(waitUntil([] { return queuedMessages().size() == 1; }));
    EXPECT_TRUE(client.received().isEmpty());

    PipePeer third;
    ASSERT_TRUE(third.connectToService());
    EXPECT_EQ(third.take(typeReply()), typeReply());
}

// When any client leaves, also one that gets no messages, the service stops sending to all.
TEST_F(PipeServer, WhenTheFormerClientLeavesTheCurrentOneIsSentNothingEither)
{
    ASSERT_TRUE(client.connectToService());
    PipePeer second;
    ASSERT_TRUE(second.connectToService());
    ASSERT_TRUE(waitUntil([this] { return machine.log.count("is connection!") == 2; }));
    client.leave();
    ASSERT_TRUE(waitUntil([this] { return machine.log.contains("Tarn pipe client is exit!"); }));
    ASSERT_TRUE(waitUntil([] { return SendQueueThread::instance()->isFinished(); }));
    second.write(typeRequest());
    ASSERT_TRUE(waitUntil([] { return queuedMessages().size() == 1; }));
    EXPECT_EQ(second.socket.state(), QLocalSocket::ConnectedState);

    PipePeer third;
    ASSERT_TRUE(third.connectToService());
    EXPECT_EQ(third.take(typeReply()), typeReply());
    EXPECT_TRUE(second.received().isEmpty());
}

TEST_F(PipeServer, AClientThatLeftBeforeTheNextCameDoesNotSilenceIt)
{
    ASSERT_TRUE(client.connectToService());
    ASSERT_TRUE(waitUntil([this] { return machine.log.contains("is connection!"); }));
    // Before the server runs: one client asks and leaves, another one connects.
    client.write(R"({"cmd":"nothing"})");
    client.socket.abort();
    PipePeer next;
    next.socket.connectToServer("tarnPipe");
    next.write(typeRequest());
    EXPECT_EQ(next.take(typeReply()), typeReply());
    EXPECT_TRUE(waitUntil([this] { return machine.log.contains("Unknown command:  \"nothing\""); }));
    const QStringList order = {"Tarn pipe client is exit!", "is connection!"};
    EXPECT_EQ(machine.log.lines().filter(QRegularExpression("exit!$|connection!$")).mid(1, 2), order);
}

// To write to a client that has left closes its socket, with all that was not yet read from it.
TEST_F(PipeServer, ReadsWhatAClientWroteBeforeItLeftAlsoWhenItsNextMessageIsDue)
{
    ASSERT_TRUE(client.connectToService());
    ASSERT_TRUE(waitUntil([this] { return machine.log.contains("is connection!"); }));
    // Before the server runs: the client asks and leaves, and a message for it is sent.
    client.write(R"({"cmd":"nothing"})");
    client.socket.abort();
    server->sendDataToClient("late");
    EXPECT_TRUE(waitUntil([this] { return machine.log.contains("Unknown command:  \"nothing\""); }, 5000));
    EXPECT_TRUE(waitUntil([this] { return machine.log.contains("Tarn pipe client is exit!"); }));
    EXPECT_TRUE(waitUntil([] { return queuedMessages().size() == 1; })); // the handler has ended
}

TEST_F(PipeServer, ALateReplyGoesToTheNextClient)
{
    ASSERT_TRUE(tarnDeviceInfos::ecAccessMutex.lock()); // as a prompt or an update would
    ASSERT_TRUE(client.connectToService());
    client.write(R"({"cmd":"getAccessoryCode","from":"the first"})");
    ASSERT_TRUE(waitUntil([this] { return machine.log.contains("\"getAccessoryCode\""); }));
    client.leave();
    ASSERT_TRUE(waitUntil([] { return SendQueueThread::instance()->isFinished(); }));
    tarnDeviceInfos::ecAccessMutex.unlock();
    ASSERT_TRUE(waitUntil([] { return queuedMessages().size() == 1; }));

    PipePeer next;
    ASSERT_TRUE(next.connectToService());
    const QByteArray reply = R"({"cmd":"getAccessoryCode","data":"0","from":"the first"})";
    EXPECT_EQ(next.take(reply), reply);
}

TEST_F(PipeServer, AMessageAlreadyTakenWhenTheClientLeavesIsDroppedWithALine)
{
    ASSERT_TRUE(client.connectToService());
    // The client goes during the pause before the write.
    machine.clock.at(std::chrono::milliseconds(500), [this] {
        QMetaObject::invokeMethod(
            server, [this] { client.leave(); }, Qt::QueuedConnection);
        while (!machine.log.contains("Tarn pipe client is exit!"))
            QThread::msleep(1);
    });
    SendQueueThread::instance()->enqueueMessage("lost");
    ASSERT_TRUE(waitUntil([] { return SendQueueThread::instance()->isFinished(); }));
    EXPECT_TRUE(machine.log.contains("tarn client is exit!"));
    EXPECT_FALSE(machine.log.contains("sendlost"));
}

TEST_F(PipeServer, ClosesTheSocketOfAClientThatLeaves)
{
    ASSERT_TRUE(client.connectToService());
    ASSERT_TRUE(waitUntil([this] { return machine.log.contains("is connection!"); }));
    const auto sockets = server->findChildren<QLocalSocket *>();
    ASSERT_EQ(sockets.size(), 1);
    std::optional<bool> openAfterwards;
    // Connected after the server's own slot, so it is called after that one.
    QObject::connect(sockets.first(), &QLocalSocket::disconnected, sockets.first(),
        [&] { openAfterwards = sockets.first()->isOpen(); });
    client.leave();
    ASSERT_TRUE(waitUntil([&] { return openAfterwards.has_value(); }));
    EXPECT_FALSE(*openAfterwards);
}

TEST_F(PipeServer, KeepsNoSocketOfAClientThatHasLeft)
{
    for (int round = 1; round <= 50; ++round) {
        PipePeer visitor;
        ASSERT_TRUE(visitor.connectToService());
        ASSERT_TRUE(waitUntil([&] { return machine.log.count("is connection!") == round; }));
        EXPECT_EQ(server->findChildren<QLocalSocket *>().size(), 1);
        visitor.leave();
        ASSERT_TRUE(waitUntil([&] { return machine.log.count("Tarn pipe client is exit!") == round; }));
        QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
        EXPECT_TRUE(server->findChildren<QLocalSocket *>().isEmpty());
    }
}

TEST_F(PipeServer, HandlersDoNotHoldEachOtherUp)
{
    ASSERT_TRUE(tarnDeviceInfos::ecAccessMutex.lock());
    ASSERT_TRUE(client.connectToService());
    for (int waiting = 1; waiting <= 40; ++waiting) {
        client.write(R"({"cmd":"getAccessoryCode"})");
        ASSERT_TRUE(waitUntil([&] { return machine.log.count("\"getAccessoryCode\"") == waiting; }));
    }
    client.write(typeRequest());
    EXPECT_EQ(client.take(typeReply()), typeReply());
    tarnDeviceInfos::ecAccessMutex.unlock();
    const QByteArray reply = R"({"cmd":"getAccessoryCode","data":"0"})";
    EXPECT_EQ(client.take(reply.repeated(40)), reply.repeated(40));
}

TEST_F(PipeServer, SendsDirectlyFromItsOwnThread)
{
    server->sendDataToClient("nobody");
    EXPECT_EQ(machine.log.lines(), QStringList({"tarn client is exit!"}));
    ASSERT_TRUE(client.connectToService());
    ASSERT_TRUE(waitUntil([this] { return machine.log.contains("is connection!"); }));
    server->sendDataToClient(QStringLiteral("grüß"));
    EXPECT_EQ(client.take("grüß"), QByteArray("grüß"));
    EXPECT_TRUE(machine.log.contains(QStringLiteral("sendgrüß")));
}

TEST_F(PipeServer, ACallWithoutASenderTouchesNothing)
{
    server->readDataFromClient();
    server->handleDisconnection();
    EXPECT_EQ(machine.log.lines().size(), 1);
    ASSERT_TRUE(client.connectToService());
    ASSERT_TRUE(waitUntil([this] { return machine.log.contains("is connection!"); }));
    server->readDataFromClient(); // forgets the client until it asks again
    server->sendDataToClient("x");
    EXPECT_TRUE(machine.log.contains("clientSocket isn't online"));
    client.write(typeRequest());
    EXPECT_EQ(client.take(typeReply()), typeReply());
}

TEST_F(PipeServer, ADisconnectionWithoutASenderStopsTheSendingAndForgetsTheClient)
{
    ASSERT_TRUE(client.connectToService());
    ASSERT_TRUE(waitUntil([this] { return machine.log.contains("Queue is waiting!"); }));
    machine.log.clear();
    server->handleDisconnection();
    ASSERT_TRUE(waitUntil([] { return SendQueueThread::instance()->isFinished(); }));
    // The empty message at the end of the sending finds a client that is online, but no socket of it.
    EXPECT_EQ(machine.log.lines(), QStringList({"send Thread is quit!", "clientSocket isn't online"}));
    EXPECT_EQ(client.socket.state(), QLocalSocket::ConnectedState);

    client.write(typeRequest());
    ASSERT_TRUE(waitUntil([] { return queuedMessages().size() == 1; }));
    server->sendDataToClient("x"); // the client is known again, because it has asked
    EXPECT_EQ(client.take("x"), "x");
    PipePeer next;
    ASSERT_TRUE(next.connectToService());
    EXPECT_EQ(next.take(typeReply()), typeReply());
}

TEST_F(PipeServer, AReplyWithoutAClientIsNotQueued)
{
    ASSERT_TRUE(client.connectToService());
    ASSERT_TRUE(tarnDeviceInfos::ecAccessMutex.lock());
    client.write(R"({"cmd":"getAccessoryCode"})");
    ASSERT_TRUE(waitUntil([this] { return machine.log.contains("\"getAccessoryCode\""); }));
    server->readDataFromClient();
    tarnDeviceInfos::ecAccessMutex.unlock();
    QThreadPool::globalInstance()->waitForDone();
    QCoreApplication::processEvents();
    EXPECT_TRUE(queuedMessages().isEmpty());
    EXPECT_FALSE(machine.log.contains("send"));
}

TEST_F(PipeServer, AConnectionWithoutASocketChangesNothingForTheNext)
{
    server->handleConnection();
    server->sendDataToClient("x");
    EXPECT_TRUE(machine.log.contains("clientSocket isn't online"));
    ASSERT_TRUE(client.connectToService());
    client.write(typeRequest());
    EXPECT_EQ(client.take(typeReply()), typeReply());
}

TEST_F(PipeServer, DestructionEndsTheListening)
{
    ASSERT_TRUE(client.connectToService());
    ASSERT_TRUE(waitUntil([this] { return machine.log.contains("Queue is waiting!"); }));
    SendQueueThread::instance()->endQuietly();
    ASSERT_TRUE(waitUntil([] { return SendQueueThread::instance()->isFinished(); }));
    delete server;
    EXPECT_TRUE(machine.log.contains("Destory server resource!"));
    PipePeer late;
    late.socket.connectToServer("tarnPipe");
    EXPECT_NE(late.socket.state(), QLocalSocket::ConnectedState);
}

TEST(PipeServerStart, TakesOverTheNameOfAKilledServer)
{
    const tarnTest::SimulatedMachine machine;
    {
        // What a killed process leaves behind: a socket file without a listener.
        QLocalServer dead;
        ASSERT_TRUE(dead.listen("tarnPipe.dead"));
        ASSERT_TRUE(QFile::rename(dead.fullServerName(), machine.folder.path("tarnPipe")));
    }
    ASSERT_TRUE(QFile::exists(machine.folder.path("tarnPipe")));
    TarnPipeServer::instance();
    PipePeer client;
    EXPECT_TRUE(client.connectToService());
}

TEST(PipeServerStart, NeverDisplacesALiveServer)
{
    const tarnTest::SimulatedMachine machine;
    QLocalServer live;
    ASSERT_TRUE(live.listen("tarnPipe"));
    TarnPipeServer::instance(); // runs on without clients
    PipePeer client;
    ASSERT_TRUE(client.connectToService());
    EXPECT_TRUE(waitUntil([&live] { return live.hasPendingConnections(); }));
    EXPECT_FALSE(machine.log.contains("is connection!"));
}

TEST(PipeServerStart, DoesNotDisturbTheClientOfALiveServer)
{
    const tarnTest::SimulatedMachine machine;
    QLocalServer live;
    ASSERT_TRUE(live.listen("tarnPipe"));
    TarnPipeServer::instance();
    EXPECT_FALSE(waitUntil([&live] { return live.hasPendingConnections(); }, 50));
}

// QLocalServer closes itself in this way when it cannot accept a connection.
TEST_F(PipeServer, ListensAgainWhenAClientLeaves)
{
    ASSERT_TRUE(client.connectToService());
    ASSERT_TRUE(waitUntil([this] { return machine.log.contains("is connection!"); }));
    server->findChild<QLocalServer *>()->close();
    client.leave();
    ASSERT_TRUE(waitUntil([this] { return machine.log.contains("Tarn pipe client is exit!"); }));
    PipePeer next;
    ASSERT_TRUE(next.connectToService());
    next.write(typeRequest());
    EXPECT_EQ(next.take(typeReply()), typeReply());
}

TEST_F(PipeServer, AcceptsNoClientOnceItHasStoppedListening)
{
    PipePeer lastOne;
    ASSERT_TRUE(lastOne.connectToService());
    ASSERT_TRUE(waitUntil([this] { return machine.log.contains("is connection!"); }));
    server->stopListening();
    lastOne.leave();
    ASSERT_TRUE(waitUntil([this] { return machine.log.contains("Tarn pipe client is exit!"); }));
    client.socket.connectToServer("tarnPipe");
    EXPECT_EQ(client.socket.error(), QLocalSocket::ServerNotFoundError);
}

TEST(PipeServerSession, AnOrdinaryProcessIsNotInTheServiceSession)
{
    const tarnTest::SimulatedMachine machine;
    EXPECT_FALSE(TarnPipeServer::instance()->isServiceSession());
}
