#include "accessory/power_mode_file.h"

#include <QFile>
#include <QTextStream>

namespace tarnAccessoryManager {
namespace {

QString filePath()
{
    return QStringLiteral("./powermodeconfig.xml");
}

} // namespace

PowerModeFile::Write PowerModeFile::write(quint32 profile)
{
    QFile file(filePath());
    if (!file.open(QIODevice::WriteOnly | QIODevice::Text))
        return Write::NotCreated;
    QTextStream stream(&file);
    stream << profile;
    stream.flush(); // a full disk shows here and only here; the file's own flush does not tell the stream
    return stream.status() == QTextStream::Ok ? Write::Done : Write::NotWritten;
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
