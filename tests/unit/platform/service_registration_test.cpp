#include "platform/service_manager.h"

#include <gtest/gtest.h>

using tarnPlatform::ServiceEntry;
using tarnPlatform::ServiceRegistration;

TEST(ServiceRegistration, LeadsToTheSystemsEntry)
{
    constexpr auto none = std::nullopt;
    const struct
    {
        const char *account;
        const char *password;
        bool automatic;
        ServiceEntry entry;
    } cases[] = {
        {"", "", true, {0x110, 2, 1, none, none}},
        {"", "", false, {0x110, 3, 1, none, none}},
        {"", "secret", true, {0x110, 2, 1, none, none}},
        {"somebody", "secret", true, {0x10, 2, 1, ".\\somebody", "secret"}},
        {"somebody", "", false, {0x10, 3, 1, ".\\somebody", none}},
        {"DOMAIN\\somebody", "secret", true, {0x10, 2, 1, "DOMAIN\\somebody", "secret"}},
        {".\\somebody", "secret", true, {0x10, 2, 1, ".\\somebody", "secret"}},
        {"LocalSystem", "secret", true, {0x110, 2, 1, none, none}},
        {".\\LocalSystem", "", true, {0x110, 2, 1, none, none}},
        {"NT AUTHORITY\\LocalSystem", "", true, {0x110, 2, 1, none, none}},
        {"MyLocalSystem", "", true, {0x10, 2, 1, ".\\MyLocalSystem", none}},
        {"LocalSystem\\somebody", "", true, {0x10, 2, 1, "LocalSystem\\somebody", none}},
    };
    for (const auto &row : cases) {
        const ServiceRegistration registration {"name", "", row.account, row.password, row.automatic};
        EXPECT_TRUE(serviceEntry(registration) == row.entry) << row.account << ' ' << row.password;
    }
}
