#pragma once

#include <QJsonObject>
#include <QString>

#include <optional>

namespace tarn {

// How a firmware update ended.
enum class FirmwareOutcome {
    // The service has done it. After an EC update this says only that the service is done with the EC's tool:
    // whether the tool ran and succeeded only the tool and the service's log know.
    Done,
    // The file or its name cannot be flashed, or it cannot be put into the download folder.
    BadFile,
    // The program runs as somebody else than the user at the console, in whose download folder the service
    // looks.
    OtherUser,
    // The service sees no KVane.
    NoKvane,
    // The service refused the update before it touched the device.
    Refused,
    // The service reported a failure, or calls the update done although no firmware runs or another one
    // than was expected. The firmware may be incomplete.
    Failed,
    // No answer came within the limit.
    NoAnswer,
    // FirmwareUpdate::abandon() was called.
    Abandoned,
    // The connection ended before the answer. It was the service that closed it, most often because it ended.
    ServiceGone,
    // A request was not written: no connection came in time, or the client was closed.
    NotSent,
};

// The end of a firmware update. A value, to be copied and read on any thread.
struct FirmwareResult
{
    FirmwareOutcome outcome = FirmwareOutcome::NotSent;
    // True when this update cannot have changed the device: no request that flashes was written, or the
    // service refused it so early that it had not begun. After NoAnswer, Abandoned and ServiceGone false
    // means that the service, or a tool that it has started, may still be at work.
    bool isUntouched = true;
    // What happened, for the user. English, of one or more lines.
    QString text;
    // What that means for the device and what to do, as further lines; may be empty.
    QString advice;
    // The request at which the update ended, or which would have been the next; empty when it ended earlier.
    QString command;
    // That request was written to the service.
    bool wasSent = false;
    // The MCU's version as the service gave it before the update; nothing when it was not asked for.
    std::optional<QString> versionBefore;
    // The MCU's version as the last answer gives it; empty when it gives none.
    QString versionAfter;
    // The answer with which the update ended; empty when it ended without one.
    QJsonObject answer;
    // The user of this program and the one at the console, for OtherUser.
    QString ownUser;
    QString consoleUser;
};

} // namespace tarn
