#pragma once

#include <csignal>
#include <sys/resource.h>

namespace tarnTest {

// For as long as the object lives, no file of this process can be written beyond so many bytes, which is an
// error like that of a full disk.
class FileSizeLimit
{
public:
    explicit FileSizeLimit(rlim_t bytes)
        : handlerBefore(std::signal(SIGXFSZ, SIG_IGN))
    {
        ::getrlimit(RLIMIT_FSIZE, &before);
        const rlimit limit {bytes, before.rlim_max};
        ::setrlimit(RLIMIT_FSIZE, &limit);
    }
    ~FileSizeLimit()
    {
        ::setrlimit(RLIMIT_FSIZE, &before);
        std::signal(SIGXFSZ, handlerBefore);
    }
    FileSizeLimit(const FileSizeLimit &) = delete;
    FileSizeLimit &operator=(const FileSizeLimit &) = delete;

private:
    rlimit before {};
    void (*handlerBefore)(int);
};

} // namespace tarnTest
