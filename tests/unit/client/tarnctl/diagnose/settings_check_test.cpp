#include "support/printing.h"
#include "unit/client/tarnctl/diagnose/sound_computer.h"

#include <QDir>

using namespace tarnctl;

using SettingsCheck = tarnClientTest::Diagnosis;

TEST_F(SettingsCheck, NeedNotBeThereYet)
{
    remove("powermodeconfig.xml");
    remove("graphicsRGB_config.ini");
    EXPECT_EQ(lineOf("saved profile"), "good: none yet, the profile is balance");
    EXPECT_EQ(lineOf("saved colour"), "good: none yet, the colour is white");
}

TEST_F(SettingsCheck, OfAProfileAreOneNumber)
{
    for (const char *content : {"0", "1", "2", " 2\r\n"}) {
        write("powermodeconfig.xml", content);
        EXPECT_EQ(lineOf("saved profile"), "good: FOLDER/powermodeconfig.xml");
    }
    for (const char *content : {"", "3", "4", "12", "-1", "<xml/>", "1x"}) {
        write("powermodeconfig.xml", content);
        EXPECT_EQ(lineOf("saved profile"),
            "bad: FOLDER/powermodeconfig.xml makes no sense -> stop the service, delete the file, start the "
            "service; the profile is balance");
    }
}

TEST_F(SettingsCheck, OfAColourHaveItsNumber)
{
    for (const char *content : {"[General]\ngraphicsColor=0\n", "[General]\r\ngraphicsColor=6\r\n",
             "[General]\nother=1\ngraphicsColor=3", "graphicsColor=5\n[Other]\n"}) {
        write("graphicsRGB_config.ini", content);
        EXPECT_EQ(lineOf("saved colour"), "good: FOLDER/graphicsRGB_config.ini") << content;
    }
    for (const char *content :
        {"", "graphicsColor", "[General]\ngraphicsColor=7\n", "[General]\ngraphicsColor=65\n",
            "[General]\ngraphicsColor=\n", "[General]\n[Other]\ngraphicsColor=3\n"}) {
        write("graphicsRGB_config.ini", content);
        EXPECT_EQ(lineOf("saved colour"),
            "bad: FOLDER/graphicsRGB_config.ini makes no sense -> stop the service, delete the file, start "
            "the "
            "service; the colour is white");
    }
}

TEST_F(SettingsCheck, HaveToBeFilesOfTheirSize)
{
    write("powermodeconfig.xml", QByteArray(64 * 1024 + 1, '1'));
    EXPECT_TRUE(
        lineOf("saved profile").startsWith("bad: FOLDER/powermodeconfig.xml is no settings file -> "));
    remove("powermodeconfig.xml");
    ASSERT_TRUE(QDir().mkpath(path("powermodeconfig.xml")));
    EXPECT_TRUE(
        lineOf("saved profile").startsWith("bad: FOLDER/powermodeconfig.xml is no settings file -> "));
}
