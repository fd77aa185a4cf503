#include "platform/sockets.h"

#include <QDir>
#include <QFile>
#include <QLocalServer>

#include <algorithm>
#include <cerrno>
#include <limits>
#include <sys/resource.h>
#include <sys/socket.h>
#include <sys/stat.h>
#include <sys/un.h>
#include <unistd.h>

namespace tarnPlatform {
namespace {

// A file of another kind has no server either, but must not be removed.
bool isSocket(const QByteArray &path)
{
    struct stat status = {};
    return ::lstat(path.constData(), &status) == 0 && S_ISSOCK(status.st_mode);
}

// Tries to connect a datagram socket, because a running server would take a stream connection for a client.
// The error is EPROTOTYPE if there is a stream server, and ECONNREFUSED if there is none.
bool hasNoServer(const QByteArray &path)
{
    sockaddr_un address {};
    address.sun_family = AF_UNIX;
    if (path.size() >= static_cast<qsizetype>(sizeof address.sun_path))
        return false;
    std::copy(path.begin(), path.end(), address.sun_path);
    const int probe = ::socket(AF_UNIX, SOCK_DGRAM | SOCK_CLOEXEC, 0);
    if (probe < 0)
        return false;
    const bool refused = ::connect(probe, reinterpret_cast<const sockaddr *>(&address), sizeof address) != 0
        && errno == ECONNREFUSED;
    ::close(probe);
    return refused;
}

// Two pools of 64 handlers and the other threads, one descriptor each, and the files and programs of a
// handler.
constexpr rlim_t reservedDescriptors = 160;

} // namespace

void removeLeftoverSocket(const QString &pipeName)
{
    const QString path = QDir(QDir::tempPath()).absoluteFilePath(pipeName); // where QLocalServer puts it
    if (isSocket(QFile::encodeName(path)) && hasNoServer(QFile::encodeName(path)))
        QLocalServer::removeServer(pipeName);
}

int clientLimit()
{
    rlimit descriptors {};
    if (::getrlimit(RLIMIT_NOFILE, &descriptors) != 0 || descriptors.rlim_cur == RLIM_INFINITY)
        return std::numeric_limits<int>::max();
    const rlim_t clients = descriptors.rlim_cur - std::min(reservedDescriptors, descriptors.rlim_cur / 2);
    return static_cast<int>(std::min<rlim_t>(clients, std::numeric_limits<int>::max()));
}

} // namespace tarnPlatform
