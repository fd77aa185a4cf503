#include "tarn/firmware_name.h"

#include <gtest/gtest.h>

using tarn::FirmwareKind;
using tarn::firmwareNameObjection;

TEST(TarnctlFirmwareNameTest, NamesThatTheServiceRefusesAreRefusedForBoth)
{
    // The rule itself is the service's own and tested there.
    for (const FirmwareKind kind : {FirmwareKind::Mcu, FirmwareKind::Ec}) {
        EXPECT_FALSE(firmwareNameObjection("fw 1.24.bin", kind).has_value());
        for (const char *name : {"", "-odd.bin", "uiset.ini", "aux.bin", "../fw.bin"}) {
            EXPECT_TRUE(
                firmwareNameObjection(name, kind).value_or(QString()).startsWith("The service refuses"))
                << name;
        }
    }
}

// Each key of the settings that stands before "BinName" in their order; after it, the line is already found.
TEST(TarnctlFirmwareNameTest, NamesThatHoldASettingOfTheEcToolAreRefusedForTheEc)
{
    for (const char *key : {"ACPI PORT", "FW VERSION SHOW", "HEX DISPLAY", "Read Method", "IO", "BRAM BANK",
             "Read BYTES", "BRAM Start index", "FlashEnd CMD", "AutoFlash", "Warring Show", "SilentRun"}) {
        const QString name = QStringLiteral("ec %1 0105.bin").arg(key);
        const QString objection = firmwareNameObjection(name, FirmwareKind::Ec).value_or(QString());
        EXPECT_TRUE(
            objection.startsWith(QStringLiteral("The name holds \"%1\", which is a setting").arg(key)))
            << key << ": " << objection.toStdString();
        EXPECT_FALSE(firmwareNameObjection(name, FirmwareKind::Mcu).has_value()) << key;
    }
    EXPECT_TRUE(firmwareNameObjection("BIOS_0105.bin", FirmwareKind::Ec).has_value());
    for (const char *name : {"bios_0105.bin", "BinName.bin", "Shutdown.bin", "Read.bin"})
        EXPECT_FALSE(firmwareNameObjection(name, FirmwareKind::Ec).has_value()) << name;
}
