#pragma once

#include <QString>

#include <gtest/gtest.h>

#include <cerrno>
#include <linux/capability.h>
#include <sys/stat.h>
#include <sys/syscall.h>
#include <unistd.h>

namespace tarnTest {

// Takes away this thread's rights to open whatever it wants and to look into any process, for as long as it
// lives, so that modes of files count for root too. Dropping a right is allowed to root in any
// container; other users have none of these rights anyway.
class Unprivileged
{
public:
    Unprivileged()
    {
        if (::syscall(SYS_capget, &header, before) != 0)
            qFatal("cannot read the rights of this thread");
        __user_cap_data_struct lowered[_LINUX_CAPABILITY_U32S_3] = {before[0], before[1]};
        lowered[0].effective &=
            ~((1U << CAP_DAC_OVERRIDE) | (1U << CAP_DAC_READ_SEARCH) | (1U << CAP_SYS_PTRACE));
        set(lowered);
    }
    ~Unprivileged() { set(before); }
    Unprivileged(const Unprivileged &) = delete;
    Unprivileged &operator=(const Unprivileged &) = delete;

private:
    void set(const __user_cap_data_struct (&rights)[_LINUX_CAPABILITY_U32S_3])
    {
        if (::syscall(SYS_capset, &header, rights) != 0)
            qFatal("cannot set the rights of this thread");
    }

    __user_cap_header_struct header {_LINUX_CAPABILITY_VERSION_3, 0};
    __user_cap_data_struct before[_LINUX_CAPABILITY_U32S_3] = {};
};

inline void setMode(const QString &path, unsigned mode)
{
    ASSERT_EQ(::chmod(qPrintable(path), mode), 0) << errno;
}

} // namespace tarnTest
