#include "unit/panel/client/client_side_fixture.h"

#include <QClipboard>
#include <QFileDialog>
#include <QMimeData>
#include <QProgressBar>
#include <QRegularExpression>
#include <QTabWidget>

using namespace panelTest;

namespace {

class UpdatePageTest : public ClientSideTest
{
protected:
    void makeReady(const QString &accessory = QStringLiteral("k_vane"))
    {
        makeAndConnect(accessory);
        find<QTabWidget>("clientTabs").setCurrentIndex(2);
        firmware = folder.filePath(QStringLiteral("fw.bin"));
        QFile file(firmware);
        ASSERT_TRUE(file.open(QIODevice::WriteOnly));
        file.write("new firmware");
    }

    // Until the file has been looked at; before, nothing speaks against it.
    void choose()
    {
        const int before = *looks;
        find<QLineEdit>("updateFile").setText(firmware);
        ASSERT_TRUE(becomes([this, before] { return *looks > before; }));
        QThreadPool::globalInstance()->waitForDone();
        QCoreApplication::processEvents();
        ASSERT_TRUE(becomes([this] { return find<QWidget>("startUpdate").isEnabled(); }));
    }

    void start()
    {
        choose();
        clickTwice("startUpdate");
    }

    // Until the service has got the request that flashes and keeps it.
    void startAndHold()
    {
        service.silent << QStringLiteral("requestMcuUpdate");
        start();
        ASSERT_TRUE(gets(QStringLiteral("requestMcuUpdate fw.bin")));
    }

    QString firmware;
};

} // namespace

TEST_F(UpdatePageTest, UpdatesTheMcuAndSaysSo)
{
    makeReady();
    EXPECT_TRUE(text("updateNotice").contains(QStringLiteral("Keep the computer on")));
    EXPECT_FALSE(find<QWidget>("updateProgress").isVisible());
    find<QLineEdit>("updateVersion").setText(QStringLiteral("3.14"));
    startAndHold();
    EXPECT_TRUE(find<QWidget>("updateProgress").isVisible());
    EXPECT_EQ(find<QProgressBar>("updateProgress").maximum(), 0);
    EXPECT_TRUE(shows("updatePhase", QStringLiteral("starting the boot loader")));
    EXPECT_TRUE(text("updatePhase").contains(QRegularExpression(QStringLiteral("^0:\\d\\d "))))
        << text("updatePhase").toStdString();
    EXPECT_TRUE(shows("powerModeStatus", QStringLiteral("An update of the MCU's firmware runs.")));
    EXPECT_FALSE(find<QWidget>("powerMode").isEnabled());
    EXPECT_FALSE(find<QWidget>("refresh").isEnabled());
    EXPECT_TRUE(text("commandSummary").startsWith(QStringLiteral("An update of the MCU's firmware runs.")));
    service.answerHeld();
    ASSERT_TRUE(shows("updateResult", QStringLiteral("The KVane's MCU now runs version 3.14.")));
    EXPECT_TRUE(text("updateResult").startsWith(QStringLiteral("Update of the KVane's MCU, ended at ")));
    EXPECT_FALSE(find<QWidget>("updateProgress").isVisible());
    EXPECT_TRUE(find<QWidget>("powerMode").isEnabled());
    EXPECT_EQ(commands(), QStringList {command(QStringLiteral("--expect 3.14 update-mcu ") + firmware)});
    EXPECT_TRUE(logs(QStringLiteral("Sent"), QStringLiteral("requestMcuUpdate")));
    EXPECT_TRUE(logs(QStringLiteral("Answer"), QStringLiteral("\"mcuVer\":\"3.14\"")));
    click("copyResult");
    EXPECT_EQ(QGuiApplication::clipboard()->text(), text("updateResult"));
}

TEST_F(UpdatePageTest, SaysWhatAFailureMeans)
{
    makeReady();
    service.failing << QStringLiteral("requestMcuUpdate");
    start();
    ASSERT_TRUE(shows("updateResult", QStringLiteral("The service refused the update")));
    EXPECT_TRUE(text("updateResult").contains(QStringLiteral("This update has not changed the device.")));
    EXPECT_TRUE(text("updateResult").contains(QStringLiteral("Its log tells which.")));
}

