#include "accessory/power_mode_file.h"

#include <QFile>
#include <QTextStream>

namespace tarnAccessoryManager {
namespace {

QString filePath()
{
    return QStringLiteral("./powermodeconfig.xml");
}

constexpr qint64 profileLength = 1;

// Truncating it first would lose the profile when the process ends, or the disk is full, before the new one
// is there. One that cannot be read as well can only be opened so.
bool openForWriting(QFile &file)
{
    return file.open(QIODevice::ReadWrite | QIODevice::Text)
        || file.open(QIODevice::WriteOnly | QIODevice::Text);
}

} // namespace

PowerModeFile::Write PowerModeFile::write(quint32 profile)
{
    QFile file(filePath());
    if (!openForWriting(file))
        return Write::NotCreated;
    QTextStream stream(&file);
    stream << profile;
    stream.flush(); // a full disk shows here and only here; the file's own flush does not tell the stream
    if (stream.status() != QTextStream::Ok)
        return Write::NotWritten;
    if (file.size() > profileLength && !file.resize(profileLength))
        return Write::NotWritten;
    return Write::Done;
}

PowerModeFile::Read PowerModeFile::read(QString *content)
{
    QFile file(filePath());
    if (!file.exists())
        return Read::Absent;
    if (!file.open(QIODevice::ReadOnly | QIODevice::Text))
        return Read::NotOpened;
    QTextStream stream(&file);
    *content = stream.readAll().trimmed();
    // A device's read error ends the text early without a word from the stream.
    if (stream.status() != QTextStream::Ok || file.error() != QFileDevice::NoError)
        return Read::NotRead;
    return Read::Done;
}

} // namespace tarnAccessoryManager
