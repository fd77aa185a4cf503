#include "simulator/tool/recording_text.h"

#include "simulator/tool/tool_text.h"
#include "simulator/value_text.h"

namespace tarnSimulator {

using tarnRecording::Recording;

namespace {

constexpr double usPerSecond = 1e6;

} // namespace

std::optional<Recording> openRecording(ToolContext &context, const QString &path)
{
    std::string error;
    auto recording = tarnRecording::readRecording(path.toStdString(), error);
    if (!recording)
        static_cast<void>(complain(context, Failed, toQString(printable(error))));
    return recording;
}

ChannelDecoder decode(const Recording &recording)
{
    ChannelDecoder decoder(recording.header.firstAccess);
    for (const tarnRecording::EcRecord &record : recording.records)
        decoder.take(record);
    decoder.finish();
    return decoder;
}

void printHeader(QTextStream &out, const Recording &recording)
{
    out << "of " << toQString(recording.header.startedAt) << ", Tarn Service "
        << toQString(recording.header.service) << ", " << toQString(recording.header.system) << '\n';
}

ExitCode printEnd(ToolContext &context, const Recording &recording, const ChannelDecoder &decoder)
{
    if (const auto &unfinished = decoder.unfinished())
        context.out << "at " << secondsText(unfinished->us) << " s " << toQString(unfinished->text) << '\n';
    if (recording.damagedLine == 0)
        return Done;
    const auto line = static_cast<qulonglong>(recording.damagedLine);
    if (recording.isDamagedInside)
        return complain(context, Failed,
            QStringLiteral("the file is damaged in line %1; the rest was not read").arg(line));
    context.out << "the file was cut off in line " << line << '\n';
    return Done;
}

QString secondsText(std::uint64_t us)
{
    return QString::number(static_cast<double>(us) / usPerSecond, 'f', 6);
}

} // namespace tarnSimulator
