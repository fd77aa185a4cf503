#include "accessory/power_mode_file.h"

#include "platform/paths.h"

#include <QFile>
#include <QTextStream>

namespace tarnAccessoryManager {
namespace {

// Does not truncate the file; its content is overwritten. Closing a truncated file waits for the disk on some
// file systems, and an error or a power cut in between would leave no profile at all.
bool openForWriting(QFile &file)
{
    // A file that the service must not read can only be opened for writing.
    return file.open(QIODevice::ReadWrite | QIODevice::Text)
        || file.open(QIODevice::WriteOnly | QIODevice::Text);
}

} // namespace

PowerModeFile::Write PowerModeFile::write(int profile)
{
    QFile file(tarnPlatform::path::savedPowerProfile);
    if (!openForWriting(file))
        return Write::NotCreated;
    QTextStream stream(&file);
    stream << profile;
    stream.flush(); // only this reports a full disk: the file's own flush does not tell the stream
    if (stream.status() != QTextStream::Ok)
        return Write::NotWritten;
    const qint64 end = file.pos();
    return file.size() <= end || file.resize(end) ? Write::Done : Write::NotWritten;
}

PowerModeFile::Read PowerModeFile::read(QString *content)
{
    QFile file(tarnPlatform::path::savedPowerProfile);
    if (!file.exists())
        return Read::Absent;
    if (!file.open(QIODevice::ReadOnly | QIODevice::Text))
        return Read::NotOpened;
    QTextStream stream(&file);
    *content = stream.readAll().trimmed();
    // A read error of the device ends the text early without an error of the stream.
    if (stream.status() != QTextStream::Ok || file.error() != QFileDevice::NoError)
        return Read::NotRead;
    return Read::Done;
}

} // namespace tarnAccessoryManager
