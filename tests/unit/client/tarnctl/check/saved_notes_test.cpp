#include "client/tarnctl/check/saved_notes.h"

#include <QDir>
#include <QFile>
#include <QTemporaryDir>

#include <gtest/gtest.h>

#include <fstream>
#include <sstream>

using namespace tarnctl;

TEST(SavedNotesTest, HaveWhatTheServiceHadSavedAtTheStart)
{
    const QTemporaryDir folder;
    std::ofstream(folder.filePath("powermodeconfig.xml").toStdString()) << "4";
    tarnRecording::RequestJournal journal;
    noteSaved(Installation(folder.path()), journal);
    journal.note(tarnRecording::RequestRecord::Kind::Request, "{}", 120);
    tarnRecording::Recording recording;
    recording.header.clockUs = 100;
    recording.header.firstAccess = 1;
    tarnRecording::EcRecord record;
    record.us = record.lastUs = 20;
    recording.records.push_back(record);
    const std::string path = folder.filePath("ec.requests").toStdString();
    ASSERT_TRUE(journal.write(path, recording));
    std::ostringstream text;
    text << std::ifstream(path).rdbuf();
    EXPECT_EQ(text.str(),
        "after 0 saved {\"content\":\"NA==\",\"file\":\"powermodeconfig.xml\"}\n"
        "after 0 saved {\"content\":\"\",\"file\":\"graphicsRGB_config.ini\"}\n"
        "after 1 request {}\n");
}
