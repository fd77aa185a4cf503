#include "load/loaded_service.h"

#include "accessory/power_profiles.h"
#include "device/ec_registers.h"
#include "load/figure_table.h"
#include "support/pipe_peer.h"
#include "support/time_bound.h"

#include <QElapsedTimer>
#include <QJsonDocument>
#include <QRegularExpression>

namespace tarnLoad {

using tarnTest::waitUntil;

namespace {

const QString markKey = QStringLiteral("load");
constexpr int obeyBoundMs = 60000;
// The EC is shared with the monitor. The quick forms share the processors with many other tests as well.
const int atOnceMs = scaled(15000, 3000);
constexpr int idleWindowMs = 3000;
constexpr int threadExpiryMs = 40000;
// An idle service takes well below one percent of a core, but its processors are shared with other tests.
constexpr double idlePercent = 10;

// What is asked for in turn.
constexpr const tarnAccessoryManager::PowerProfile *wishes[] = {
    tarnAccessoryManager::profileOfName("high"), tarnAccessoryManager::profileOfName("low")};

} // namespace

void LoadedService::SetUp()
{
    ASSERT_TRUE(service.start()) << service.log().right(3000).toStdString();
}

void LoadedService::TearDown()
{
    EXPECT_EQ(service.stop(), 0);
}

int LoadedService::msUntilObeyed(tarnTest::ServiceClient &client)
{
    const tarnAccessoryManager::PowerProfile &wish = *wishes[obeyed++ % std::size(wishes)];
    QElapsedTimer timer;
    timer.start();
    client.write(QByteArray(R"({"cmd":"setTarnPowerMode","data":")") + wish.name + R"("})");
    const bool done =
        waitUntil([&] { return service.computer().peek(tarnDeviceInfos::EC_TARN_POWER_MODE) == wish.ecFlag; },
            obeyBoundMs);
    return done ? static_cast<int>(timer.elapsed()) : -1;
}

int LoadedService::expectObeyedAtOnce(tarnTest::ServiceClient &client)
{
    const int obeyedMs = msUntilObeyed(client);
    EXPECT_GE(obeyedMs, 0) << "never obeyed";
    EXPECT_LT(obeyedMs, tarnTest::allowedMs(atOnceMs));
    return obeyedMs;
}

double LoadedService::cpuPercent(int overMs)
{
    const qint64 before = figures().cpuMs;
    QElapsedTimer timer;
    timer.start();
    waitUntil([] { return false; }, overMs);
    return 100.0 * static_cast<double>(figures().cpuMs - before) / static_cast<double>(timer.elapsed());
}

void LoadedService::expectAsIdleAs(const ProcessFigures &before, const char *name, double moreMib)
{
    // Where threads are counted, each idle one of the pool accounts for a handle; elsewhere they end in time.
    const auto ofThreadsOnly = [&before](const ProcessFigures &now) {
        return now.handles - now.threads <= before.handles - before.threads;
    };
    EXPECT_TRUE(waitUntil([&] { return ofThreadsOnly(figures()); }, threadExpiryMs))
        << figures().handles << " handles instead of " << before.handles;
    const double percent = cpuPercent(idleWindowMs);
    const ProcessFigures after = figures();
    EXPECT_LT(percent, idlePercent);
    EXPECT_LT(after.memoryMib, before.memoryMib + keptMib(moreMib));
    report(QLatin1String(name) + QStringLiteral(", afterwards"),
        QStringLiteral("memory %1 MiB (before %2, peak %3), CPU %4 %, handles %5 (%6), threads %7 (%8)")
            .arg(after.memoryMib, 0, 'f', 1)
            .arg(before.memoryMib, 0, 'f', 1)
            .arg(after.peakMib, 0, 'f', 1)
            .arg(percent, 0, 'f', 1)
            .arg(after.handles)
            .arg(before.handles)
            .arg(after.threads)
            .arg(before.threads));
}

QByteArray markedRequest(int mark, const QByteArray &ballast)
{
    QJsonObject request {{QStringLiteral("cmd"), QStringLiteral("getAccessoryType")}, {markKey, mark}};
    if (!ballast.isEmpty())
        request.insert(QStringLiteral("zballast"), QString::fromLatin1(ballast)); // after the mark
    return QJsonDocument(request).toJson(QJsonDocument::Compact);
}

QList<int> marksIn(const QByteArrayList &documents)
{
    QList<int> marks;
    for (const QByteArray &document : documents) {
        const QJsonObject message = QJsonDocument::fromJson(document).object();
        if (message.contains(markKey))
            marks << message.value(markKey).toInt();
    }
    return marks;
}

QList<int> sentMarks(const QString &log)
{
    static const QRegularExpression line(
        QStringLiteral("^send.*\"%1\":(\\d+)").arg(markKey), QRegularExpression::MultilineOption);
    QList<int> marks;
    for (auto found = line.globalMatch(log); found.hasNext();)
        marks << found.next().captured(1).toInt();
    return marks;
}

} // namespace tarnLoad
