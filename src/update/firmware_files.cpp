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

const QString mcuFolder = QStringLiteral("./function/MCU/");
const QString ecFolder = QStringLiteral("./function/EC/");

// The downloaded file. The account of a service has a download folder of its own that nobody downloads to:
// then it is that of the user at the console.
QString downloadedFile(const QString &fileName)
{
    using tarnPlatform::UserSession;
    const QString own =
        QStandardPaths::writableLocation(QStandardPaths::DownloadLocation) + QLatin1Char('/') + fileName;
    if (QFile::exists(own) || !UserSession::system().isServiceSession())
        return own;
    const QString folder = UserSession::system().consoleUserDownloadFolder();
    const QString ofUser = folder + QLatin1Char('/') + fileName;
    return !folder.isEmpty() && QFile::exists(ofUser) ? ofUser : own;
}

// Moves a downloaded file. The download is deleted only when its copy is safe on the disk, so a power cut
// leaves one of them.
int take(const QString &source, const QString &destination)
{
    if (!QFileInfo(source).dir().exists()) {
        qDebug() << "Destination directory does not exist."; // the words of old: it is the source's folder
        return copyFailed;
    }
    qDebug() << "file is exist!";
    if (QFile::exists(destination))
        QFile::remove(destination);
    QFile file(source);
    if (!file.copy(destination)) {
        qDebug() << "File copy failed:" << file.errorString();
        return copyFailed;
    }
    qDebug() << "File copied successfully to:" << destination;
    if (!tarnPlatform::flushToDisk(destination))
        qWarning() << "The copy may not be on the disk yet, so the download is kept:" << source;
    else if (!file.remove())
        qWarning() << "The downloaded file cannot be deleted:" << source << file.errorString();
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
    const int result = take(downloadedFile(fileName), mcuFolder + fileName);
    return result == 0 ? mcuUpdate(fileName) : result;
}

int FirmwareUpdater::copyEcFile(const QString &fileName)
{
    if (refuses(fileName))
        return copyFailed;
    const QString source = downloadedFile(fileName);
    qDebug() << source << "11111111112333333333"; // the mark by which this line is found in a long log
    return take(source, ecFolder + fileName);
}

} // namespace tarnFirmwareUpdate
