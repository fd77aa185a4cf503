#pragma once

#include <QtGlobal>

#include <csignal>
#include <sys/resource.h>

namespace tarnTest {

// Lets this process have only so much of a resource, for as long as it lives. What it has already stays.
template <auto resource> class ResourceLimit
{
public:
    explicit ResourceLimit(rlim_t amount)
        : handlerBefore(std::signal(SIGXFSZ, SIG_IGN)) // a write that goes too far is to fail, not to kill
    {
        if (::getrlimit(resource, &before) != 0)
            qFatal("cannot read limit %d", static_cast<int>(resource));
        set({amount, before.rlim_max});
    }
    ~ResourceLimit()
    {
        set(before);
        std::signal(SIGXFSZ, handlerBefore);
    }
    ResourceLimit(const ResourceLimit &) = delete;
    ResourceLimit &operator=(const ResourceLimit &) = delete;

private:
    static void set(const rlimit &limit)
    {
        if (::setrlimit(resource, &limit) != 0)
            qFatal("cannot set limit %d", static_cast<int>(resource));
    }

    void (*const handlerBefore)(int);
    rlimit before = {};
};

using DescriptorLimit = ResourceLimit<RLIMIT_NOFILE>;
using FileSizeLimit = ResourceLimit<RLIMIT_FSIZE>; // of each file, in bytes

} // namespace tarnTest
