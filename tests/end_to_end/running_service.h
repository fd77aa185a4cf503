#pragma once

#include "end_to_end/service_client.h"
#include "end_to_end/service_process.h"

#include <gtest/gtest.h>

#include <iostream>

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
    void TearDown() override
    {
        EXPECT_EQ(service.stop(), 0);
        if (HasFailure())
            std::cerr << "the service said last:\n" << service.log().right(6000).toStdString() << '\n';
    }

    ServiceProcess service;
    ServiceClient client;
};

} // namespace tarnTest