TEST_F(UpdatePageTest, AnAbandonedUpdateMayGoOn)
{
    makeReady();
    startAndHold();
    EXPECT_TRUE(find<QWidget>("abandonUpdate")
                    .accessibleDescription()
                    .contains(QStringLiteral("carries out all the same")));
    const int readBefore = service.count(QStringLiteral("getTarnPowerMode"));
    click("abandonUpdate");
    ASSERT_TRUE(shows("updateResult", QStringLiteral("The service goes on with the update")));
    // The EC is the service's until it is done: nothing is asked that could only wait.
    service.notify(QStringLiteral("getTarnBatteryNum"), QStringLiteral("33"));
    ASSERT_TRUE(shows("battery", QStringLiteral("33 %")));
    EXPECT_EQ(service.count(QStringLiteral("getTarnPowerMode")), readBefore);
    EXPECT_TRUE(text("updateResult").contains(QStringLiteral("The device may have been changed.")));
    EXPECT_FALSE(find<QWidget>("abandonUpdate").isEnabled());
}

TEST_F(UpdatePageTest, AServiceThatGoesAwayEndsIt)
{
    makeReady();
    startAndHold();
    service.leave();
    ASSERT_TRUE(shows("updateResult", QStringLiteral("leave the KVane attached")));
    EXPECT_FALSE(find<QWidget>("updateProgress").isVisible());
    EXPECT_FALSE(find<QWidget>("startUpdate").isEnabled());
    EXPECT_TRUE(shows("updateObjection", QStringLiteral("Not connected.")));
}

TEST_F(UpdatePageTest, UnpluggingMeanwhileIsShown)
{
    makeReady();
    startAndHold();
    service.notify(QStringLiteral("changeAccessoryType"), QStringLiteral("disconnected"));
    EXPECT_TRUE(shows("accessory", QStringLiteral("nothing attached")));
    EXPECT_TRUE(find<QWidget>("updateProgress").isVisible());
    service.answerHeld();
    ASSERT_TRUE(shows("updateResult", QStringLiteral("version 3.14")));
}

TEST_F(UpdatePageTest, SaysWhyItCannotBegin)
{
    makeReady(QStringLiteral("dock"));
    EXPECT_EQ(text("updateObjection"), QStringLiteral("Needs a KVane; attached: dock."));
    EXPECT_FALSE(find<QWidget>("startUpdate").isEnabled());
    find<QComboBox>("updateKind").setCurrentIndex(1);
    EXPECT_EQ(text("updateObjection"), QStringLiteral("No file is chosen."));
    EXPECT_FALSE(find<QWidget>("updateVersion").isEnabled());
    find<QLineEdit>("updateFile").setText(folder.filePath(QStringLiteral("missing.bin")));
    EXPECT_TRUE(shows("updateObjection", QStringLiteral("missing.bin")));
    EXPECT_FALSE(find<QWidget>("startUpdate").isEnabled());
    EXPECT_TRUE(find<QWidget>("startUpdate").accessibleDescription().contains(QStringLiteral("missing.bin")));
}

TEST_F(UpdatePageTest, SeesThatAFileHasBeenMadeMeanwhile)
{
    makeReady();
    const QString later = folder.filePath(QStringLiteral("later.bin"));
    find<QLineEdit>("updateFile").setText(later);
    ASSERT_TRUE(shows("updateObjection", QStringLiteral("later.bin")));
    ASSERT_TRUE(QFile::copy(firmware, later));
    EXPECT_TRUE(becomes([this] { return find<QWidget>("startUpdate").isEnabled(); }));
}

TEST_F(UpdatePageTest, AVersionThatNoMcuTellsIsNotExpected)
{
    makeReady();
    choose();
    find<QLineEdit>("updateVersion").setText(QStringLiteral("v1.24"));
    EXPECT_FALSE(find<QWidget>("startUpdate").isEnabled());
    EXPECT_TRUE(text("updateObjection").contains(QStringLiteral("such as 1.24")));
    find<QLineEdit>("updateVersion").setText(QStringLiteral("1.24"));
    EXPECT_TRUE(find<QWidget>("startUpdate").isEnabled());
}

