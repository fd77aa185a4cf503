#include "pipe_address.h"

#include <QDir>
#include <QFile>

#include <sys/un.h>

namespace tarn {

PipeAddress pipeAddress(const QString &name)
{
    // The folder in which QLocalServer and QLocalSocket put it.
    const QString folder = name.startsWith(u'/') ? QString() : QDir::cleanPath(QDir::tempPath()) + u'/';
    const QString path = folder + name;
    // Besides the final NUL character, Qt leaves one byte free.
    constexpr qsizetype longest = qsizetype(sizeof(sockaddr_un::sun_path)) - 2;
    const bool isFolderLonger = QFile::encodeName(folder).size() > QFile::encodeName(name).size();
    return {path, QFile::encodeName(path).size(), longest, QLatin1StringView("bytes"),
        isFolderLonger
            ? QLatin1StringView("A service with the same TMPDIR is not heard either, and does not say so.\n"
                                "Start both with a TMPDIR of a shorter path.")
            : QLatin1StringView("Give --pipe a shorter name.")};
}

} // namespace tarn
