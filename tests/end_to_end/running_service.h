#pragma once

#include "end_to_end/service_client.h"
#include "end_to_end/service_process.h"

#include <gtest/gtest.h>

namespace tarnTest {

// A service with one client, which ends well.
class RunningService : public ::testing::Test
{
protected:
    void SetUp() override
    {
        ASSERT_TRUE(service.start()) << service.log().toStdString();
        ASSERT_TRUE(client.connectToService());
    }
    void TearDown() override { EXPECT_EQ(service.stop(), 0); }

    ServiceProcess service;
    ServiceClient client;
};

} // namespace tarnTest
