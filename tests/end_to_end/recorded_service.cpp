#include "end_to_end/recorded_service.h"

#include "device/ec_registers.h"
#include "simulator/tool/device_text.h"
#include "support/pipe_peer.h"

#include <QDir>
#include <QFile>
#include <QJsonDocument>

#include <algorithm>

namespace tarnTest {

using tarnRecording::RequestRecord;

namespace {

constexpr int usersAnswer = 1; // yes

std::string compact(const QJsonObject &object)
{
    return QJsonDocument(object).toJson(QJsonDocument::Compact).toStdString();
}

} // namespace

RecordedService::RecordedService()
{
    service.write(QStringLiteral("function/ec_recording.on"), {});
    tarnSimulator::DeviceTree &devices = service.computer().devices();
    for (const std::int32_t slot : devices.allSlots())
        journal.note(RequestRecord::Kind::Device, compact(tarnSimulator::toJson(devices.device(slot))));
    service.computer().desktop().setAnswer(usersAnswer);
    journal.note(RequestRecord::Kind::Answer, std::to_string(usersAnswer));
}

bool RecordedService::start()
{
    return service.start() && client.connectToService() && waitForHolds(2);
}

QString RecordedService::ask(const char *command, const char *data)
{
    static_cast<void>(waitForHold(2000)); // there is none while the EC is reserved
    QJsonObject request {{QStringLiteral("command"), QString::fromLatin1(command)}};
    if (data)
        request.insert(QStringLiteral("data"), QString::fromLatin1(data));
    journal.note(RequestRecord::Kind::Request, compact(request));
    return client.answer(command, data);
}

bool RecordedService::waitForHold(int boundMs)
{
    const auto &log = service.computer().registerLog();
    std::uint64_t cursor = log.end();
    return waitUntil(
        [&] {
            const tarnSimulator::LogReading reading = log.readAfter(cursor);
            cursor = reading.cursor;
            return std::any_of(reading.accesses.begin(), reading.accesses.end(),
                [](const auto &access) { return access.address == tarnDeviceInfos::MCU_LINK_STATUS; });
        },
        boundMs);
}

bool RecordedService::waitForHolds(int count)
{
    for (int hold = 0; hold < count; ++hold) {
        if (!waitForHold())
            return false;
    }
    return true;
}

QString RecordedService::finish()
{
    if (!waitForHolds(2) || service.stop() != 0)
        return {};
    const QStringList files = recordingsIn(service);
    std::string error;
    const auto recording = tarnRecording::readRecording(files.value(0).toStdString(), error);
    const bool isGood = recording && files.size() == 1 && recording->damagedLine == 0
        && journal.isCoveredBy(*recording)
        && journal.write(tarnRecording::requestsPathOf(files.first().toStdString()), *recording);
    return isGood ? files.first() : QString();
}

QStringList recordingsIn(const ServiceProcess &service)
{
    const QDir folder(service.path(QStringLiteral("function")));
    QStringList files;
    for (const QString &name : folder.entryList({QStringLiteral("ec-*.recording")}, QDir::Files, QDir::Name))
        files << folder.filePath(name);
    return files;
}

bool copyRecording(const QString &from, const QString &to)
{
    const QString requests = QString::fromStdString(tarnRecording::requestsPathOf(from.toStdString()));
    const QString target = QString::fromStdString(tarnRecording::requestsPathOf(to.toStdString()));
    QFile::remove(to);
    QFile::remove(target);
    return QFile::copy(from, to) && QFile::copy(requests, target);
}

} // namespace tarnTest
