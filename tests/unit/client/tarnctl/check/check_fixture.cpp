#include "unit/client/tarnctl/check/check_fixture.h"

#include <QDir>
#include <QFile>
#include <QJsonDocument>

#include <chrono>
#include <sstream>

namespace tarnClientTest {

using std::chrono::milliseconds;
using namespace tarnRecording;

namespace {

constexpr milliseconds recordPeriod(20);

std::uint64_t steadyUs()
{
    const auto now = std::chrono::steady_clock::now().time_since_epoch();
    return static_cast<std::uint64_t>(std::chrono::duration_cast<std::chrono::microseconds>(now).count());
}

// Calls back after each line.
class WatchedOutput : public std::stringbuf
{
public:
    explicit WatchedOutput(std::function<void(const QByteArray &)> callback)
        : shown(std::move(callback))
    { }

protected:
    int sync() override
    {
        shown(QByteArray::fromStdString(str()));
        return 0;
    }

private:
    const std::function<void(const QByteArray &)> shown;
};

} // namespace

CheckTest::CheckTest()
{
    values = {{"getAccessoryType", "k_vane"}, {"getAccessoryCode", "4"}, {"getMcuVersion", "2.05"},
        {"getHardwareVersion", "4"}, {"getTarnBatteryNum", "80"}, {"getTarnChargingStatus", "1"},
        {"getTarnPowerMode", "balance"}, {"getSmartChargingStatus", "OFF"}, {"getDockLedStatus", "on"},
        {"getGraphicsRGB", "cyan"}, {"getTarnKvaneSnCode", "CDAB8967452301"}, {"getKvaneBatteryNum", "60"},
        {"getKvaneChargingStatus", "0"}, {"getKVaneLedLight", "77"}};
    getterOf = {{"setTarnPowerMode", "getTarnPowerMode"},
        {"setSmartChargingStatus", "getSmartChargingStatus"}, {"setDockLedStatus", "getDockLedStatus"},
        {"setGraphicsRGB", "getGraphicsRGB"}, {"setKVaneLedLight", "getKVaneLedLight"}};
    times.hands = milliseconds(400);
    times.settling = milliseconds(5000);
    times.settled = milliseconds(50);
    times.growth = milliseconds(5000);
    times.coverage = milliseconds(3000);
    times.client.unansweredPause = milliseconds(20);
    times.client.leavePause = milliseconds(20);
    times.client.questionLimit = milliseconds(2000);
    beginRecording("ec-20261121-110000-000.recording", 1);
    QObject::connect(&recordingTimer, &QTimer::timeout, &service, [this] {
        if (isRecording)
            record();
    });
    recordingTimer.start(recordPeriod);
    service.onRequest([this](const QJsonObject &request) {
        const QString command = request.value("cmd").toString();
        if (!instead || !instead(command, request.value("data").toString()))
            answer(request);
    });
}

void CheckTest::beginRecording(const QString &name, std::uint64_t firstAccess)
{
    recordingName = "function/" + name;
    recordingBegan = steadyUs();
    tarnRecording::RecordingHeader header;
    header.startedAt = "2026-11-21T11:00:00.000+00:00";
    header.service = "1.40";
    header.system = "linux";
    header.firstAccess = firstAccess;
    header.clockUs = recordingBegan;
    write(recordingName, QByteArray::fromStdString(tarnRecording::lineOf(header)));
}

void CheckTest::record()
{
    QFile file(path(recordingName));
    EXPECT_TRUE(file.open(QIODevice::Append));
    EcRecord access;
    access.port = 0x6c;
    access.us = access.lastUs = steadyUs() - recordingBegan;
    access.thread = 1;
    file.write(QByteArray::fromStdString(tarnRecording::lineOf(access)));
}

void CheckTest::answer(const QJsonObject &request)
{
    const QString command = request.value("cmd").toString();
    const QString data = request.value("data").toString();
    if (getterOf.contains(command)) {
        values[getterOf.value(command)] = data;
        if (command == "setKVaneLedLight")
            service.write(compact(request));
        else
            service.answer(request, "result", "successed");
    } else if (command == "powerModeControl") {
        if (data != "last")
            service.answer(request, "result", data == "first" ? "2" : "successed");
    } else if (command == "getMcuUpdateParameters") {
        service.write(compact(withField(withField(withField(request, "mcuVer", values["getMcuVersion"]),
                                            "hardwareVer", values["getHardwareVersion"]),
            "accessoryCode", values["getAccessoryCode"])));
    } else {
        service.answer(request, "data", values.value(command));
    }
}

ToolRun CheckTest::check(const QStringList &arguments, const QByteArray &typedLines)
{
    return check(arguments, typed(typedLines));
}

ToolRun CheckTest::check(const QStringList &arguments, const ToolInput &input)
{
    const tarnctl::ToolOptions options = tarnctl::parseOptions(
        QStringList {"tarnctl", "--pipe", service.pipeName(), "check-computer"} + arguments)
                                             .options;
    WatchedOutput shown([this](const QByteArray &text) { lookForCues(text); });
    std::ostream output(&shown);
    std::ostringstream errors;
    tarnctl::ToolStreams streams {input.stream, output, errors};
    ToolRun run;
    run.code = static_cast<int>(tarnctl::CheckCommand(options, streams, computer, tarnctl::hostDevices, times)
                                    .run(options.words.mid(1)));
    run.output = QByteArray::fromStdString(shown.str());
    run.errors = QByteArray::fromStdString(errors.str());
    return run;
}

QStringList CheckTest::sent() const
{
    QStringList lines;
    for (const QByteArray &request : service.requests()) {
        const QJsonObject object = QJsonDocument::fromJson(request).object();
        lines << object.value("cmd").toString() + ' ' + object.value("data").toString();
    }
    return lines;
}

QStringList CheckTest::noted(const QString &name) const
{
    QStringList lines;
    std::string error;
    const QStringList names = files("*.requests");
    if (names.isEmpty())
        return {};
    const auto records =
        readRequests(path("function/" + (name.isEmpty() ? names.first() : name)).toStdString(), error);
    EXPECT_TRUE(records) << error;
    for (const RequestRecord &record : records.value_or(std::vector<RequestRecord>())) {
        if (record.kind != RequestRecord::Kind::Request)
            continue;
        const QJsonObject object = QJsonDocument::fromJson(QByteArray::fromStdString(record.text)).object();
        lines << object.value("command").toString() + ' ' + object.value("data").toString();
    }
    return lines;
}

QStringList CheckTest::files(const QString &pattern) const
{
    return QDir(path("function")).entryList({pattern}, QDir::Files, QDir::Name);
}

QString CheckTest::report() const
{
    const QStringList names = files("*.report.txt");
    return names.isEmpty() ? QString() : fileText(names.first());
}

QString CheckTest::fileText(const QString &name) const
{
    QFile file(path("function/" + name));
    return file.open(QIODevice::ReadOnly) ? QString::fromUtf8(file.readAll()) : QString();
}

void CheckTest::whenShown(const QByteArray &text, std::function<void()> action)
{
    cues << Cue {text, std::move(action)};
}

void CheckTest::attachWhenShown(const QByteArray &text, const QString &accessory, const QString &code)
{
    whenShown(text, [this, accessory, code] {
        values["getAccessoryType"] = accessory;
        values["getAccessoryCode"] = code;
        service.notify("changeAccessoryType", accessory);
    });
}

void CheckTest::lookForCues(const QByteArray &shown)
{
    for (qsizetype number = 0; number < cues.size();) {
        if (shown.contains(cues.at(number).text))
            service.later(milliseconds(0), cues.takeAt(number).action);
        else
            ++number;
    }
}

void CheckTest::warn(const QString &text) const
{
    QFile file(path("log/TarnService.log"));
    EXPECT_TRUE(file.open(QIODevice::Append));
    file.write("2026-11-21 11:30:00.000 warning 0x7f2a " + text.toUtf8() + '\n');
}

} // namespace tarnClientTest
