#include "platform/durable_files.h"
#include "platform/user_session.h"
#include "update/firmware_file_name.h"
#include "update/firmware_updater.h"
#include "update/tool_run.h"

#include <QDebug>
#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QStandardPaths>

#include <functional>

namespace tarnFirmwareUpdate {
namespace {

constexpr int copyFailed = 1;
constexpr qint64 copyChunkBytes = 0x10000;

const QString nobodyLoggedOn = QStringLiteral("Nobody is logged on at the console.");

struct Download
{
    QString path; // empty when there is no download folder
    bool isOfConsoleUser = false;
};

// Does something with the rights of whoever has downloaded the file. Only what the user at the console may
// see, read and delete is looked at, read and deleted: a link in the folder of a user must not lead a service
// anywhere. False when that user has gone: then it is not done.
[[nodiscard]] bool asOwner(const Download &download, const std::function<void()> &action)
{
    if (download.isOfConsoleUser)
        return tarnPlatform::UserSession::system().asConsoleUser(action);
    action();
    return true;
}

// The account of a service has a download folder of its own that nobody downloads to: then it is that of the
// user at the console.
Download findDownload(const QString &fileName)
{
    using tarnPlatform::UserSession;
    const QString ownFolder = QStandardPaths::writableLocation(QStandardPaths::DownloadLocation);
    const QString own = ownFolder.isEmpty() ? QString() : ownFolder + QLatin1Char('/') + fileName;
    if (QFile::exists(own) || !UserSession::system().isServiceSession())
        return {own};
    const QString folder = UserSession::system().consoleUserDownloadFolder();
    if (folder.isEmpty())
        return {own};
    const Download ofUser = {folder + QLatin1Char('/') + fileName, true};
    bool found = false;
    return asOwner(ofUser, [&] { found = QFile::exists(ofUser.path); }) && found ? ofUser : Download {own};
}

// A full disk takes part of it first and says what is wrong at the next attempt only.
bool writeAll(QFile &to, const QByteArray &bytes)
{
    qsizetype done = 0;
    while (done < bytes.size()) {
        const qint64 taken = to.write(bytes.constData() + done, bytes.size() - done);
        if (taken <= 0)
            return false;
        done += static_cast<qsizetype>(taken);
    }
    return true;
}

// The service writes what the user reads.
bool copy(const Download &source, const QString &destination, QString *error)
{
    QFile from(source.path);
    if (!asOwner(source, [&from] { static_cast<void>(from.open(QIODevice::ReadOnly)); })) {
        *error = nobodyLoggedOn;
        return false;
    }
    if (!from.isOpen()) {
        *error = from.errorString();
        return false;
    }
    QFile to(destination);
    if (!to.open(QIODevice::WriteOnly | QIODevice::Truncate)) {
        *error = to.errorString();
        return false;
    }
    bool copied = true;
    while (copied && !from.atEnd()) {
        const QByteArray chunk = from.read(copyChunkBytes);
        copied = !chunk.isEmpty() && writeAll(to, chunk);
    }
    copied = copied && to.flush();
    *error = from.error() == QFile::NoError ? to.errorString() : from.errorString();
    return copied;
}

void removeDownload(const Download &source)
{
    QString error;
    const auto remove = [&] {
        QFile file(source.path);
        if (!file.remove())
            error = file.errorString();
    };
    if (!asOwner(source, remove))
        error = nobodyLoggedOn;
    if (!error.isEmpty())
        qWarning() << "The downloaded file cannot be deleted:" << source.path << error;
}

// Where a tool's folder gets a firmware from: beside the folder, so that half of a copy never lies beside the
// tool, whatever ends it. The next update overwrites what a killed service or a power cut leaves there.
struct ToolFolder
{
    QString path;
    QString copying;
};
const ToolFolder mcuFolder {QStringLiteral("./function/MCU/"), QStringLiteral("./function/MCU.part")};
const ToolFolder ecFolder {QStringLiteral("./function/EC/"), QStringLiteral("./function/EC.part")};

// Moves a downloaded file. It gets its place in one step, and the download is deleted only when its copy is
// safe on the disk, so a power cut leaves one of them.
int take(const Download &source, const ToolFolder &folder, const QString &fileName)
{
    bool folderExists = false;
    const auto lookForFolder = [&] {
        folderExists = !source.path.isEmpty() && QFileInfo(source.path).dir().exists();
    };
    if (!asOwner(source, lookForFolder) || !folderExists) {
        qDebug() << "Destination directory does not exist."; // deliberately so worded: it is the source's
        return copyFailed;
    }
    qDebug() << "file is exist!";
    const QString destination = folder.path + fileName;
    QString error;
    bool copied = copy(source, folder.copying, &error);
    const bool contentIsSafe = copied && tarnPlatform::flushToDisk(folder.copying);
    if (copied && !tarnPlatform::replaceFile(folder.copying, destination)) {
        error = qt_error_string();
        copied = false;
    }
    if (!copied) {
        QFile::remove(folder.copying);
        qDebug() << "File copy failed:" << error;
        return copyFailed;
    }
    qDebug() << "File copied successfully to:" << destination;
    if (contentIsSafe && tarnPlatform::flushToDisk(destination))
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
    const auto waitBegan = tarnPlatform::steadyNow();
    const QMutexLocker locker(&mcuTurn);
    const auto waited = tarnPlatform::steadyNow() - waitBegan;
    if (isToolLeftRunning())
        return copyFailed;
    const int result = take(findDownload(fileName), mcuFolder, fileName);
    return result == 0 ? mcuUpdate(fileName, waited) : result;
}

int FirmwareUpdater::copyEcFile(const QString &fileName)
{
    if (refuses(fileName))
        return copyFailed;
    const Download source = findDownload(fileName);
    qDebug() << source.path << "11111111112333333333"; // the mark by which this line is found in a long log
    return take(source, ecFolder, fileName);
}

} // namespace tarnFirmwareUpdate
