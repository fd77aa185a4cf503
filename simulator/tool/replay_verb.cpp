#include "device/recording/recording.h"
#include "device/recording/request_record.h"
#include "platform/paths.h"
#include "simulator/replay/replay_control.h"
#include "simulator/replay/replay_steps.h"
#include "simulator/replay/request_places.h"
#include "simulator/tool/device_text.h"
#include "simulator/tool/tool_text.h"
#include "simulator/tool/verbs.h"
#include "simulator/value_text.h"

#include <QDir>
#include <QFileInfo>
#include <QJsonDocument>
#include <QJsonObject>

#include <algorithm>
#include <iterator>

namespace tarnSimulator {

namespace {

using tarnRecording::RequestRecord;

const QString looseOption = QStringLiteral("--loose");
const QString offOption = QStringLiteral("--off");

// Those that start tools that flash, which may find more than the simulated computer.
constexpr QLatin1StringView notRepeated[] = {
    QLatin1StringView("requestMcuUpdate"), QLatin1StringView("requestEcUpdate")};

// As a client writes it. The mark tells the answer from others in the service's log.
std::optional<std::string> messageOf(const QJsonObject &request, std::uint64_t number)
{
    const QJsonValue command = request.value(QLatin1String("command"));
    const bool isRepeated = std::none_of(std::begin(notRepeated), std::end(notRepeated),
        [&command](QLatin1StringView name) { return command.toString() == name; });
    if (!command.isString() || !isRepeated)
        return std::nullopt;
    QJsonObject message {
        {QStringLiteral("cmd"), command}, {QStringLiteral("id"), QStringLiteral("replay-%1").arg(number)}};
    if (request.contains(QLatin1String("data")))
        message.insert(QStringLiteral("data"), request.value(QLatin1String("data")));
    return QJsonDocument(message).toJson(QJsonDocument::Compact).toStdString();
}

// Only files that the service saves, because it is written into the service's folder.
std::optional<std::string> savedOf(const QJsonObject &object)
{
    const QString name = object.value(QLatin1String("file")).toString();
    const auto isName = [&name](const QString &path) {
        return QFileInfo(path).fileName() == name;
    };
    const QJsonValue content = object.value(QLatin1String("content"));
    const auto bytes = QByteArray::fromBase64Encoding(
        content.toString().toLatin1(), QByteArray::AbortOnBase64DecodingErrors);
    const bool isKnown =
        isName(tarnPlatform::path::savedPowerProfile) || isName(tarnPlatform::path::savedGraphicsColour);
    if (!isKnown || !content.isString() || !bytes)
        return std::nullopt;
    return savedLine(name.toStdString(), (*bytes).toStdString());
}

// The text as the port library reads it; nothing when it cannot be understood.
std::optional<std::string> preparedText(const RequestRecord &step)
{
    if (step.kind == RequestRecord::Kind::Answer)
        return step.text;
    const QJsonObject object = QJsonDocument::fromJson(QByteArray::fromStdString(step.text)).object();
    if (step.kind == RequestRecord::Kind::Request)
        return messageOf(object, step.after);
    if (step.kind == RequestRecord::Kind::Saved)
        return savedOf(object);
    const auto device = deviceOf(object);
    return device ? std::optional(deviceLine(*device)) : std::nullopt;
}

std::optional<std::vector<RequestRecord>> preparedSteps(const std::string &file, std::string &error)
{
    auto steps = tarnRecording::readRequests(file, error);
    if (!steps)
        return std::nullopt;
    for (RequestRecord &step : *steps) {
        const auto text = preparedText(step);
        if (!text) {
            std::string line = lineOf(step);
            line.pop_back(); // the line feed
            error = "\"" + file + "\": this cannot be done: " + printable(line);
            return std::nullopt;
        }
        step.text = *text;
    }
    return steps;
}

// The simulated computer has room for only so many. Names of those that are left out.
QStringList leaveOutDevices(std::vector<RequestRecord> &steps)
{
    QStringList taken;
    QStringList leftOut;
    std::erase_if(steps, [&](const RequestRecord &step) {
        if (step.kind != RequestRecord::Kind::Device)
            return false;
        const QString name = toQString(deviceOfLine(step.text).value_or(Device()).name);
        if (!taken.contains(name) && taken.size() < static_cast<qsizetype>(deviceSlots))
            taken << name;
        if (!taken.contains(name) && !leftOut.contains(name))
            leftOut << name;
        return !taken.contains(name);
    });
    return leftOut;
}

} // namespace

ExitCode replayRecording(ToolContext &context, const QStringList &arguments)
{
    QStringList words = arguments;
    MachineState &state = context.computer->state();
    if (words == QStringList(offOption)) {
        endReplay(state);
        return Done;
    }
    const bool isLoose = words.removeAll(looseOption) > 0;
    if (words.size() != 1 || words.first().startsWith(QLatin1String("--")))
        return complain(
            context, WrongUsage, QStringLiteral("replay takes one file, and --loose, or --off alone"));

    PreparedReplay prepared;
    prepared.mode = isLoose ? ReplayMode::Loose : ReplayMode::Strict;
    prepared.recordingFile = QDir::current().absoluteFilePath(words.first()).toStdString();
    std::string error;
    const auto recording = tarnRecording::readRecording(prepared.recordingFile, error);
    if (!recording)
        return complain(context, Failed, toQString(error));
    auto steps = preparedSteps(tarnRecording::requestsPathOf(prepared.recordingFile), error);
    if (!steps)
        return complain(context, Failed, toQString(error));
    if (const QStringList leftOut = leaveOutDevices(*steps); !leftOut.isEmpty())
        context.err << "There is no room for these devices: " << leftOut.join(QLatin1String(", ")) << ".\n";
    prepared.steps = placedSteps(*recording, *steps);
    error = prepareReplay(state, context.stateFile, prepared);
    if (!error.empty())
        return complain(context, Failed, toQString(error));
    if (recording->damagedLine != 0)
        context.err << "The recording is damaged from line " << recording->damagedLine
                    << " on; what is before is replayed.\n";
    context.out << "Start the service now; \"tarnsim show\" tells how far the replay has come.\n";
    return Done;
}

} // namespace tarnSimulator
