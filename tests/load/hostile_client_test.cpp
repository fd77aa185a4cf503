#include "device/ec_registers.h"
#include "load/figure_table.h"
#include "load/loaded_service.h"
#include "support/pipe_peer.h"

#include <QElapsedTimer>
#include <QLocalSocket>

using tarnLoad::markedRequest;
using tarnLoad::marksIn;
using tarnLoad::report;
using tarnLoad::scaled;
using tarnLoad::sentMarks;
using tarnTest::ServiceClient;
using tarnTest::waitUntil;

namespace {

constexpr qsizetype ballastBytes = 12 * 1024; // goes through a local socket in one piece

// A client that reads only when it is told to: its socket buffers one byte at most.
class DeafClient
{
public:
    DeafClient() { socket.setReadBufferSize(1); }
    [[nodiscard]] bool connectToService()
    {
        socket.connectToServer(QStringLiteral("tarnPipe"));
        return waitUntil([this] { return socket.state() == QLocalSocket::ConnectedState; });
    }
    void write(const QByteArray &bytes)
    {
        socket.write(bytes);
        socket.flush();
    }
    // From now on it reads what there is and what comes.
    [[nodiscard]] QByteArrayList read()
    {
        socket.setReadBufferSize(0);
        waitUntil([] { return false; }, 1); // serves the socket's events
        documents += splitter.feed(socket.readAll()).documents;
        return documents;
    }

    QLocalSocket socket;

private:
    tarn::JsonSplitter splitter;
    QByteArrayList documents;
};

} // namespace

class HostileClient : public tarnLoad::LoadedService
{
protected:
    // Marked requests with much to echo, as fast as they are read.
    [[nodiscard]] bool askForMuch(DeafClient &deaf, int count)
    {
        const QByteArray ballast(ballastBytes, 'b');
        bool read = true;
        for (int mark = 1; mark <= count && read; ++mark) {
            deaf.write(markedRequest(mark, ballast));
            read = waitUntil(
                [&] { return linesThatBegin(R"("{\"cmd\":\"getAccessoryType\",\"load\")") >= mark; });
        }
        return read;
    }

    // Whatever the other clients do, the next client's request is carried out and, in its turn, answered.
    void expectNextClientServed(const char *name, int behind = 0)
    {
        ServiceClient next;
        ASSERT_TRUE(next.connectToService());
        const int obeyedMs = expectObeyedAtOnce(next);
        QElapsedTimer timer;
        timer.start();
        EXPECT_EQ(
            next.ask({{"cmd", "getAccessoryType"}}, 30000 + 1000 * behind).value("data"), "disconnected");
        report(QLatin1String(name) + QStringLiteral(", next client"),
            QStringLiteral("obeyed after %1 ms, answered after %2 s")
                .arg(obeyedMs)
                .arg(tarnLoad::seconds(timer.elapsed())));
        next.leave();
    }
};

TEST_F(HostileClient, ThatNeverReadsCostsItsOwnRepliesOnly)
{
    const auto before = figures();
    const int count = scaled(10, 100);
    DeafClient deaf;
    ASSERT_TRUE(deaf.connectToService());
    ASSERT_TRUE(askForMuch(deaf, count));
    const double queuedMib = figures().memoryMib;
    ASSERT_TRUE(waitUntil([&] { return sentMarks(service.log()).size() == count; }, 30000 + count * 1000));
    report("never reads",
        QStringLiteral("%1 replies of %2 KiB, memory %3 MiB queued, %4 MiB unread (before %5)")
            .arg(count)
            .arg(ballastBytes / 1024)
            .arg(queuedMib, 0, 'f', 1)
            .arg(figures().memoryMib, 0, 'f', 1)
            .arg(before.memoryMib, 0, 'f', 1));
    expectNextClientServed("never reads");
    deaf.socket.abort();
    expectNextClientServed("never reads, gone");
    expectAsIdleAs(before, "never reads");
}

TEST_F(HostileClient, ThatStallsFindsEverythingInOrder)
{
    const auto before = figures();
    const int stallMs = scaled(6000, 60000);
    const int count = stallMs / 1000;
    DeafClient deaf;
    ASSERT_TRUE(deaf.connectToService());
    QElapsedTimer timer;
    timer.start();
    ASSERT_TRUE(askForMuch(deaf, count));
    waitUntil([] { return false; }, stallMs - static_cast<int>(timer.elapsed()));
    const qsizetype sentMeanwhile = sentMarks(service.log()).size();
    const double stalledMib = figures().memoryMib;

    ASSERT_TRUE(waitUntil([&] { return marksIn(deaf.read()).size() >= count; }, 30000 + count * 1000));
    const QList<int> marks = marksIn(deaf.read());
    QList<int> each = marks;
    std::sort(each.begin(), each.end());
    each.erase(std::unique(each.begin(), each.end()), each.end());
    EXPECT_EQ(each.size(), count);
    EXPECT_EQ(marks, sentMarks(service.log()));
    report("stalls",
        QStringLiteral("%1 s, %2 replies sent meanwhile, memory %3 MiB (before %4)")
            .arg(stallMs / 1000)
            .arg(sentMeanwhile)
            .arg(stalledMib, 0, 'f', 1)
            .arg(before.memoryMib, 0, 'f', 1));
    deaf.socket.abort();
    expectNextClientServed("stalls");
    expectAsIdleAs(before, "stalls");
}

TEST_F(HostileClient, ThatWritesByteByByteIsAnsweredWithNothing)
{
    const auto before = figures();
    const QByteArray request = QByteArray(R"({"cmd":"setTarnPowerMode","data":"low"})").left(scaled(10, 39));
    ServiceClient slow;
    ASSERT_TRUE(slow.connectToService());
    qsizetype reads = service.logCount("cmd is not a string.");
    for (char byte : request) {
        slow.write(QByteArray(1, byte));
        ++reads;
        ASSERT_TRUE(waitUntil([&] { return service.logCount("cmd is not a string.") >= reads; }));
    }
    EXPECT_NE(
        service.computer().peek(tarnDeviceInfos::EC_TARN_POWER_MODE), 2); // the whole was never a request
    EXPECT_TRUE(marksIn(slow.documents()).isEmpty());
    slow.leave();
    report("byte by byte", QStringLiteral("%1 bytes are %1 empty writes").arg(request.size()));
    expectNextClientServed("byte by byte", static_cast<int>(request.size()));
    expectAsIdleAs(before, "byte by byte");
}
