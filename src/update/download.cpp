#include "update/download.h"

#include "platform/user_session.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QStandardPaths>

#include <utility>

namespace tarnFirmwareUpdate {
namespace {

using tarnPlatform::UserSession;

constexpr qint64 copyChunkBytes = 0x10000;

const QString noUserLoggedOn = QStringLiteral("Nobody is logged on at the console.");

// A full disk takes part of the bytes first and reports the error only at the next write.
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

} // namespace

Download::Download(QString path, bool isOfConsoleUser)
    : file(std::move(path))
    , ofConsoleUser(isOfConsoleUser)
{ }

Download Download::find(const QString &fileName)
{
    const QString ownFolder = QStandardPaths::writableLocation(QStandardPaths::DownloadLocation);
    Download own(ownFolder.isEmpty() ? QString() : ownFolder + QLatin1Char('/') + fileName, false);
    if (QFile::exists(own.file) || !UserSession::system().isServiceSession())
        return own;
    const QString folder = UserSession::system().consoleUserDownloadFolder();
    if (folder.isEmpty())
        return own;
    const Download ofUser(folder + QLatin1Char('/') + fileName, true);
    bool found = false;
    return ofUser.asOwner([&] { found = QFile::exists(ofUser.file); }) && found ? ofUser : own;
}

bool Download::isFolderThere() const
{
    bool there = false;
    const auto look = [&] {
        there = !file.isEmpty() && QFileInfo(file).dir().exists();
    };
    return asOwner(look) && there;
}

QString Download::copyTo(const QString &destination) const
{
    QFile from(file);
    if (!asOwner([&from] { static_cast<void>(from.open(QIODevice::ReadOnly)); }))
        return noUserLoggedOn;
    if (!from.isOpen())
        return from.errorString();
    QFile to(destination);
    if (!to.open(QIODevice::WriteOnly | QIODevice::Truncate))
        return to.errorString();
    bool copied = true;
    while (copied && !from.atEnd()) {
        const QByteArray chunk = from.read(copyChunkBytes);
        copied = !chunk.isEmpty() && writeAll(to, chunk);
    }
    if (copied && to.flush())
        return {};
    return from.error() == QFile::NoError ? to.errorString() : from.errorString();
}

QString Download::remove() const
{
    QString error;
    const auto removeFile = [&] {
        QFile download(file);
        if (!download.remove())
            error = download.errorString();
    };
    return asOwner(removeFile) ? error : noUserLoggedOn;
}

// False, without performing the action, when there is no user at the console any more.
bool Download::asOwner(const std::function<void()> &action) const
{
    if (ofConsoleUser)
        return UserSession::system().asConsoleUser(action);
    action();
    return true;
}

} // namespace tarnFirmwareUpdate
