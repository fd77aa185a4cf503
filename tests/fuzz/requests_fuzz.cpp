// What stands beside a recording that somebody has sent: devices, saved files, answers and requests.
#include "device/recording/request_record.h"
#include "harness.h"
#include "simulator/replay/replay_steps.h"
#include "simulator/tool/device_text.h"

#include <QFile>
#include <QJsonDocument>
#include <QJsonObject>
#include <QTemporaryDir>

using namespace tarnRecording;
using tarnFuzz::require;

namespace {

using Requests = std::optional<std::vector<RequestRecord>>;

Requests readBack(const QByteArray &bytes)
{
    static const QTemporaryDir folder;
    const QString path = folder.filePath(QStringLiteral("ec.requests"));
    QFile file(path);
    require(file.open(QIODevice::WriteOnly), "the file can be written");
    file.write(bytes);
    file.close();
    std::string error;
    Requests records = readRequests(path.toStdString(), error);
    require(records.has_value() == error.empty(), "there is a reason when it cannot be read");
    return records;
}

void checkDevice(const QJsonObject &object)
{
    const auto device = tarnSimulator::deviceOf(object);
    if (!device)
        return;
    const auto same = tarnSimulator::deviceOf(tarnSimulator::toJson(*device));
    const std::string line = tarnSimulator::deviceLine(*device);
    require(same && tarnSimulator::deviceLine(*same) == line, "a device can be read back");
    const auto step = tarnSimulator::deviceOfLine(line);
    require(step && tarnSimulator::deviceLine(*step) == line, "a device can be read back from its step");
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t *data, std::size_t size)
{
    const Requests records = readBack(tarnFuzz::bytesOf(data, size));
    if (!records)
        return 0;
    std::string lines;
    std::uint64_t last = 0;
    bool canBeReadBack = true;
    for (const RequestRecord &record : *records) {
        require(record.after >= last, "they are in order");
        last = record.after;
        lines += lineOf(record);
        // The carriage return would be taken for a part of the line's end; nothing that writes them has it
        // there.
        canBeReadBack = canBeReadBack && !record.text.ends_with('\r');
        if (record.kind == RequestRecord::Kind::Device)
            checkDevice(QJsonDocument::fromJson(QByteArray::fromStdString(record.text)).object());
        const auto device = tarnSimulator::deviceOfLine(record.text);
        require(!device || tarnSimulator::deviceOfLine(tarnSimulator::deviceLine(*device)).has_value(),
            "what is taken for a device stays one");
    }
    const Requests again = readBack(QByteArray::fromStdString(lines));
    require(!canBeReadBack || again == records, "records can be read back");
    return 0;
}