// The script of the session runs in the folder of the programs.
TEST_F(UpdatePageTest, TheCommandHasTheWholeNameOfTheFile)
{
    makeReady();
    ASSERT_TRUE(QDir::setCurrent(folder.path()));
    find<QLineEdit>("updateFile").setText(QStringLiteral("fw.bin"));
    ASSERT_TRUE(becomes([this] { return find<QWidget>("startUpdate").isEnabled(); }));
    click("startUpdate");
    QTest::qWait(QApplication::doubleClickInterval() + 50);
    click("startUpdate");
    ASSERT_FALSE(commands().isEmpty());
    EXPECT_EQ(commands().constLast(),
        command(QStringLiteral("update-mcu ") + QFileInfo(QStringLiteral("fw.bin")).absoluteFilePath()));
    ASSERT_TRUE(QDir::setCurrent(QDir::rootPath()));
}

TEST_F(UpdatePageTest, UpdatesTheEc)
{
    makeReady(QStringLiteral("dock"));
    find<QComboBox>("updateKind").setCurrentIndex(1);
    EXPECT_TRUE(text("updateNotice").contains(QStringLiteral("may shut it down")));
    start();
    ASSERT_TRUE(shows("updateResult", QStringLiteral("The service is done with the EC tool.")));
    EXPECT_TRUE(text("updateResult").contains(QStringLiteral("Restart the computer now")));
    EXPECT_EQ(commands(), QStringList {command(QStringLiteral("update-ec ") + firmware)});
}

TEST_F(UpdatePageTest, AFileCanBeChosen)
{
    makeReady();
    click("browse");
    auto *dialog = side->findChild<QFileDialog *>();
    ASSERT_NE(dialog, nullptr);
    EXPECT_TRUE(dialog->isVisible());
    dialog->selectFile(firmware);
    static_cast<QDialog *>(dialog)->accept();
    EXPECT_EQ(find<QLineEdit>("updateFile").text(), firmware);
}

TEST_F(UpdatePageTest, AFileCanBeDropped)
{
    makeReady();
    QWidget *page = find<QWidget>("updateFile").parentWidget();
    QMimeData data;
    data.setUrls({QUrl::fromLocalFile(firmware)});
    QDragEnterEvent enter({5, 5}, Qt::CopyAction, &data, Qt::LeftButton, Qt::NoModifier);
    QApplication::sendEvent(page, &enter);
    EXPECT_TRUE(enter.isAccepted());
    EXPECT_FALSE(find<QWidget>("updateFile").acceptDrops()) << "it would take the address as a text";
    QDropEvent drop(QPointF(5, 5), Qt::CopyAction, &data, Qt::LeftButton, Qt::NoModifier);
    QApplication::sendEvent(page, &drop);
    EXPECT_EQ(find<QLineEdit>("updateFile").text(), firmware);
}

TEST_F(UpdatePageTest, AWarningNamesTheButtons)
{
    makeReady();
    const QString warning = find<QWidget>("requestEnterMcuUpdateMode").accessibleDescription();
    EXPECT_TRUE(warning.contains(QStringLiteral("\"Leave MCU update mode\""))) << warning.toStdString();
    EXPECT_FALSE(warning.contains(QStringLiteral("requestLeave")));
}

TEST_F(UpdatePageTest, ReservingTheEcTakesTwoClicks)
{
    makeReady();
    click("requestStartEcUpdate");
    EXPECT_TRUE(text("modeStatus").contains(QStringLiteral("reserved until the service is restarted")));
    EXPECT_TRUE(
        find<QAbstractButton>("requestStartEcUpdate").text().startsWith(QStringLiteral("Click again")));
    EXPECT_TRUE(commands().isEmpty());
    QTest::qWait(QApplication::doubleClickInterval() + 50);
    click("requestStartEcUpdate");
    ASSERT_TRUE(shows("modeStatus", QStringLiteral("the service answered \"successed\"")));
    EXPECT_EQ(commands(), QStringList {command(QStringLiteral("requestStartEcUpdate"))});
}

TEST_F(UpdatePageTest, EntersAndLeavesTheUpdateMode)
{
    makeReady();
    clickTwice("requestEnterMcuUpdateMode");
    ASSERT_TRUE(shows("modeStatus", QStringLiteral("Enter MCU update mode: the service answered")));
    click("requestLeaveMcuUpdateMode");
    ASSERT_TRUE(shows("modeStatus", QStringLiteral("Leave MCU update mode: the service answered \"2.05\"")));
    EXPECT_EQ(commands(),
        (QStringList {command(QStringLiteral("requestEnterMcuUpdateMode")),
            command(QStringLiteral("requestLeaveMcuUpdateMode"))}));
}

