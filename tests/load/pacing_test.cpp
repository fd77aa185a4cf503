#include "campaign/random_source.h"
#include "load/figure_table.h"
#include "load/load_scale.h"
#include "pipe/outbox/send_queue_thread.h"
#include "pipe/tarn_pipe_server.h"
#include "support/pipe_peer.h"
#include "support/queued_messages.h"
#include "support/simulated_machine.h"

#include <QElapsedTimer>

#include <gtest/gtest.h>

using tarnLoad::messagePauseMs;
using tarnLoad::report;
using tarnPipeServer::SendQueueThread;
using tarnPipeServer::TarnPipeServer;
using tarnTest::PipePeer;
using tarnTest::waitUntil;

namespace {

constexpr int messageCount = 10000;

QString numbered(int number)
{
    return QString::number(number) + QLatin1Char(';');
}

} // namespace

// Hours of messages on virtual time, with the server and its send thread in this process.
class Pacing : public tarnTest::MachineTest
{
protected:
    Pacing() { TarnPipeServer::instance(); }
    ~Pacing() override
    {
        client.leave();
        SendQueueThread::instance()->endQuietly();
        waitUntil([] { return SendQueueThread::instance()->isFinished(); });
    }

    void expectAllPauses()
    {
        const std::vector<int> waits = machine.clock.waits();
        EXPECT_EQ(waits.size(), static_cast<std::size_t>(messageCount));
        EXPECT_TRUE(std::all_of(waits.begin(), waits.end(), [](int wait) { return wait == messagePauseMs; }));
    }

    // What the server says to have sent since the last call, empty messages left out.
    QList<int> sentNumbers()
    {
        const QString sentMark = QStringLiteral("send");
        QList<int> numbers;
        for (const QString &line : machine.log.lines()) {
            if (line.startsWith(sentMark) && line.endsWith(QLatin1Char(';')))
                numbers << line.sliced(sentMark.size()).chopped(1).toInt();
        }
        return numbers;
    }

    PipePeer client;
};

TEST_F(Pacing, OfManyRequestsInARowAnswersEachOnceAndInTurn)
{
    ASSERT_TRUE(client.connectToService());
    QElapsedTimer timer;
    timer.start();
    for (int number = 0; number < messageCount; ++number) {
        client.write(QByteArray(R"({"cmd":"getAccessoryType","n":)") + QByteArray::number(number) + '}');
        const QByteArray expected = QByteArray(R"({"cmd":"getAccessoryType","data":"disconnected","n":)")
            + QByteArray::number(number) + '}';
        ASSERT_EQ(client.take(expected), expected);
        if (number % 1000 == 0)
            machine.log.clear();
    }
    expectAllPauses();
    report("requests in a row",
        QStringLiteral("%1 in %2 virtual s, %3 ms")
            .arg(messageCount)
            .arg(machine.clock.now().count() / 1000)
            .arg(timer.elapsed()));
}

TEST_F(Pacing, OfABacklogLosesOneMessageALeaveAtMost)
{
    const int backlog = tarnLoad::scaled(2000, messageCount);
    tarnCampaign::RandomSource random(tarnLoad::seed());
    for (int number = 1; number <= backlog; ++number)
        SendQueueThread::instance()->enqueueMessage(numbered(number));
    int visits = 0;
    QList<int> received;
    while (!tarnTest::queuedMessages().isEmpty()) {
        ++visits;
        PipePeer visitor;
        ASSERT_TRUE(visitor.connectToService());
        const qsizetype bytesToReceive = random.below(300);
        ASSERT_TRUE(waitUntil([&] {
            return visitor.received().size() >= bytesToReceive || tarnTest::queuedMessages().isEmpty();
        }));
        visitor.leave();
        ASSERT_TRUE(waitUntil([] { return SendQueueThread::instance()->isFinished(); }));
        const QByteArray bytes = visitor.received();
        for (const QByteArray &number : bytes.split(';')) {
            if (!number.isEmpty()) // after the last separator
                received << number.toInt();
        }
    }
    const QList<int> sent = sentNumbers();
    EXPECT_TRUE(std::is_sorted(sent.begin(), sent.end(), std::less_equal<>())) << "doubled or out of order";
    EXPECT_TRUE(std::is_sorted(received.begin(), received.end()));
    EXPECT_GE(sent.size(), backlog - visits);
    report("backlog for many visitors",
        QStringLiteral("%1 messages, %2 visitors, %3 dropped as they left")
            .arg(backlog)
            .arg(visits)
            .arg(backlog - sent.size()));
}
