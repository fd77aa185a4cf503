// Goes into the service's process and ends it as SIGKILL does, in the middle of its work on a file: while the
// file named by TARN_KILL_POINT is there, it holds the number of calls that may still be made for files that
// last.

#include <cstdarg>
#include <cstdio>
#include <cstdlib>
#include <string_view>

#include <csignal>
#include <dlfcn.h>
#include <fcntl.h>
#include <sys/types.h>
#include <sys/uio.h>
#include <unistd.h>

namespace {

constexpr std::string_view lastingFiles[] = {
    "powermodeconfig.xml", "graphicsRGB_config", "temp.ini", "uiset.ini", "/function/EC", "/function/MCU"};

bool lasts(std::string_view path)
{
    for (std::string_view name : lastingFiles) {
        if (path.find(name) != std::string_view::npos)
            return true;
    }
    return false;
}

const char *killPoint = nullptr;
int callsLeft = -1;

template <typename Function> Function *next(const char *name)
{
    return reinterpret_cast<Function *>(::dlsym(RTLD_NEXT, name));
}

// These are the C library's own calls, so that the calls made here are not counted.
int readCallsLeft()
{
    static auto *const openNext = next<int(const char *, int, ...)>("open");
    static auto *const closeNext = next<int(int)>("close");
    const int descriptor = openNext(killPoint, O_RDONLY | O_CLOEXEC);
    if (descriptor < 0)
        return -1;
    char text[16] = {};
    const ssize_t size = ::read(descriptor, text, sizeof text - 1);
    closeNext(descriptor);
    return size > 0 ? std::atoi(text) : -1;
}

void count()
{
    if (!killPoint)
        return;
    if (callsLeft < 0)
        callsLeft = readCallsLeft();
    if (callsLeft >= 0 && callsLeft-- == 0)
        ::kill(::getpid(), SIGKILL);
}

void countPath(const char *path)
{
    if (path && lasts(path))
        count();
}

void countDescriptor(int descriptor)
{
    if (!killPoint || descriptor < 0)
        return;
    char link[64];
    std::snprintf(link, sizeof link, "/proc/self/fd/%d", descriptor);
    char path[512];
    const ssize_t size = ::readlink(link, path, sizeof path);
    if (size > 0 && lasts({path, static_cast<std::size_t>(size)}))
        count();
}

mode_t modeOf(int flags, va_list arguments)
{
    return (flags & (O_CREAT | O_TMPFILE)) ? static_cast<mode_t>(va_arg(arguments, int)) : 0;
}

// Tools that the service starts are not killed.
__attribute__((constructor)) void begin()
{
    killPoint = std::getenv("TARN_KILL_POINT");
    ::unsetenv("LD_PRELOAD");
}

} // namespace

extern "C" {

int open(const char *path, int flags, ...)
{
    va_list arguments;
    va_start(arguments, flags);
    const mode_t mode = modeOf(flags, arguments);
    va_end(arguments);
    countPath(path);
    return next<int(const char *, int, ...)>("open")(path, flags, mode);
}

int open64(const char *path, int flags, ...)
{
    va_list arguments;
    va_start(arguments, flags);
    const mode_t mode = modeOf(flags, arguments);
    va_end(arguments);
    countPath(path);
    return next<int(const char *, int, ...)>("open64")(path, flags, mode);
}

int close(int descriptor)
{
    countDescriptor(descriptor);
    return next<int(int)>("close")(descriptor);
}

ssize_t write(int descriptor, const void *data, std::size_t size)
{
    countDescriptor(descriptor);
    return next<ssize_t(int, const void *, std::size_t)>("write")(descriptor, data, size);
}

ssize_t writev(int descriptor, const iovec *pieces, int pieceCount)
{
    countDescriptor(descriptor);
    return next<ssize_t(int, const iovec *, int)>("writev")(descriptor, pieces, pieceCount);
}

int ftruncate(int descriptor, off_t size) noexcept
{
    countDescriptor(descriptor);
    return next<int(int, off_t)>("ftruncate")(descriptor, size);
}

int ftruncate64(int descriptor, off64_t size) noexcept
{
    countDescriptor(descriptor);
    return next<int(int, off64_t)>("ftruncate64")(descriptor, size);
}

int fsync(int descriptor)
{
    countDescriptor(descriptor);
    return next<int(int)>("fsync")(descriptor);
}

int rename(const char *from, const char *to) noexcept
{
    countPath(to);
    return next<int(const char *, const char *)>("rename")(from, to);
}

int unlink(const char *path) noexcept
{
    countPath(path);
    return next<int(const char *)>("unlink")(path);
}

int linkat(int fromFolder, const char *from, int toFolder, const char *to, int flags) noexcept
{
    countPath(to);
    return next<int(int, const char *, int, const char *, int)>("linkat")(
        fromFolder, from, toFolder, to, flags);
}
}
