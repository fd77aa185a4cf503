#pragma once

#include <QtGlobal>

#include <sys/resource.h>

namespace tarnTest {

// Lets this process have so many descriptors, for as long as it lives. Those that are open stay so.
class DescriptorLimit
{
public:
    explicit DescriptorLimit(rlim_t count)
    {
        if (::getrlimit(RLIMIT_NOFILE, &before) != 0)
            qFatal("cannot read the limit of descriptors");
        set({count, before.rlim_max});
    }
    ~DescriptorLimit() { set(before); }
    DescriptorLimit(const DescriptorLimit &) = delete;
    DescriptorLimit &operator=(const DescriptorLimit &) = delete;

private:
    static void set(const rlimit &limit)
    {
        if (::setrlimit(RLIMIT_NOFILE, &limit) != 0)
            qFatal("cannot set the limit of descriptors");
    }

    rlimit before = {};
};

} // namespace tarnTest
