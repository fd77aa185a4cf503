#include "staged_firmware.h"

#include <QCoreApplication>
#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QScopeGuard>

#include <atomic>

namespace tarn {

namespace {

constexpr qint64 comparedAtOnce = 65536; // bytes

// True also for a symbolic link without a target.
bool isNameTaken(const QString &path)
{
    const QFileInfo entry(path);
    return entry.exists() || entry.isSymLink();
}

bool haveSameContent(const QString &one, const QString &other)
{
    QFile first(one);
    QFile second(other);
    const bool comparable = QFileInfo(one).isFile() && QFileInfo(other).isFile()
        && first.open(QIODevice::ReadOnly) && second.open(QIODevice::ReadOnly)
        && first.size() == second.size();
    if (!comparable)
        return false;
    while (!first.atEnd()) {
        const QByteArray piece = first.read(comparedAtOnce);
        if (piece.isEmpty() || piece != second.read(comparedAtOnce))
            return false;
    }
    return true;
}

// No other copy has it, of this process or another.
QString partialName()
{
    static std::atomic<int> counter = 0;
    return QStringLiteral("tarn-%1-%2.part")
        .arg(QString::number(QCoreApplication::applicationPid()), QString::number(++counter));
}

} // namespace

StagedFirmware::StagedFirmware(QString downloadFolder)
    : folder(std::move(downloadFolder))
{ }

StagedFirmware::~StagedFirmware()
{
    withdraw();
}

std::optional<QString> StagedFirmware::objection(const QString &file, FirmwareKind kind)
{
    const QFileInfo info(file);
    if (!info.exists())
        return QStringLiteral("There is no file \"%1\".").arg(file);
    if (!info.isFile())
        return QStringLiteral("\"%1\" is no regular file.").arg(file);
    if (const std::optional<QString> reason = firmwareNameObjection(info.fileName(), kind)) {
        return QStringLiteral("A firmware file cannot be named \"%1\".\n%2\nGive it another name.")
            .arg(info.fileName(), *reason);
    }
    QFile opened(file);
    if (!opened.open(QIODevice::ReadOnly))
        return QStringLiteral("\"%1\" cannot be read: %2.").arg(file, opened.errorString());
    if (opened.size() == 0) {
        // The flasher would erase the MCU, write nothing and report success.
        return QStringLiteral("\"%1\" is empty.").arg(file);
    }
    return std::nullopt;
}

std::optional<QString> StagedFirmware::place(const QString &file)
{
    fileName = QFileInfo(file).fileName();
    if (folder.isEmpty() || !QDir().mkpath(folder)) {
        return QStringLiteral("There is no download folder (%1), from where the service takes the file.")
            .arg(folder);
    }
    if (!isNameTaken(path()))
        return copy(file);
    // The same file by another path, or one with the same content.
    if (haveSameContent(file, path()))
        return std::nullopt;
    return QStringLiteral(
        "There is another file of that name in the download folder, which the service would "
        "take instead:\n%1\nMove it away, or give the firmware file another name.")
        .arg(QDir::toNativeSeparators(path()));
}

QString StagedFirmware::name() const
{
    return fileName;
}

QString StagedFirmware::path() const
{
    return folder + u'/' + fileName;
}

bool StagedFirmware::isCopy() const
{
    return copied;
}

bool StagedFirmware::isThere() const
{
    return isNameTaken(path());
}

void StagedFirmware::leave()
{
    copied = false;
}

// Under another name first, because an incomplete copy must not be flashed.
std::optional<QString> StagedFirmware::copy(const QString &file)
{
    const QString partial = folder + u'/' + partialName();
    const auto removePartial = qScopeGuard([&partial] { QFile::remove(partial); });
    QFile::remove(partial);
    QFile source(file);
    if (!source.copy(partial)) {
        return QStringLiteral("The file cannot be copied to the download folder: %1.")
            .arg(source.errorString());
    }
    QFile target(partial);
    // The copy of a write-protected file is write-protected too, and could not be removed.
    target.setPermissions(target.permissions() | QFileDevice::ReadOwner | QFileDevice::WriteOwner);
    // Fails when a file with that name has appeared meanwhile, and does not replace it.
    if (!target.rename(path())) {
        return QStringLiteral("The file cannot be copied to the download folder: %1.")
            .arg(target.errorString());
    }
    const QFileInfo made(path());
    copied = true;
    copySize = made.size();
    copyTime = made.lastModified();
    return std::nullopt;
}

void StagedFirmware::withdraw()
{
    const QFileInfo now(path());
    if (copied && now.size() == copySize && now.lastModified() == copyTime)
        QFile::remove(path());
    copied = false;
}

} // namespace tarn
