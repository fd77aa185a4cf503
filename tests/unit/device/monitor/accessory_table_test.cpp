#include "device/monitor/accessory_table.h"

#include <gtest/gtest.h>

using namespace tarnDeviceInfos;

namespace {

// All accessories a second time, in words of their own: the other tests take them from the table of the
// service.
constexpr AccessoryKind expectedAccessories[] = {
    {1, false, "dock", "Connected accessory is dock!", "now Accessory is dock"},
    {2, true, "graphics", "Connected accessory is graphics!", "now Accessory is graphics"},
    {3, true, "graphics", "Connected accessory is graphics16G!", "now Accessory is graphics"},
    {4, false, "k_vane", "Connected accessory is k_Vane!", "now Accessory is k_vane"},
};
static_assert(std::size(expectedAccessories) == std::size(accessoryTable));

} // namespace

TEST(AccessoryTable, KnowsEachAccessoryByItsCode)
{
    for (const AccessoryKind &expected : expectedAccessories) {
        const AccessoryKind *kind = findAccessory(expected.code);
        ASSERT_NE(kind, nullptr) << int(expected.code);
        EXPECT_STREQ(kind->name, expected.name);
        EXPECT_EQ(kind->isGraphicsBox, expected.isGraphicsBox) << expected.name;
        EXPECT_STREQ(kind->foundAtFirst, expected.foundAtFirst);
        EXPECT_STREQ(kind->foundAtChange, expected.foundAtChange);
    }
    EXPECT_STREQ(noAccessoryName, "disconnected");
}

TEST(AccessoryTable, KnowsNothingOfOtherCodes)
{
    for (const int code : {0, 9, 77, 250, 251, 255})
        EXPECT_EQ(findAccessory(static_cast<quint8>(code)), nullptr) << code;
}