TEST_F(UpdatePageTest, ADoubleClickStartsNothing)
{
    makeReady();
    choose();
    auto &button = find<QAbstractButton>("startUpdate");
    click("startUpdate");
    click("startUpdate");
    EXPECT_FALSE(find<QWidget>("updateProgress").isVisible());
    EXPECT_EQ(button.text(), QStringLiteral("Click again: Start update"));
    QTest::qWait(QApplication::doubleClickInterval() + 50);
    click("startUpdate");
    EXPECT_TRUE(find<QWidget>("updateProgress").isVisible());
    EXPECT_EQ(button.text(), QStringLiteral("Start update"));
}

TEST_F(UpdatePageTest, WhatIsGoingOnCanBeReachedAndIsReadOut)
{
    makeReady();
    startAndHold();
    const auto &phase = find<QLabel>("updatePhase");
    EXPECT_TRUE((phase.focusPolicy() & Qt::TabFocus) != 0);
    EXPECT_FALSE(phase.accessibleName().isEmpty());
    ASSERT_TRUE(shows("updatePhase", phase.accessibleDescription()));
    EXPECT_FALSE(phase.accessibleDescription().isEmpty());
    EXPECT_FALSE(phase.accessibleDescription().startsWith(QStringLiteral("0:"))) << "the clock goes on";
    EXPECT_EQ(find<QWidget>("modeStatus").accessibleDescription(),
        QStringLiteral("An update of the MCU's firmware runs."));
}

TEST_F(UpdatePageTest, TheResultIsAlwaysReadOutAsItIsShown)
{
    makeReady();
    firmware = downloads.filePath(QStringLiteral("fw.bin"));
    QFile file(firmware);
    ASSERT_TRUE(file.open(QIODevice::WriteOnly));
    file.write("new firmware");
    file.close();
    startAndHold();
    const auto &result = find<QLabel>("updateResult");
    ASSERT_TRUE(shows("updateResult", QStringLiteral("the service takes it away")));
    EXPECT_EQ(result.accessibleDescription(), result.text());
    service.answerHeld();
    ASSERT_TRUE(shows("updateResult", QStringLiteral("version 3.14")));
    EXPECT_EQ(result.accessibleDescription(), result.text());
    service.silent << QStringLiteral("requestMcuUpdate");
    ASSERT_TRUE(becomes([this] { return find<QWidget>("startUpdate").isEnabled(); }));
    firmware = folder.filePath(QStringLiteral("fw.bin"));
    start();
    ASSERT_TRUE(find<QWidget>("updateProgress").isVisible());
    EXPECT_EQ(result.text(), QString());
    EXPECT_EQ(result.accessibleDescription(), QString());
}

TEST_F(UpdatePageTest, ADropWithoutAFileIsHarmless)
{
    makeReady();
    QWidget *page = find<QWidget>("updateFile").parentWidget();
    QMimeData data;
    data.setData(QStringLiteral("text/uri-list"), {});
    ASSERT_TRUE(data.hasUrls());
    QDragEnterEvent enter({5, 5}, Qt::CopyAction, &data, Qt::LeftButton, Qt::NoModifier);
    enter.ignore();
    QApplication::sendEvent(page, &enter);
    EXPECT_FALSE(enter.isAccepted());
    QDropEvent drop(QPointF(5, 5), Qt::CopyAction, &data, Qt::LeftButton, Qt::NoModifier);
    QApplication::sendEvent(page, &drop);
    EXPECT_EQ(find<QLineEdit>("updateFile").text(), QString());
}

TEST_F(UpdatePageTest, ASingleStepSaysItsOwnReason)
{
    makeReady(QStringLiteral("dock"));
    EXPECT_EQ(text("modeStatus"), QStringLiteral("Enter MCU update mode: Needs a KVane; attached: dock."));
    EXPECT_TRUE(find<QWidget>("requestStartEcUpdate").isEnabled());
    click("disconnect");
    EXPECT_TRUE(shows("modeStatus", QStringLiteral("Not connected.")));
    EXPECT_EQ(text("modeStatus"), QStringLiteral("Not connected."));
}
