#include "platform/files.h"
#include "platform/paths.h"
#include "update/download.h"
#include "update/firmware_file_name.h"
#include "update/firmware_updater.h"
#include "update/tool_run.h"

#include <QDebug>
#include <QFile>

namespace tarnFirmwareUpdate {
namespace {

namespace path = tarnPlatform::path;

constexpr int copyFailed = 1;
// A tool's folder, and the file that a firmware is copied to before it is moved into the folder. The next
// update overwrites what a killed service or a power cut leaves there.
struct ToolFolder
{
    QString path;
    QString part;
};
const ToolFolder mcuToolFolder {path::mcuFolder, path::mcuFirmwarePart};
const ToolFolder ecToolFolder {path::ecFolder, path::ecFirmwarePart};

// Moves a downloaded file into a tool's folder. The finished copy is put there in one step, and the download
// is deleted only when the copy is safe on the disk, so one of them survives a power cut.
int moveDownload(const Download &source, const ToolFolder &folder, const QString &fileName)
{
    if (!source.isFolderThere()) {
        // The source is meant; log readers know this text.
        qDebug() << "Destination directory does not exist.";
        return copyFailed;
    }
    qDebug() << "file is exist!";
    const QString destination = folder.path + QLatin1Char('/') + fileName;
    QString error = source.copyTo(folder.part);
    const bool contentIsSafe = error.isEmpty() && tarnPlatform::flushToDisk(folder.part);
    if (error.isEmpty() && !tarnPlatform::replaceFile(folder.part, destination))
        error = qt_error_string();
    if (!error.isEmpty()) {
        QFile::remove(folder.part);
        qDebug() << "File copy failed:" << error;
        return copyFailed;
    }
    qDebug() << "File copied successfully to:" << destination;
    if (!contentIsSafe || !tarnPlatform::flushToDisk(destination)) {
        qWarning() << "The copy may not be on the disk yet, so the download is kept:" << source.path();
        return 0;
    }
    if (const QString kept = source.remove(); !kept.isEmpty())
        qWarning() << "The downloaded file cannot be deleted:" << source.path() << kept;
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
    const QMutexLocker locker(&mcuUpdateMutex);
    const auto waited = tarnPlatform::steadyNow() - waitBegan;
    if (isToolLeftRunning())
        return copyFailed;
    const int result = moveDownload(Download::find(fileName), mcuToolFolder, fileName);
    return result == 0 ? mcuUpdate(fileName, waited) : result;
}

int FirmwareUpdater::copyEcFile(const QString &fileName)
{
    if (refuses(fileName))
        return copyFailed;
    const Download source = Download::find(fileName);
    qDebug() << source.path() << "11111111112333333333"; // the mark by which this line is found in a long log
    return moveDownload(source, ecToolFolder, fileName);
}

} // namespace tarnFirmwareUpdate
