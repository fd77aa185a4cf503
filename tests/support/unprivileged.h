#pragma once

#include <QString>

#include <gtest/gtest.h>

#include <cerrno>
#include <sys/stat.h>
#include <unistd.h>

namespace tarnTest {

// Takes away root's right to open anything, for as long as it lives. A folder of the test has to be open to
// others for what lies in it to be reached meanwhile. It does not work where root may become nobody else, as
// in a container that knows one user only; a test can then see nothing of what it is about.
class Unprivileged
{
public:
    Unprivileged()
        : lowered(::geteuid() == 0 && ::seteuid(65534) == 0)
    { }
    ~Unprivileged()
    {
        if (lowered && ::seteuid(0) != 0)
            qFatal("cannot become root again");
    }
    Unprivileged(const Unprivileged &) = delete;
    Unprivileged &operator=(const Unprivileged &) = delete;

    [[nodiscard]] static bool works() { return ::geteuid() != 0; }

private:
    const bool lowered;
};

inline void setMode(const QString &path, unsigned mode)
{
    ASSERT_EQ(::chmod(qPrintable(path), mode), 0) << errno;
}

} // namespace tarnTest
