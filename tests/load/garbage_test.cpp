#include "campaign/random_source.h"
#include "load/figure_table.h"
#include "load/loaded_service.h"
#include "support/pipe_peer.h"
#include "support/time_bound.h"

#include <QElapsedTimer>
#include <QFile>
#include <QLocalSocket>

using tarnLoad::report;
using tarnLoad::scaled;
using tarnTest::ServiceClient;
using tarnTest::waitUntil;

namespace {

constexpr qsizetype mib = 1024 * 1024;
constexpr qsizetype chunkBytes = 64 * 1024;
constexpr qint64 ahead = 4 * chunkBytes; // how much waits to be written at most
// Other clients are served between two pieces of the garbage; each piece is logged.
constexpr int obeyMs = 10000;
constexpr double roomMib = 32;

} // namespace

class Garbage : public tarnLoad::LoadedService
{
protected:
    // The log is far too large to be searched as a whole.
    void TearDown() override { EXPECT_EQ(service.stop(), 0); }

    qsizetype linesOfTheLog(const QByteArray &text)
    {
        QFile file(service.path("service.log"));
        qsizetype count = 0;
        if (!file.open(QIODevice::ReadOnly))
            return count;
        while (!file.atEnd())
            count += file.readLine().startsWith(text) ? 1 : 0;
        return count;
    }

    QByteArray chunk()
    {
        QByteArray bytes(chunkBytes, Qt::Uninitialized);
        for (char &byte : bytes)
            byte = static_cast<char>(random.byte());
        return bytes;
    }

    tarnCampaign::RandomSource random {tarnLoad::seed()};
};

TEST_F(Garbage, IsTakenWithoutGrowingAndOthersAreObeyedMeanwhile)
{
    const auto before = figures();
    const qsizetype total = scaled<qsizetype>(4, 100) * mib;
    ServiceClient other;
    ASSERT_TRUE(other.connectToService());
    ASSERT_EQ(other.answer("getAccessoryType"), "disconnected");
    QLocalSocket hostile;
    hostile.connectToServer(QStringLiteral("tarnPipe"));
    ASSERT_TRUE(waitUntil([&] { return hostile.state() == QLocalSocket::ConnectedState; }));

    QElapsedTimer timer;
    timer.start();
    int slowestMs = 0;
    const QByteArray rubbish = chunk();
    for (qsizetype written = 0; written < total; written += chunkBytes) {
        hostile.write(rubbish);
        ASSERT_TRUE(waitUntil([&] { return hostile.bytesToWrite() <= ahead; }, 60000));
        if (written % (total / 8) == 0) {
            const int obeyedMs = msUntilObeyed(other);
            ASSERT_GE(obeyedMs, 0);
            slowestMs = std::max(slowestMs, obeyedMs);
        }
    }
    ASSERT_TRUE(waitUntil([&] { return hostile.bytesToWrite() == 0; }, 60000));
    const qint64 writtenMs = timer.elapsed();
    hostile.disconnectFromServer();

    ServiceClient next;
    ASSERT_TRUE(next.connectToService());
    const int nextMs = msUntilObeyed(next);
    EXPECT_GE(nextMs, 0);
    EXPECT_LT(nextMs, tarnTest::allowedMs(obeyMs));
    EXPECT_LT(slowestMs, tarnTest::allowedMs(obeyMs));
    EXPECT_LT(figures().peakMib, before.peakMib + tarnLoad::keptMib(roomMib));
    const qsizetype pieces = linesOfTheLog("cmd is not a string.");
    report("garbage",
        QStringLiteral("%1 MiB in %2 s as %3 reads, others obeyed within %4 ms, the next after %5 ms")
            .arg(total / mib)
            .arg(tarnLoad::seconds(writtenMs))
            .arg(pieces)
            .arg(slowestMs)
            .arg(nextMs));
    // Each read is a message to be sent, an empty one, and the queue knows no bound.
    report("garbage, replies behind it", QStringLiteral("wait up to %1 s").arg(pieces / 2));
    next.leave();
    other.leave();
    expectAsIdleAs(before, "garbage", roomMib);
}
