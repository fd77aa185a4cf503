#pragma once

#include <QFile>
#include <QString>

#include <string>

namespace tarnRecording {

// The files of a recording: ec-TIME.recording in a folder. Each begins with a header and has at most 64 MiB;
// then the next one begins. The last two are kept, those of earlier runs included. When something cannot be
// written, the recording ends there, and nobody is told.
class RecordingFile
{
public:
    static constexpr qint64 largestSize = qint64(64) * 1024 * 1024; // bytes
    static constexpr int mostFiles = 2;

    explicit RecordingFile(const QString &folder, qint64 mostBytes = largestSize);
    // The steady clock at time 0 of the recording, for the headers; to be called before the rest.
    void setClockUs(quint64 us) { clockUs = us; }

    // Keeps a line, which is written by flush(). `access` is the number of its access, from 1.
    void add(const std::string &line, quint64 access);
    void flush();

private:
    void begin(quint64 firstAccess);
    [[nodiscard]] bool writeKept();
    void removeOld() const;

    const QString folder;
    const qint64 mostBytes;
    QFile file;
    std::string kept;
    qint64 size = 0; // of the file, with what is kept
    quint64 clockUs = 0;
    bool hasEnded = false;
};

} // namespace tarnRecording
