#include "support/run_folder.h"

#include "support/seen_texts.h"

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

void RunFolder::installPortLibrary(PortLibrary library)
{
    const QString file = library == PortLibrary::Whole ? QStringLiteral(TARN_TEST_PORT_LIBRARY)
                                                       : QStringLiteral(TARN_TEST_PORT_LIBRARY_WITHOUT_INP32);
    QDir(folder.path()).mkpath(QStringLiteral("function"));
    removePortLibrary();
    QFile::link(file, path(libraryName));
    noteSeen("file", libraryName);
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
    noteSeenFile(name, {});
}

QByteArray RunFolder::read(const QString &name) const
{
    QFile file(path(name));
    if (!file.open(QIODevice::ReadOnly))
        return {};
    const QByteArray content = file.readAll();
    noteSeenFile(name, content);
    return content;
}

} // namespace tarnTest
