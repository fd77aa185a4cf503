#pragma once

#include <QtGlobal>

#include <csignal>
#include <sys/resource.h>

namespace tarnTest {

// Lets no file of this process grow beyond so many bytes, for as long as it lives.
class FileSizeLimit
{
public:
    explicit FileSizeLimit(rlim_t bytes)
        : handlerBefore(std::signal(SIGXFSZ, SIG_IGN)) // a write that goes too far is to fail, not to kill
    {
        if (::getrlimit(RLIMIT_FSIZE, &before) != 0)
            qFatal("cannot read the limit of file sizes");
        set({bytes, before.rlim_max});
    }
    ~FileSizeLimit()
    {
        set(before);
        std::signal(SIGXFSZ, handlerBefore);
    }
    FileSizeLimit(const FileSizeLimit &) = delete;
    FileSizeLimit &operator=(const FileSizeLimit &) = delete;

private:
    static void set(const rlimit &limit)
    {
        if (::setrlimit(RLIMIT_FSIZE, &limit) != 0)
            qFatal("cannot set the limit of file sizes");
    }

    void (*const handlerBefore)(int);
    rlimit before = {};
};

} // namespace tarnTest
