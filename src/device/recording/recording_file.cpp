#include "device/recording/recording_file.h"

#include "device/recording/ec_record.h"
#include "platform/version.h"

#include <QDateTime>
#include <QDir>
#include <QFileInfo>
#include <QRegularExpression>
#include <QSysInfo>

namespace tarnRecording {

namespace {

constexpr std::size_t mostKept = 65'536; // bytes

std::string headerLine(quint64 firstAccess, quint64 clockUs)
{
    RecordingHeader header;
    const QDateTime now = QDateTime::currentDateTime();
    header.startedAt = now.toOffsetFromUtc(now.offsetFromUtc()).toString(Qt::ISODateWithMs).toStdString();
    header.service = tarnPlatform::version().toStdString();
    header.system = QSysInfo::kernelType().toStdString();
    header.firstAccess = firstAccess;
    header.clockUs = clockUs;
    return lineOf(header);
}

} // namespace

RecordingFile::RecordingFile(const QString &recordingFolder, qint64 largest)
    : folder(recordingFolder)
    , mostBytes(largest)
{ }

void RecordingFile::add(const std::string &line, quint64 access)
{
    if (hasEnded)
        return;
    if (!file.isOpen() || size + static_cast<qint64>(line.size()) > mostBytes)
        begin(access);
    kept += line;
    size += static_cast<qint64>(line.size());
    if (kept.size() > mostKept)
        flush();
}

void RecordingFile::flush()
{
    if (!hasEnded && file.isOpen() && !writeKept())
        hasEnded = true; // on a full disk a new file would only push out a whole one
    kept.clear();
}

bool RecordingFile::writeKept()
{
    const auto keptSize = static_cast<qint64>(kept.size());
    return file.write(kept.data(), keptSize) == keptSize;
}

// Named by the time, which is never set back for an hour as a local one is, so that the names are in the
// order of the recordings. An older recording goes only when the new one has its header.
void RecordingFile::begin(quint64 firstAccess)
{
    flush();
    file.close();
    if (hasEnded)
        return;
    const QString time = QDateTime::currentDateTimeUtc().toString(QStringLiteral("yyyyMMdd-HHmmss-zzz"));
    file.setFileName(QDir(folder).filePath(QStringLiteral("ec-%1.recording").arg(time)));
    if (!file.open(QIODevice::WriteOnly | QIODevice::NewOnly | QIODevice::Unbuffered)) {
        hasEnded = true;
        return;
    }
    kept = headerLine(firstAccess, clockUs);
    size = static_cast<qint64>(kept.size());
    if (!writeKept()) {
        hasEnded = true;
        file.remove();
    } else {
        removeOld();
    }
    kept.clear();
}

// Not files of other names, which somebody has put there, and not the new one, whatever the clock says.
void RecordingFile::removeOld() const
{
    static const QRegularExpression ownName(QStringLiteral(R"(^ec-\d{8}-\d{6}-\d{3}\.recording$)"));
    const QDir place(folder);
    QStringList names =
        place.entryList({QStringLiteral("ec-*.recording")}, QDir::Files, QDir::Name).filter(ownName);
    names.removeAll(QFileInfo(file).fileName());
    while (names.size() >= mostFiles)
        QFile::remove(place.filePath(names.takeFirst()));
}

} // namespace tarnRecording
