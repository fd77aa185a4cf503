#include "load/kill_campaign.h"

#include "accessory/power_profiles.h"
#include "device/monitor/accessory_table.h"
#include "support/pipe_peer.h"

#include <QFile>
#include <QJsonDocument>

namespace tarnLoad {

using namespace tarnAccessoryManager;
using namespace tarnDeviceInfos;
using tarnTest::waitUntil;

namespace {

const QString killPointFile = QStringLiteral("kill_point");
constexpr int startMs = 5500; // a start takes about that long
constexpr int replyBoundMs = 60000;
constexpr qsizetype stepsToTell = 30;

const QString resultKey = QStringLiteral("result");
const QString dataKey = QStringLiteral("data");
const QString killKey = QStringLiteral("kill");

} // namespace

KillCampaign::KillCampaign(std::uint64_t seed, int killCount)
    : random(seed)
    , kills(killCount)
{
    QProcessEnvironment environment = service.process.processEnvironment();
    environment.insert(QStringLiteral("TARN_KILL_POINT"), service.path(killPointFile));
#ifdef TARN_KILL_POINT_LIBRARY
    environment.insert(QStringLiteral("LD_PRELOAD"), QStringLiteral(TARN_KILL_POINT_LIBRARY));
#endif
    service.process.setProcessEnvironment(environment);
    if (seed % 2 == 1) // then more often with a byte that the EC has not taken yet
        service.takeBytesSlowly();
    for (const KeptSetting &setting : keptSettings())
        allowed.push_back({setting.kept(service)});
}

QString KillCampaign::run()
{
    while (broken.isEmpty() && done < kills) {
        if (random.oneIn(5))
            dieAtTheStart();
        else
            live();
        checkWhatIsKept();
    }
    begin();
    if (broken.isEmpty())
        return {};
    return QStringLiteral("kill %1: %2\nafter:\n  %3\nthe service %4; it said last:\n%5")
        .arg(done)
        .arg(broken, steps.join(QStringLiteral("\n  ")),
            service.process.state() == QProcess::Running
                ? QStringLiteral("runs")
                : QStringLiteral("ended with %1").arg(service.process.exitCode()),
            service.log().right(2000));
}

void KillCampaign::dieAtTheStart()
{
    const int afterMs = random.below(startMs);
    note(QStringLiteral("killed %1 ms after its start").arg(afterMs));
    expect(service.launch({QStringLiteral("-exec")}), QStringLiteral("it starts"));
    waitUntil([this] { return service.process.state() == QProcess::NotRunning; }, afterMs);
    expect(service.process.state() != QProcess::NotRunning, QStringLiteral("it lives until it is killed"));
    kill();
}

void KillCampaign::live()
{
    begin();
    for (int requests = random.below(3); requests > 0; --requests)
        set(throwWish(false));
    if (broken.isEmpty())
        dieInTheMiddle();
    kill();
}

void KillCampaign::begin()
{
    if (!broken.isEmpty())
        return;
    note(QStringLiteral("starts"));
    service.computer().detach();
    offerFirmware(service);
    offered = true;
    expect(service.start(), QStringLiteral("it starts and polls the EC: ") + service.log().right(1000));
    client = std::make_unique<tarnTest::ServiceClient>();
    expect(client->connectToService(), QStringLiteral("its pipe can be reached"));
    checkClientsStart();
    checkMonitor();
    checkAnswers();
}

// The stored value is one of the allowed ones; from now on it is the only allowed one.
void KillCampaign::checkWhatIsKept()
{
    for (std::size_t i = 0; i < allowed.size(); ++i) {
        const KeptSetting &setting = keptSettings()[i];
        const QString value = setting.kept(service);
        expect(allowed[i].contains(value),
            QStringLiteral("%1 is %2 and not one of: %3")
                .arg(QLatin1String(setting.name), value, allowed[i].join(QLatin1Char(' '))));
        allowed[i] = QStringList(value);
    }
    expect(!offered || isFirmwareSafe(service), QStringLiteral("a firmware file is kept until it was taken"));
}

// The client says that it has started; then the EC is as the file says.
void KillCampaign::checkClientsStart()
{
    if (!broken.isEmpty())
        return;
    const QString saved = keptSettings()[0].kept(service);
    const PowerProfile *known = profileOfName(saved.toStdString());
    expect(known || saved.isEmpty(), QStringLiteral("%1 is a profile").arg(saved));
    const PowerProfile &inForce = known ? *known : *profileOfNumber(defaultProfile);
    const QString profile = QLatin1String(inForce.name);
    allowed[0] << profile;
    expect(request("powerModeControl", QStringLiteral("first")) == Outcome::Confirmed,
        QStringLiteral("\"first\" is answered"));
    allowed[0] = QStringList(profile);
    expect(reply.value(resultKey).toString() == QString::number(inForce.number),
        QStringLiteral("\"first\" is answered with %1 for %2")
            .arg(reply.value(resultKey).toString(), profile));
    expect(keptSettings()[0].kept(service) == profile,
        QStringLiteral("the profile file holds what is in force"));
    expect(limitsInForce(service) == limitsOfProfile(profile),
        QStringLiteral("the limits %1 are those of %2").arg(limitsInForce(service), profile));
    expect(service.computer().peek(EC_POWERMODE_PL_CTRL) == PL_CTRL_MANUAL,
        QStringLiteral("power control is manual"));
}

void KillCampaign::checkMonitor()
{
    if (!broken.isEmpty())
        return;
    const AccessoryKind &next = random.oneOf(accessoryTable);
    accessory = QLatin1String(next.name);
    note(QStringLiteral("%1 is attached").arg(accessory));
    service.attach(next.code);
    expect(client->waitForNotification("changeAccessoryType", next.name),
        QStringLiteral("the monitor announces %1").arg(accessory));
}

// Clients are told what is kept.
void KillCampaign::checkAnswers()
{
    if (!broken.isEmpty())
        return;
    expect(query("getSmartChargingStatus") == allowed[1].first(),
        QStringLiteral("smart charging is told as it is"));
    expect(query("getTarnPowerMode") == allowed[2].first(),
        QStringLiteral("the user's profile is told as it is"));
    if (accessory == QLatin1String("dock"))
        expect(query("getDockLedStatus") == allowed[3].first(),
            QStringLiteral("the dock's light is told as it is"));
    if (accessory != QLatin1String("graphics") || allowed[5].first().isEmpty())
        return;
    // The last colour is restored; light and file may differ by one request.
    const QString colour = allowed[5].first();
    allowed[4] << colour;
    expect(request("setGraphicsRGB", QStringLiteral("on")) == Outcome::Confirmed,
        QStringLiteral("\"on\" is answered"));
    expect(reply.value(dataKey).toString() == colour, QStringLiteral("\"on\" brings %1 back").arg(colour));
    allowed[4] = QStringList(colour);
}

KillCampaign::Wish KillCampaign::throwWish(bool last, bool inFile)
{
    for (;;) {
        const KeptSetting &setting = random.oneOf(keptSettings());
        // After an update of the EC nothing reaches it before a restart.
        const bool reservesTheEc = QLatin1String(setting.command) == QLatin1String("requestEcUpdate");
        const bool possible = !setting.accessory || accessory == QLatin1String(setting.accessory);
        if (possible && (last || !reservesTheEc) && (setting.isInFile || !inFile))
            return {setting.command, QLatin1String(random.oneOf(setting.values))};
    }
}

void KillCampaign::set(const Wish &wish)
{
    if (!broken.isEmpty())
        return;
    allow(wish);
    expect(request(wish.command, wish.value) == Outcome::Confirmed,
        QStringLiteral("%1 %2 is done").arg(QLatin1String(wish.command), wish.value));
    confirm(wish);
}

// The last request of a life; the end comes before, during or after it.
void KillCampaign::dieInTheMiddle()
{
    std::function<bool()> reached = [] {
        return false;
    };
    QElapsedTimer timer;
    timer.start();
    const int way = random.below(6);
    const bool inFile = way > 1;
    if (way == 0) {
        const auto &counters = service.computer().counters();
        const auto accesses = [&counters] {
            return counters.reads.load() + counters.writes.load();
        };
        const int count = random.below(40);
        reached = [accesses, end = accesses() + static_cast<std::uint64_t>(count)] {
            return accesses() >= end;
        };
        note(QStringLiteral("to be killed after %1 register accesses").arg(count));
    } else if (way == 1) {
        const int afterMs = random.below(1000);
        reached = [&timer, afterMs] {
            return timer.elapsed() >= afterMs;
        };
        note(QStringLiteral("to be killed after %1 ms").arg(afterMs));
    } else {
        const int count =
            random.below(random.oneIn(2) ? 4 : 16); // a profile takes few calls, a firmware many
        service.write(killPointFile, QByteArray::number(count));
        note(QStringLiteral("to be killed before call %1 for a file").arg(count + 1));
    }
    const Wish wish = throwWish(true, inFile);
    allow(wish);
    switch (request(wish.command, wish.value, reached)) {
    case Outcome::Confirmed:
        confirm(wish);
        break;
    case Outcome::Refused:
        expect(false, QStringLiteral("%1 %2 is done").arg(QLatin1String(wish.command), wish.value));
        break;
    case Outcome::Open:
        ++unconfirmed;
        inFileWork += inFile ? 1 : 0;
    }
    QFile::remove(service.path(killPointFile));
}

void KillCampaign::allow(const Wish &wish)
{
    for (std::size_t i = 0; i < allowed.size(); ++i) {
        if (QLatin1String(keptSettings()[i].command) == QLatin1String(wish.command))
            allowed[i] << wish.value;
    }
}

void KillCampaign::confirm(const Wish &wish)
{
    ++confirmed;
    for (std::size_t i = 0; i < allowed.size(); ++i) {
        if (QLatin1String(keptSettings()[i].command) == QLatin1String(wish.command))
            allowed[i] = QStringList(wish.value);
    }
}

KillCampaign::Outcome KillCampaign::request(
    const char *command, const QString &value, const std::function<bool()> &orUntil)
{
    note(QLatin1String(command) + QLatin1Char(' ') + value);
    QJsonObject message {{QStringLiteral("cmd"), QLatin1String(command)}, {killKey, ++mark}};
    if (!value.isEmpty())
        message.insert(dataKey, value);
    client->write(QJsonDocument(message).toJson(QJsonDocument::Compact));
    reply = {};
    const bool ended = waitUntil(
        [&] {
            for (const QByteArray &document : client->documents()) {
                const QJsonObject arrived = QJsonDocument::fromJson(document).object();
                if (arrived.value(killKey).toInt() == mark)
                    reply = arrived;
            }
            return !reply.isEmpty() || service.process.state() == QProcess::NotRunning
                || (orUntil && orUntil());
        },
        replyBoundMs);
    expect(ended, QStringLiteral("%1 %2 is answered").arg(QLatin1String(command), value));
    if (reply.isEmpty())
        return Outcome::Open;
    const bool refused = reply.value(resultKey) == QStringLiteral("failed")
        || reply.value(dataKey) == QStringLiteral("failed");
    return refused ? Outcome::Refused : Outcome::Confirmed;
}

QString KillCampaign::query(const char *command)
{
    const bool answered = request(command, {}) != Outcome::Open;
    return answered ? reply.value(dataKey).toString() : QStringLiteral("(no reply)");
}

void KillCampaign::kill()
{
    ++done;
    service.kill();
    client.reset();
    note(QStringLiteral("killed, number %1").arg(done));
}

void KillCampaign::note(const QString &step)
{
    steps << step;
    if (steps.size() > stepsToTell)
        steps.removeFirst();
}

void KillCampaign::expect(bool holds, const QString &rule)
{
    if (!holds && broken.isEmpty())
        broken = rule;
}

} // namespace tarnLoad
