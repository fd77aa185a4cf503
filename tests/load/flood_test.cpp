#include "end_to_end/test_system.h"
#include "load/figure_table.h"
#include "load/loaded_service.h"
#include "support/pipe_peer.h"
#include "support/time_bound.h"

#include <QElapsedTimer>
#include <QSet>

#include <memory>

using tarnLoad::markedRequest;
using tarnLoad::marksIn;
using tarnLoad::messagePauseMs;
using tarnLoad::report;
using tarnLoad::scaled;
using tarnLoad::sentMarks;
using tarnTest::ServiceClient;
using tarnTest::waitUntil;

namespace {

QList<int> upTo(int count)
{
    QList<int> marks;
    for (int mark = 1; mark <= count; ++mark)
        marks << mark;
    return marks;
}

QList<int> sorted(QList<int> marks)
{
    std::sort(marks.begin(), marks.end());
    return marks;
}

} // namespace

// More requests than can be answered for a while.
class RequestFlood : public tarnLoad::LoadedService
{
protected:
    void SetUp() override
    {
        LoadedService::SetUp();
        ASSERT_TRUE(client.connectToService());
        // Each client first gets the messages that were queued for the one before it.
        ASSERT_EQ(client.answer("getAccessoryType"), "disconnected");
        sentBefore = linesThatBegin("send");
    }
    // Reads that hold one of the marked requests, or several that arrived together.
    [[nodiscard]] qsizetype reads() { return linesThatBegin(R"("{\"cmd\":\"getAccessoryType\",\"load\")"); }
    [[nodiscard]] qsizetype writes() { return linesThatBegin("send") - sentBefore; }

    static constexpr int boundMs(int messages) { return 30000 + 2 * messagePauseMs * messages; }

    ServiceClient client;
    qsizetype sentBefore = 0;
};

TEST_F(RequestFlood, AsFastAsTheyGoInIsAnsweredReadByRead)
{
    const auto before = figures();
    const int count = scaled(10, 200);
    QElapsedTimer timer;
    timer.start();
    for (int mark = 1; mark <= count; ++mark)
        client.write(markedRequest(mark));
    const qint64 writtenMs = timer.elapsed();
    ASSERT_TRUE(
        waitUntil([&] { return service.log().contains(QStringLiteral("\\\"load\\\":%1}\"\n").arg(count)); }));
    expectObeyedAtOnce(client);

    ASSERT_EQ(client.ask({{"cmd", "getAccessoryType"}}, boundMs(count)).value("data"), "disconnected");
    // A request alone in a read is answered with its mark, several in one read with an empty message.
    const QList<int> replies = marksIn(client.documents());
    EXPECT_EQ(QSet<int>(replies.begin(), replies.end()).size(), replies.size()) << "a reply came twice";
    EXPECT_EQ(replies, sentMarks(service.log()));
    EXPECT_LE(replies.size(), reads());
    // One message a read, and the two requests after them.
    EXPECT_GE(writes(), reads());
    EXPECT_LE(writes(), reads() + 2);
    report("requests without a pause",
        QStringLiteral("%1 in %2 ms, %3 reads, %4 understood, answered in %5 s")
            .arg(count)
            .arg(writtenMs)
            .arg(reads())
            .arg(replies.size())
            .arg(tarnLoad::seconds(timer.elapsed())));
    client.leave();
    expectAsIdleAs(before, "requests without a pause");
}

TEST_F(RequestFlood, OneReadEachIsAnsweredOneByOne)
{
    const auto before = figures();
    const int count = scaled(10, 200);
    QElapsedTimer timer;
    timer.start();
    for (int mark = 1; mark <= count; ++mark) {
        client.write(markedRequest(mark));
        ASSERT_TRUE(waitUntil([&] { return reads() >= mark; })) << mark;
    }
    const qint64 writtenMs = timer.elapsed();
    ASSERT_TRUE(
        client.waitConnected([&] { return marksIn(client.documents()).size() >= count; }, boundMs(count)));
    EXPECT_GE(timer.elapsed(), messagePauseMs * (count - 1));
    const QList<int> replies = marksIn(client.documents());
    EXPECT_EQ(sorted(replies), upTo(count));
    EXPECT_EQ(replies, sentMarks(service.log()));
    report("requests read one by one",
        QStringLiteral("%1 read in %2 ms, answered in %3 s, %4 ms a reply")
            .arg(count)
            .arg(writtenMs)
            .arg(tarnLoad::seconds(timer.elapsed()))
            .arg(timer.elapsed() / count));
    client.leave();
    expectAsIdleAs(before, "requests read one by one");
}

TEST_F(RequestFlood, OfManyClientsGoesToTheOneWhoAskedLast)
{
    const auto before = figures();
    // Where a client that only listens is disconnected after 5 s, all is to be over by then.
    const int count = tarnTest::losesIdleConnections() ? 6 : scaled(10, 200);
    std::vector<std::unique_ptr<ServiceClient>> crowd;
    for (int mark = 1; mark <= count; ++mark) {
        crowd.push_back(std::make_unique<ServiceClient>());
        ASSERT_TRUE(crowd.back()->connectToService()) << mark;
    }
    QElapsedTimer timer;
    timer.start();
    for (int mark = 1; mark <= count; ++mark)
        crowd[static_cast<std::size_t>(mark - 1)]->write(markedRequest(mark));
    ASSERT_TRUE(waitUntil([&] { return reads() >= count; }));
    const qint64 askedMs = timer.elapsed();

    const auto arrived = [&crowd] {
        qsizetype all = 0;
        for (const auto &one : crowd)
            all += marksIn(one->documents()).size();
        return all;
    };
    ASSERT_TRUE(waitUntil([&] { return arrived() >= count; }, boundMs(count))) << arrived();
    QList<int> all;
    qsizetype most = 0;
    for (const auto &one : crowd) {
        const QList<int> marks = marksIn(one->documents());
        most = std::max(most, marks.size());
        all += marks;
    }
    EXPECT_EQ(sorted(all), upTo(count)) << "lost or doubled";
    EXPECT_EQ(sorted(sentMarks(service.log())), upTo(count));
    // Only replies that were sent while others were still asking went to others.
    EXPECT_GE(most, count - askedMs / messagePauseMs - 1);
    report("clients that ask at once",
        QStringLiteral("%1 read in %2 ms, %3 replies went to the last, in %4 s")
            .arg(count)
            .arg(askedMs)
            .arg(most)
            .arg(tarnLoad::seconds(timer.elapsed())));
    crowd.clear();
    client.leave();
    expectAsIdleAs(before, "clients that ask at once");
}

// After an EC update the EC stays reserved, but a client that knows nothing of it goes on polling, for an
// hour.
TEST_F(RequestFlood, OfPollsAfterAnEcUpdateCostsNoThreadsAndHoldsUpNoEnd)
{
    ASSERT_EQ(client.answer("requestStartEcUpdate"), "successed");
    const auto poll = [this](int times) {
        const char *line = R"("{\"cmd\":\"getMcuVersion\"}")";
        const qsizetype before = linesThatBegin(line);
        for (int polls = 1; polls <= times; ++polls) {
            client.write(R"({"cmd":"getMcuVersion"})");
            ASSERT_TRUE(waitUntil([&] { return linesThatBegin(line) >= before + polls; })) << polls;
        }
    };
    constexpr int aMinute = 120;
    const int later = scaled(2 * aMinute, 59 * aMinute);
    poll(aMinute);
    const auto afterAMinute = figures();
    poll(later);
    const auto afterwards = figures();
    EXPECT_LE(afterwards.threads, afterAMinute.threads);
    EXPECT_EQ(client.answer("getAccessoryType"), "disconnected");
    report("polls after an EC update",
        QStringLiteral("threads %1 after %2, %3 after %4, memory %5 and %6 MiB")
            .arg(afterAMinute.threads)
            .arg(aMinute)
            .arg(afterwards.threads)
            .arg(aMinute + later)
            .arg(afterAMinute.memoryMib, 0, 'f', 1)
            .arg(afterwards.memoryMib, 0, 'f', 1));
    QElapsedTimer timer;
    timer.start();
    EXPECT_EQ(service.stop(), 0);
    EXPECT_LT(timer.elapsed(), tarnTest::allowedMs(tarnTest::promptStopMs));
}
