#include "client/tarnctl/diagnose/serial_number_filter.h"

#include "support/printing.h"

#include <gtest/gtest.h>

using tarnctl::withoutSerialNumbers;

TEST(SerialNumberFilter, ReplacesTheNumberOfAKvane)
{
    EXPECT_EQ(withoutSerialNumbers(R"({"data":"0123456789ABCD"} 00000000000000. 0123456789abcd)"),
        R"({"data":"<serial number>"} <serial number>. <serial number>)");
    for (const char *other : {"0123456789ABC", "0123456789ABCDE", "default"})
        EXPECT_EQ(withoutSerialNumbers(other), other);
}

// The bytes of 48 65 6C are in the log as the service reads them.
TEST(SerialNumberFilter, ReplacesEachByteOfIt)
{
    EXPECT_EQ(withoutSerialNumbers("read kvane sn code 3 from xdata successed with:  72\n"
                                   "read kvane sn code 13 from xdata successed with:  0"),
        "read kvane sn code 3 from xdata successed with:  <number>\n"
        "read kvane sn code 13 from xdata successed with:  <number>");
    const QString other = "read rgbRedVer from xdata successed with:  72";
    EXPECT_EQ(withoutSerialNumbers(other), other);
}

TEST(SerialNumberFilter, ReplacesTheNumberOfADevice)
{
    EXPECT_EQ(withoutSerialNumbers(R"(PCI\VEN_10DE&DEV_2803\4&2B1F0D8C&0&0008 ends)"),
        R"(PCI\VEN_10DE&DEV_2803\<device number> ends)");
    EXPECT_EQ(withoutSerialNumbers(R"("PCI\\VEN_10DE&DEV_2803\\4&2B1F0D8C&0&0008")"),
        R"("PCI\\VEN_10DE&DEV_2803\\<device number>")");
    EXPECT_EQ(withoutSerialNumbers(R"(HDAUDIO\FUNC_01&VEN_10DE\5&1 and USB\VID_1\ABC)"),
        R"(HDAUDIO\FUNC_01&VEN_10DE\<device number> and USB\VID_1\<device number>)");
    for (const char *other : {R"("PCI\\VEN_10DE&DEV_2803")", R"(C:\Users\somebody\file)", "PCI bus"})
        EXPECT_EQ(withoutSerialNumbers(other), other);
}
