#include "platform/client_room.h"

#include <gtest/gtest.h>

#include <limits>
#include <sys/resource.h>

using tarnPlatform::clientRoom;

// For as long as it lives this process may have so many descriptors.
class DescriptorLimit
{
public:
    explicit DescriptorLimit(rlim_t count)
    {
        EXPECT_EQ(::getrlimit(RLIMIT_NOFILE, &before), 0);
        const rlimit changed {count, before.rlim_max};
        EXPECT_EQ(::setrlimit(RLIMIT_NOFILE, &changed), 0);
    }
    ~DescriptorLimit() { ::setrlimit(RLIMIT_NOFILE, &before); }
    DescriptorLimit(const DescriptorLimit &) = delete;
    DescriptorLimit &operator=(const DescriptorLimit &) = delete;

private:
    rlimit before {};
};

TEST(ClientRoom, KeepsDescriptorsBackForHandlers)
{
    const DescriptorLimit limit(1000);
    EXPECT_EQ(clientRoom(), 840);
}

TEST(ClientRoom, KeepsNoMoreThanHalfBack)
{
    for (const auto &[descriptors, room] :
        {std::pair {321, 161}, std::pair {320, 160}, std::pair {200, 100}}) {
        const DescriptorLimit limit(static_cast<rlim_t>(descriptors));
        EXPECT_EQ(clientRoom(), room);
    }
}
