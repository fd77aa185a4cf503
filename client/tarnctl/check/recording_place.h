#pragma once

#include "device/recording/request_record.h"

#include <QString>
#include <QStringList>

#include <chrono>

namespace tarnctl {

// The recordings in a folder.
[[nodiscard]] QStringList recordingsIn(const QString &folder);

// Waits until a recording in the folder grows, which one does while the service records; its path. Empty when
// none does.
[[nodiscard]] QString growingRecording(const QString &folder, std::chrono::milliseconds longest);

// Whether files can be made in the folder.
[[nodiscard]] bool isWritable(const QString &folder);

// What has become of the requests of a check.
struct WrittenFiles
{
    QStringList paths; // of recordings and requests
    QStringList problems; // what is missing; empty: nothing
    QStringList remarks;
};

// Waits until the newest of the recordings has gone on beyond the last note of the journal, and writes where
// in the recordings each was made, after what an earlier check of the same recording has written. What lies
// in `before` has ended before the check, but for the one that grew.
[[nodiscard]] WrittenFiles writeRequests(const tarnRecording::RequestJournal &journal, const QString &grown,
    const QStringList &before, const QString &targetFolder, std::chrono::milliseconds longest);

} // namespace tarnctl
