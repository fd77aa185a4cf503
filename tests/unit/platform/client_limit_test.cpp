#include "platform/sockets.h"

#include "support/resource_limit.h"

#include <gtest/gtest.h>

using tarnPlatform::clientLimit;
using tarnTest::DescriptorLimit;

TEST(ClientLimit, KeepsDescriptorsBackForHandlers)
{
    const DescriptorLimit limit(1000);
    EXPECT_EQ(clientLimit(), 840);
}

TEST(ClientLimit, KeepsNoMoreThanHalfBack)
{
    for (const auto &[descriptors, clients] :
        {std::pair {321, 161}, std::pair {320, 160}, std::pair {200, 100}}) {
        const DescriptorLimit limit(static_cast<rlim_t>(descriptors));
        EXPECT_EQ(clientLimit(), clients);
    }
}
