#include "accessory/graphics_colours.h"
#include "accessory/power_profiles.h"
#include "client/value_text.h"
#include "client/value_words.h"
#include "device/monitor/accessory_table.h"

#include "tarn/values.h"

#include <gtest/gtest.h>

#include <QStringList>

using namespace tarn;

TEST(ClientValuesTest, WordsOfAccessories)
{
    const QList<std::pair<Accessory, QString>> table {{Accessory::Disconnected, "disconnected"},
        {Accessory::Dock, "dock"}, {Accessory::GraphicsBox, "graphics"}, {Accessory::KVane, "k_vane"},
        {Accessory::Unknown, ""}};
    for (const auto &[accessory, name] : table) {
        EXPECT_EQ(nameOf(accessory), name);
        EXPECT_EQ(accessoryNamed(name), accessory);
    }
    EXPECT_EQ(accessoryNamed("Dock"), std::nullopt);
    EXPECT_EQ(nameOf(static_cast<Accessory>(77)), "");
}

TEST(ClientValuesTest, WordsOfProfiles)
{
    const QList<std::pair<Profile, QString>> table {
        {Profile::High, "high"}, {Profile::Balance, "balance"}, {Profile::Low, "low"}};
    int number = 0;
    for (const auto &[profile, name] : table) {
        EXPECT_EQ(nameOf(profile), name);
        EXPECT_EQ(profileNamed(name), profile);
        EXPECT_EQ(profileNumberedIn(QString::number(number++)), profile);
    }
    EXPECT_EQ(profileNamed("hide"), std::nullopt);
    EXPECT_EQ(profileNumberedIn("3"), std::nullopt);
    EXPECT_EQ(profileNumberedIn("-2"), std::nullopt);
    EXPECT_EQ(profileNames().size(), table.size());
}

TEST(ClientValuesTest, WordsOfColours)
{
    const QList<std::pair<Colour, QString>> table {{Colour::White, "white"}, {Colour::Red, "red"},
        {Colour::Yellow, "yellow"}, {Colour::Green, "green"}, {Colour::Cyan, "cyan"}, {Colour::Blue, "blue"},
        {Colour::PurplishRed, "purplishred"}, {Colour::Shutdown, "shutdown"}};
    for (const auto &[colour, name] : table) {
        EXPECT_EQ(nameOf(colour), name);
        EXPECT_EQ(colourNamed(name), colour);
    }
    EXPECT_EQ(colourNamed("pink"), std::nullopt);
    EXPECT_EQ(colourNames().size(), table.size());
}

TEST(ClientValuesTest, KnowsWhatTheServiceKnows)
{
    for (const auto &kind : tarnDeviceInfos::accessoryTable)
        EXPECT_TRUE(accessoryNamed(kind.name).has_value()) << kind.name;
    EXPECT_EQ(accessoryNamed(tarnDeviceInfos::noAccessoryName), Accessory::Disconnected);
    for (const auto &profile : tarnAccessoryManager::powerProfiles)
        EXPECT_EQ(profileNamed(profile.name), static_cast<Profile>(profile.number)) << profile.name;
    for (const auto &colour : tarnAccessoryManager::graphicsColours)
        EXPECT_TRUE(colourNamed(colour.wireName).has_value()) << colour.wireName;
}

TEST(ClientValuesTest, NumbersThatStandForNothing)
{
    EXPECT_EQ(percentIn("0"), 0);
    EXPECT_EQ(percentIn("100"), 100);
    for (const char *unknown : {"101", "251", "255", "-1", "", "x", "1.5", " "})
        EXPECT_EQ(percentIn(unknown), std::nullopt) << unknown;
    EXPECT_EQ(chargingIn("0"), false);
    EXPECT_EQ(chargingIn("1"), true);
    for (const char *unknown : {"2", "251", "-1", ""})
        EXPECT_EQ(chargingIn(unknown), std::nullopt) << unknown;
    EXPECT_EQ(byteIn("0"), 0);
    EXPECT_EQ(byteIn("255"), 255);
    for (const char *unknown : {"256", "-1", ""})
        EXPECT_EQ(byteIn(unknown), std::nullopt) << unknown;
    EXPECT_EQ(switchIn("ON"), true);
    EXPECT_EQ(switchIn("off"), false);
    EXPECT_EQ(switchIn("unknown"), std::nullopt);
    EXPECT_EQ(textIn(""), std::nullopt);
    EXPECT_EQ(textIn("x"), "x");
    EXPECT_EQ(serialNumberIn("default"), std::nullopt);
    EXPECT_EQ(serialNumberIn("00"), "00");
}
