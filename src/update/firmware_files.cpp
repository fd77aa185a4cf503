#include "platform/durable_files.h"
#include "platform/user_session.h"
#include "update/firmware_file_name.h"
#include "update/firmware_updater.h"

#include <QDebug>
#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QStandardPaths>

namespace tarnFirmwareUpdate {
namespace {

constexpr int copyFailed = 1;
constexpr qint64 copyChunkBytes = 0x10000;

const QString mcuFolder = QStringLiteral("./function/MCU/");
const QString ecFolder = QStringLiteral("./function/EC/");

struct Download
{
    QString path;
    bool isOfConsoleUser = false;
};

// The account of a service has a download folder of its own that nobody downloads to: then it is that of the
// user at the console.
Download findDownload(const QString &fileName)
{
    using tarnPlatform::UserSession;
    const QString own =
        QStandardPaths::writableLocation(QStandardPaths::DownloadLocation) + QLatin1Char('/') + fileName;
    if (QFile::exists(own) || !UserSession::system().isServiceSession())
        return {own};
    const QString folder = UserSession::system().consoleUserDownloadFolder();
    const QString ofUser = folder + QLatin1Char('/') + fileName;
    return !folder.isEmpty() && QFile::exists(ofUser) ? Download {ofUser, true} : Download {own};
}

// Only what the user may read is read: a link in the folder of a user must not lead a service anywhere.
bool copyAsUser(const QString &source, const QString &destination, QString *error)
{
    QFile from(source);
    tarnPlatform::UserSession::system().asConsoleUser(
        [&from] { static_cast<void>(from.open(QIODevice::ReadOnly)); });
    if (!from.isOpen()) {
        *error = from.errorString();
        return false;
    }
    QFile to(destination);
    bool copied = to.open(QIODevice::WriteOnly | QIODevice::NewOnly);
    while (copied && !from.atEnd()) {
        const QByteArray chunk = from.read(copyChunkBytes);
        copied = !chunk.isEmpty() && to.write(chunk) == chunk.size();
    }
    copied = copied && to.flush();
    *error = from.error() == QFile::NoError ? to.errorString() : from.errorString();
    return copied;
}

bool copy(const Download &source, const QString &destination, QString *error)
{
    if (source.isOfConsoleUser)
        return copyAsUser(source.path, destination, error);
    QFile file(source.path);
    const bool copied = file.copy(destination);
    *error = file.errorString();
    return copied;
}

void removeDownload(const Download &source)
{
    const auto remove = [&source] {
        QFile file(source.path);
        if (!file.remove())
            qWarning() << "The downloaded file cannot be deleted:" << source.path << file.errorString();
    };
    if (source.isOfConsoleUser)
        tarnPlatform::UserSession::system().asConsoleUser(remove);
    else
        remove();
}

// A copy of a write-protected file could not be replaced by the next one.
void makeWritable(const QString &file)
{
    QFile::setPermissions(file, QFile::permissions(file) | QFile::WriteOwner | QFile::WriteUser);
}

// Moves a downloaded file. The download is deleted only when its copy is safe on the disk, so a power cut
// leaves one of them.
int take(const Download &source, const QString &destination)
{
    if (!QFileInfo(source.path).dir().exists()) {
        qDebug() << "Destination directory does not exist."; // deliberately so worded: it is the source's
        return copyFailed;
    }
    qDebug() << "file is exist!";
    if (QFile::exists(destination)) {
        makeWritable(destination);
        QFile::remove(destination);
    }
    QString error;
    if (!copy(source, destination, &error)) {
        qDebug() << "File copy failed:" << error;
        return copyFailed;
    }
    qDebug() << "File copied successfully to:" << destination;
    makeWritable(destination);
    if (tarnPlatform::flushToDisk(destination))
        removeDownload(source);
    else
        qWarning() << "The copy may not be on the disk yet, so the download is kept:" << source.path;
    return 0;
}

bool refuses(const QString &fileName)
{
    if (isSafeFirmwareName(fileName))
        return false;
    qWarning() << "Not a plain name of a firmware file:" << fileName;
    return true;
}

} // namespace

int FirmwareUpdater::copyMcuFile(const QString &fileName)
{
    if (refuses(fileName))
        return copyFailed;
    const QMutexLocker locker(&mcuTurn);
    const int result = take(findDownload(fileName), mcuFolder + fileName);
    return result == 0 ? mcuUpdate(fileName) : result;
}

int FirmwareUpdater::copyEcFile(const QString &fileName)
{
    if (refuses(fileName))
        return copyFailed;
    const Download source = findDownload(fileName);
    qDebug() << source.path << "11111111112333333333"; // the mark by which this line is found in a long log
    return take(source, ecFolder + fileName);
}

} // namespace tarnFirmwareUpdate
