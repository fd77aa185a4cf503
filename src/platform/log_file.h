#pragma once

#include <QElapsedTimer>
#include <QFile>
#include <QMutex>
#include <QString>
#include <QtGlobal>

namespace tarnPlatform {

// The messages of the service on the disk: TarnService.log in the given folder, and beside it the ones
// before, TarnService.1.log (the newest) to TarnService.4.log. Each has at most 2 MiB, so together they have
// at most 10 MiB however much is written. Every line is handed to the system before write() returns.
//
// Nothing that goes wrong with the files reaches the caller. Lines that could not be written are counted, and
// their number becomes a line as soon as one can be written again. That is tried with each warning and worse,
// with other lines once a second at most, and only when there is something to write. Any thread may write.
class LogFile
{
public:
    static constexpr qint64 largestSize = qint64(2) * 1024 * 1024; // bytes, of one file
    static constexpr int earlierFiles = 4;

    // How files are renamed and removed; both fail while another program holds the file.
    struct Moves
    {
        bool (*rename)(const QString &from, const QString &to);
        bool (*remove)(const QString &name);
    };

    explicit LogFile(const QString &logFolder);
    LogFile(const QString &logFolder, const Moves &fileMoves);

    void write(QtMsgType type, const QString &text);

    // The current file is number 0.
    [[nodiscard]] static QString fileName(int number);

private:
    [[nodiscard]] QString path(int number) const { return folder + QLatin1Char('/') + fileName(number); }
    [[nodiscard]] bool isReadyFor(qsizetype bytes);
    [[nodiscard]] bool append(const QByteArray &line);
    [[nodiscard]] bool openCurrent();
    void putAside();
    [[nodiscard]] int freeNumber() const;

    const QString folder;
    const Moves moves;
    QMutex mutex; // for all below
    QFile file;
    bool endsInsideLine = false; // a line was written in part
    quint64 lost = 0; // lines, since the last one that was written
    QElapsedTimer sinceFailure; // invalid unless the last try failed
    QElapsedTimer sinceOpening; // of the file
};

} // namespace tarnPlatform
