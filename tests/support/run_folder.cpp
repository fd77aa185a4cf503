#include "support/run_folder.h"

#include <QDir>
#include <QFile>

namespace tarnTest {
namespace {

const QString libraryName = QStringLiteral("function/inpoutx64.dll");

} // namespace

RunFolder::RunFolder()
    : before(QDir::currentPath())
    , temporaryBefore(qgetenv("TMPDIR"))
{
    QDir::setCurrent(folder.path());
    qputenv("TMPDIR", folder.path().toLocal8Bit());
}

RunFolder::~RunFolder()
{
    QDir::setCurrent(before);
    qputenv("TMPDIR", temporaryBefore);
}

void RunFolder::installPortLibrary(const QString &library)
{
    QDir(folder.path()).mkpath(QStringLiteral("function"));
    removePortLibrary();
    QFile::link(library, path(libraryName));
}

void RunFolder::removePortLibrary()
{
    QFile::remove(path(libraryName));
}

void RunFolder::write(const QString &name, const QByteArray &content) const
{
    QFile file(path(name));
    if (!file.open(QIODevice::WriteOnly) || file.write(content) != content.size())
        qFatal("cannot write %s", qPrintable(name));
}

QByteArray RunFolder::read(const QString &name) const
{
    QFile file(path(name));
    return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray();
}

} // namespace tarnTest
