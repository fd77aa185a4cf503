#include "unit/client/client_fixture.h"

#include <QThread>

#include <atomic>
#include <thread>
#include <vector>

using namespace tarnClientTest;
using std::chrono::milliseconds;
using tarn::Client;
using tarn::Outcome;
using tarn::Reply;

namespace {

// Answers with the request's own data, so that a reply shows to which request it belongs.
class ThreadsTest : public ClientTest
{
protected:
    ThreadsTest()
    {
        service.onRequest([this](const QJsonObject &request) {
            service.answer(request, "result", request.value("data").toString());
        });
    }
};

} // namespace

TEST_F(ThreadsTest, ThreeThreadsGetTheirOwnAnswers)
{
    openAndConnect();
    std::atomic<int> finished = 0;
    std::atomic<int> wrong = 0;
    std::vector<std::thread> threads;
    for (int number = 0; number < 3; ++number) {
        threads.emplace_back([&, number] {
            for (int i = 0; i < 100; ++i) {
                const QString mine = QStringLiteral("%1-%2").arg(number).arg(i);
                QFuture<Reply> future = client.send(QStringLiteral("setDockLedStatus"), mine);
                if (i % 10 == 9) {
                    future.cancel();
                    continue;
                }
                future.waitForFinished();
                if (future.result().value() != mine || client.state() != Client::State::Connected)
                    ++wrong;
            }
            ++finished;
        });
    }
    EXPECT_TRUE(tarnTest::waitUntil([&finished] { return finished == 3; }, patienceMs));
    for (std::thread &thread : threads)
        thread.join();
    EXPECT_EQ(wrong, 0);
}

TEST_F(ThreadsTest, EveryFutureEndsThoughTheClientIsClosed)
{
    openAndConnect();
    std::atomic<bool> isOver = false;
    std::atomic<int> ended = 0;
    std::vector<std::thread> threads;
    for (int number = 0; number < 3; ++number) {
        threads.emplace_back([&] {
            while (!isOver) {
                QFuture<Reply> future = client.send(QStringLiteral("setDockLedStatus"), QStringLiteral("x"));
                future.waitForFinished();
                ended += future.resultCount();
            }
        });
    }
    for (int i = 0; i < 10; ++i) {
        const int before = ended;
        EXPECT_TRUE(tarnTest::waitUntil([&] { return ended > before + 10; }, patienceMs));
        client.close();
        client.open();
    }
    isOver = true;
    std::atomic<bool> joined = false;
    std::thread joiner([&] {
        for (std::thread &thread : threads)
            thread.join();
        joined = true;
    });
    EXPECT_TRUE(tarnTest::waitUntil([&joined] { return joined.load(); }, patienceMs));
    joiner.join();
}

// Nobody has to serve the client's events for that.
TEST_F(ThreadsTest, AClosedClientRefusesAtOnce)
{
    EXPECT_TRUE(client.send("getMcuVersion").isFinished());
    openAndConnect();
    client.close();
    const QFuture<Reply> future = client.send("getMcuVersion");
    ASSERT_TRUE(future.isFinished());
    EXPECT_EQ(future.result().outcome(), Outcome::Refused);
    EXPECT_EQ(future.result().reason(), "The client is not open.");
}

TEST_F(ThreadsTest, LivesOnAnotherThread)
{
    QThread thread;
    auto *elsewhere = new Client(service.pipeName(), shortTimes());
    elsewhere->moveToThread(&thread);
    thread.start();
    QMetaObject::invokeMethod(elsewhere, &Client::open, Qt::BlockingQueuedConnection);
    const QFuture<Reply> future = elsewhere->send("setDockLedStatus", "on");
    EXPECT_EQ(endOf(future).value(), "on");
    std::atomic<Qt::HANDLE> seenOn = nullptr;
    QObject::connect(elsewhere, &Client::notificationReceived, elsewhere,
        [&seenOn] { seenOn = QThread::currentThreadId(); });
    service.notify("getTarnBatteryNum", "5");
    EXPECT_TRUE(tarnTest::waitUntil([&seenOn] { return seenOn.load() != nullptr; }, patienceMs));
    EXPECT_NE(seenOn.load(), QThread::currentThreadId());
    elsewhere->deleteLater();
    thread.quit();
    EXPECT_TRUE(thread.wait(patienceMs));
}
