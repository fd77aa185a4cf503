#include "device/ec_registers.h"
#include "end_to_end/panel/panel_fixture.h"

#include "simulator/firmware_image.h"

#include <QLineEdit>
#include <QProgressBar>
#include <QSignalSpy>

// Updates of the KVane's MCU, with a flasher that waits until it may end.
namespace {

class PanelUpdate : public tarnTest::PanelFixture
{
protected:
    void SetUp() override
    {
        service.write(QStringLiteral("function/MCU/stm32flash.exe"),
            "#!/bin/sh\ntouch begun\nwhile [ -e \"$0\" ] && [ ! -e go ]; do sleep 0.1; done\n");
        QFile::setPermissions(service.path(QStringLiteral("function/MCU/stm32flash.exe")),
            QFile::ReadOwner | QFile::WriteOwner | QFile::ExeOwner);
        service.write(QStringLiteral("kvane.bin"), "firmware");
        // Downloads of its own for the window too, whose library puts the file there.
        qputenv("HOME", QFile::encodeName(service.path(QString())));
        qputenv("XDG_CONFIG_HOME", QFile::encodeName(service.path(QString())));
    }
    void begin()
    {
        open();
        ASSERT_TRUE(becomesConnected());
        attach(QStringLiteral("kvane"));
        ASSERT_TRUE(becomes([this] { return says(QStringLiteral("accessory"), QStringLiteral("KVane")); }));
        auto &file = find<QLineEdit>(QStringLiteral("updateFile"));
        bring(file);
        file.setText(service.path(QStringLiteral("kvane.bin")));
        ASSERT_TRUE(becomes([this] { return find(QStringLiteral("startUpdate")).isEnabled(); }));
        click(QStringLiteral("startUpdate"));
        // The button asks once more, and a double click is no answer.
        QTest::qWait(QApplication::doubleClickInterval() + 50);
        click(QStringLiteral("startUpdate"));
        ASSERT_TRUE(becomes([this] { return find(QStringLiteral("updateProgress")).isVisible(); }));
    }
    [[nodiscard]] bool flasherBegins()
    {
        return becomes([this] { return QFile::exists(service.path(QStringLiteral("function/MCU/begun"))); });
    }
    // The question is a window of its own, and gone when it has been answered.
    void clickOnQuestion(const QString &name)
    {
        QTest::mouseClick(&find(name), Qt::LeftButton);
        QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
    }
    void letFlasherEnd() { service.write(QStringLiteral("function/MCU/go"), {}); }
    [[nodiscard]] bool ends(const QString &text)
    {
        return becomes([this, text] { return says(QStringLiteral("updateResult"), text); }, 60000);
    }
};

} // namespace

TEST_F(PanelUpdate, IsShownUntilItsEnd)
{
    begin();
    ASSERT_TRUE(flasherBegins());
    EXPECT_FALSE(find(QStringLiteral("powerMode")).isEnabled());
    EXPECT_FALSE(text(QStringLiteral("updatePhase")).isEmpty());
    EXPECT_EQ(
        lastCommand(), QStringLiteral("./tarnctl update-mcu ") + service.path(QStringLiteral("kvane.bin")));
    letFlasherEnd();
    EXPECT_TRUE(ends(QStringLiteral("The KVane's MCU now runs version")))
        << text(QStringLiteral("updateResult")).toStdString();
    EXPECT_TRUE(becomes([this] { return find(QStringLiteral("powerMode")).isEnabled(); }));
    EXPECT_FALSE(find(QStringLiteral("updateProgress")).isVisible());
}

// Another accessory is plugged in meanwhile; the flasher is not cut off, and the window ends the update.
TEST_F(PanelUpdate, EndsAlsoWhenAnotherAccessoryIsPluggedIn)
{
    begin();
    ASSERT_TRUE(flasherBegins());
    attach(QStringLiteral("dock"));
    EXPECT_TRUE(find(QStringLiteral("updateProgress")).isVisible());
    letFlasherEnd();
    EXPECT_TRUE(becomes([this] { return !find(QStringLiteral("updateProgress")).isVisible(); }, 60000));
    EXPECT_FALSE(text(QStringLiteral("updateResult")).isEmpty());
    EXPECT_TRUE(becomes([this] { return says(QStringLiteral("accessory"), QStringLiteral("dock")); }));
    EXPECT_TRUE(becomes([this] { return find(QStringLiteral("dockLight")).isEnabled(); }));
}

TEST_F(PanelUpdate, SaysWhatALostServiceMeansForTheDevice)
{
    begin();
    ASSERT_TRUE(flasherBegins());
    service.kill();
    EXPECT_TRUE(becomes([this] { return !find(QStringLiteral("updateProgress")).isVisible(); }, 60000));
    EXPECT_TRUE(says(QStringLiteral("updateResult"), QStringLiteral("leave the KVane attached")))
        << text(QStringLiteral("updateResult")).toStdString();
    letFlasherEnd();
}

TEST_F(PanelUpdate, IsNotEndedWithTheWindowByMistake)
{
    begin();
    ASSERT_TRUE(flasherBegins());
    EXPECT_FALSE(window->close());
    clickOnQuestion(QStringLiteral("keepOpen"));
    EXPECT_TRUE(window->isVisible());

    const QSignalSpy ended(window.get(), &tarnPanel::MainWindow::ended);
    EXPECT_FALSE(window->close());
    clickOnQuestion(QStringLiteral("closeAfterwards"));
    EXPECT_TRUE(window->isVisible());
    EXPECT_TRUE(window->windowTitle().endsWith(QStringLiteral("closes after the update")));
    EXPECT_TRUE(ended.isEmpty());
    letFlasherEnd();
    EXPECT_TRUE(becomes([&ended] { return !ended.isEmpty(); }, 60000));
    EXPECT_TRUE(says(QStringLiteral("updateResult"), QStringLiteral("The KVane's MCU now runs version")));
    EXPECT_FALSE(window->isVisible());
}

TEST_F(PanelUpdate, EndsForTheWindowWhenItIsToCloseNow)
{
    begin();
    const QSignalSpy ended(window.get(), &tarnPanel::MainWindow::ended);
    EXPECT_FALSE(window->close());
    clickOnQuestion(QStringLiteral("closeNow"));
    EXPECT_FALSE(window->isVisible());
    EXPECT_EQ(ended.count(), 1);
    letFlasherEnd();
}
