#include "installation.h"

#include <QCoreApplication>
#include <QDir>
#include <QFileInfo>

namespace tarnctl {

namespace {

const QString programSuffix = QStringLiteral(".exe");

} // namespace

Installation::Installation(const QString &folder)
    : programFolder(QDir::cleanPath(QDir::fromNativeSeparators(folder)))
{ }

Installation Installation::of(Computer &computer, const ServiceEntry &service)
{
    if (!service.command.isEmpty())
        return Installation(QFileInfo(QDir::fromNativeSeparators(programOf(service.command))).path());
    const QString installed = computer.installedFolder();
    return Installation(installed.isEmpty() ? QCoreApplication::applicationDirPath() : installed);
}

QString Installation::program() const
{
    const QString name = path(QStringLiteral("TarnService"));
    return QFileInfo::exists(name) ? name : name + programSuffix;
}

QString Installation::path(const QString &relative) const
{
    return QDir::cleanPath(QDir(programFolder).filePath(relative));
}

// Without quotes everything up to the first ".exe" is the program: the folder's name may have blanks.
QString programOf(const QString &command)
{
    const QString trimmed = command.trimmed();
    if (trimmed.startsWith(u'"'))
        return trimmed.section(u'"', 1, 1);
    const qsizetype end = trimmed.indexOf(programSuffix, 0, Qt::CaseInsensitive);
    return end < 0 ? trimmed : trimmed.left(end + programSuffix.size());
}

} // namespace tarnctl
