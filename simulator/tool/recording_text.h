#pragma once

#include "device/recording/recording.h"
#include "simulator/recording/channel_decoder.h"
#include "simulator/tool/verb_table.h"

#include <QString>
#include <QTextStream>

#include <cstdint>
#include <optional>

namespace tarnSimulator {

// What the verbs about recordings have in common.

// Nothing after a complaint.
[[nodiscard]] std::optional<tarnRecording::Recording> openRecording(
    ToolContext &context, const QString &path);
[[nodiscard]] ChannelDecoder decode(const tarnRecording::Recording &recording);
void printHeader(QTextStream &out, const tarnRecording::Recording &recording);
// Where and why the recording ends before its time, if it does. Damage with more of the recording after it
// fails, a file that was cut off does not.
[[nodiscard]] ExitCode printEnd(
    ToolContext &context, const tarnRecording::Recording &recording, const ChannelDecoder &decoder);

[[nodiscard]] QString secondsText(std::uint64_t us);

} // namespace tarnSimulator
