#include "platform/files.h"

#include <QFile>
#include <QFileInfo>

#include <cstdio>
#include <fcntl.h>
#include <unistd.h>

namespace tarnPlatform {
namespace {

bool synchronise(const QString &path)
{
    const int descriptor = ::open(QFile::encodeName(path).constData(), O_RDONLY | O_CLOEXEC);
    if (descriptor < 0)
        return false;
    const bool done = ::fsync(descriptor) == 0;
    ::close(descriptor);
    return done;
}

} // namespace

bool flushToDisk(const QString &file)
{
    return synchronise(file) && synchronise(QFileInfo(file).absolutePath());
}

bool replaceFile(const QString &from, const QString &to)
{
    return std::rename(QFile::encodeName(from).constData(), QFile::encodeName(to).constData()) == 0;
}

bool renameFile(const QString &from, const QString &to)
{
    return replaceFile(from, to);
}

bool openToAppend(QFile &file)
{
    return file.open(QIODevice::Append | QIODevice::Unbuffered);
}

qint64 sizeOfOpened(const QFile &file)
{
    return file.size();
}

} // namespace tarnPlatform
