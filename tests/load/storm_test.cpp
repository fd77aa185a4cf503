#include "campaign/random_source.h"
#include "load/figure_table.h"
#include "load/loaded_service.h"
#include "support/pipe_peer.h"

#include <QElapsedTimer>
#include <QSet>

#include <memory>

using tarnLoad::report;
using tarnLoad::scaled;
using tarnTest::PipePeer;
using tarnTest::ServiceClient;
using tarnTest::waitUntil;

namespace {

constexpr int oneInWritesARequest = 40; // each such visit costs the next client half a second

} // namespace

// Clients that come and go, with a slow EC.
class ClientStorm : public tarnLoad::LoadedService
{
protected:
    ClientStorm() { service.takeBytesSlowly(); }

    // One visit; some leave in the middle of a request, some before they have read their reply.
    void visit(int number)
    {
        PipePeer peer;
        ASSERT_TRUE(peer.connectToService()) << "client " << number;
        if (random.oneIn(oneInWritesARequest)) {
            asked << number;
            peer.write(tarnLoad::markedRequest(number));
        } else if (random.oneIn(oneInWritesARequest)) {
            ++halves;
            peer.write(tarnLoad::markedRequest(number).left(10));
        }
        while (peer.socket.bytesToWrite() > 0 && peer.socket.waitForBytesWritten(1000)) { }
        if (random.oneIn(2))
            peer.socket.abort();
        else
            peer.leave();
    }

    // Each request is answered once at most. Only replies may be missing that had been taken from the queue
    // when a client left. On a busy machine a request that came earlier may be answered a little later.
    void expectNothingLostBeyondTheContract()
    {
        const auto missing = [this] {
            return asked.size() - tarnLoad::sentMarks(service.log()).size();
        };
        const auto mayBeMissing = [this] {
            return service.logCount("tarn client is exit!");
        };
        EXPECT_TRUE(waitUntil([&] { return missing() <= mayBeMissing(); }))
            << missing() << " are missing, of which only " << mayBeMissing() << " may be";
        const QList<int> sent = tarnLoad::sentMarks(service.log());
        const QSet<int> different(sent.begin(), sent.end());
        EXPECT_EQ(different.size(), sent.size()) << "a reply was sent twice";
        for (int mark : sent)
            EXPECT_TRUE(asked.contains(mark)) << mark;
        report("visits, replies",
            QStringLiteral("%1 asked, %2 sent, %3 halves").arg(asked.size()).arg(sent.size()).arg(halves));
    }

    tarnCampaign::RandomSource random {tarnLoad::seed()};
    QList<int> asked;
    int halves = 0;
};

TEST_F(ClientStorm, OfShortVisitsDoesNotKeepTheNextClientOut)
{
    const auto before = figures();
    const int visits = scaled(200, 4000);
    QElapsedTimer timer;
    timer.start();
    for (int number = 1; number <= visits && !HasFatalFailure(); ++number)
        visit(number);
    const qint64 stormMs = timer.elapsed();

    ServiceClient normal;
    ASSERT_TRUE(normal.connectToService());
    const int obeyedMs = expectObeyedAtOnce(normal);
    report("visits",
        QStringLiteral("%1 in %2 ms, the next client is obeyed after %3 ms")
            .arg(visits)
            .arg(stormMs)
            .arg(obeyedMs));

    // The replies to the earlier clients come first.
    const int replyTimeoutMs = 20000 + 1000 * static_cast<int>(asked.size() + halves);
    EXPECT_EQ(normal.ask({{"cmd", "getAccessoryType"}}, replyTimeoutMs).value("data"), "disconnected");
    expectNothingLostBeyondTheContract();
    const QList<int> received = tarnLoad::marksIn(normal.documents());
    const QList<int> sent = tarnLoad::sentMarks(service.log());
    EXPECT_EQ(received, sent.mid(sent.size() - received.size())) << "out of order";
    normal.leave();
    expectAsIdleAs(before, "visits");
}

TEST_F(ClientStorm, OfManyAtOnceDoesNotKeepTheNextClientOut)
{
    const auto before = figures();
    const int crowd = scaled(150, 800);
    double crowdMib = 0;
    for (int round = 0; round < scaled(1, 3); ++round) {
        std::vector<std::unique_ptr<PipePeer>> peers;
        for (int number = 0; number < crowd; ++number) {
            peers.push_back(std::make_unique<PipePeer>());
            ASSERT_TRUE(peers.back()->connectToService()) << number;
        }
        ServiceClient oneMore;
        ASSERT_TRUE(oneMore.connectToService());
        expectObeyedAtOnce(oneMore);
        EXPECT_EQ(oneMore.answer("getAccessoryType"), "disconnected");
        crowdMib = std::max(crowdMib, figures().memoryMib);
    }
    report("crowd", QStringLiteral("%1 clients at once, memory %2 MiB").arg(crowd).arg(crowdMib, 0, 'f', 1));
    ServiceClient normal;
    ASSERT_TRUE(normal.connectToService());
    expectObeyedAtOnce(normal);
    EXPECT_EQ(normal.answer("getAccessoryType"), "disconnected");
    normal.leave();
    expectAsIdleAs(before, "crowd");
}
