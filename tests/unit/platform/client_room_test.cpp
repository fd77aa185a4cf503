#include "platform/sockets.h"

#include "support/descriptor_limit.h"

#include <gtest/gtest.h>

using tarnPlatform::clientRoom;
using tarnTest::DescriptorLimit;

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
