#include "client/tarnctl/check/device_notes.h"

#include "support/printing.h"

#include <QFile>
#include <QJsonDocument>
#include <QJsonObject>
#include <QTemporaryDir>

#include <gtest/gtest.h>

using namespace tarnctl;

namespace {

// The devices that were noted, in their order.
QList<QJsonObject> notedIn(const tarnRecording::RequestJournal &journal)
{
    const QTemporaryDir folder;
    const std::string path = folder.filePath("ec.requests").toStdString();
    std::string error;
    EXPECT_TRUE(journal.write(path, {}));
    QList<QJsonObject> noted;
    const auto records = tarnRecording::readRequests(path, error);
    for (const auto &record : records.value_or(std::vector<tarnRecording::RequestRecord>())) {
        EXPECT_EQ(record.kind, tarnRecording::RequestRecord::Kind::Device);
        noted << QJsonDocument::fromJson(QByteArray::fromStdString(record.text)).object();
    }
    return noted;
}

const HostDevice ownDisplay {
    HostDevice::Kind::Display, true, 0, "Own display", "PCI\\VEN_8086&DEV_1", "PCI\\VEN_8086&DEV_1\\1"};
const HostDevice boxDisplay {
    HostDevice::Kind::Display, false, 22, "Box display", "PCI\\VEN_10DE&DEV_2", "PCI\\VEN_10DE&DEV_2\\2"};
const HostDevice boxSound {
    HostDevice::Kind::Audio, true, 0, "Box sound", "HDAUDIO\\FUNC_01", "HDAUDIO\\FUNC_01\\3"};

} // namespace

TEST(DeviceNotesTest, TellOnceWhatIsThere)
{
    tarnRecording::RequestJournal journal;
    DeviceNotes notes([] { return QList {ownDisplay, boxSound}; }, journal);
    EXPECT_EQ(notes.noteChanges().size(), 2);
    EXPECT_TRUE(notes.noteChanges().isEmpty());
    const auto noted = notedIn(journal);
    ASSERT_EQ(noted.size(), 2);
    const QJsonObject display {{"name", "display1"}, {"kind", "display"}, {"place", "computer"},
        {"started", true}, {"problem", 0}, {"description", "Own display"},
        {"hardwareId", "PCI\\VEN_8086&DEV_1"}, {"instanceId", "PCI\\VEN_8086&DEV_1\\1"}};
    EXPECT_EQ(noted.at(0), display);
    EXPECT_EQ(noted.at(1).value("name").toString(), "audio1");
    EXPECT_EQ(noted.at(1).value("kind").toString(), "audio");
}

TEST(DeviceNotesTest, FollowAGraphicsBox)
{
    QList<HostDevice> present {ownDisplay};
    tarnRecording::RequestJournal journal;
    DeviceNotes notes([&present] { return present; }, journal);
    static_cast<void>(notes.noteChanges());
    present << boxDisplay;
    EXPECT_EQ(notes.noteChanges(),
        QStringList("  display2: Box display, box, stopped (problem 22), PCI\\VEN_10DE&DEV_2\\2"));
    present[1].isStarted = true;
    present[1].problem = 0;
    EXPECT_EQ(
        notes.noteChanges(), QStringList("  display2: Box display, box, started, PCI\\VEN_10DE&DEV_2\\2"));
    present.removeLast();
    EXPECT_EQ(notes.noteChanges().size(), 1);
    EXPECT_TRUE(notes.noteChanges().isEmpty());
    present << boxDisplay;
    EXPECT_EQ(notes.noteChanges().size(), 1);
    QStringList places;
    for (const QJsonObject &device : notedIn(journal))
        places << device.value("name").toString() + ' ' + device.value("place").toString();
    EXPECT_EQ(places,
        QStringList(
            {"display1 computer", "display2 box", "display2 box", "display2 nowhere", "display2 box"}));
}

TEST(DeviceNotesTest, FollowAGraphicsBoxThatWasAttachedBefore)
{
    QList<HostDevice> present {ownDisplay, boxDisplay};
    tarnRecording::RequestJournal journal;
    DeviceNotes notes([&present] { return present; }, journal);
    static_cast<void>(notes.noteChanges());
    present.removeLast();
    static_cast<void>(notes.noteChanges());
    present << boxDisplay;
    static_cast<void>(notes.noteChanges());
    QStringList places;
    for (const QJsonObject &device : notedIn(journal))
        places << device.value("name").toString() + ' ' + device.value("place").toString();
    EXPECT_EQ(
        places, QStringList({"display1 computer", "display2 computer", "display2 nowhere", "display2 box"}));
}
