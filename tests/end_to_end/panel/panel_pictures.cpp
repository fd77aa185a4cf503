#include "end_to_end/panel/panel_fixture.h"

#include "simulator/firmware_image.h"

#include <QComboBox>
#include <QFont>
#include <QFontDatabase>
#include <QLineEdit>
#include <QSlider>

// Makes the pictures of the pages; not part of the suite, scripts/picture_panel runs it. TARN_PICTURES names
// the folder.
namespace {

class PanelPictures : public tarnTest::PanelFixture
{
protected:
    void SetUp() override
    {
        // Where it is installed: it resembles the fonts of other systems.
        const QString font = QStringLiteral("Open Sans");
        if (QFontDatabase::families().contains(font))
            QApplication::setFont(QFont(font, 10));
    }

    void begin(const QString &appearance, QSize size)
    {
        open();
        ASSERT_TRUE(becomesConnected());

        window->findChild<QAction *>(QStringLiteral("appearance_") + appearance)->trigger();
        window->resize(size);
    }
    void take(const QString &name)
    {
        window->setFocus();
        QTest::qWait(1500); // until plots and ages have moved on
        const QString file = qEnvironmentVariable("TARN_PICTURES") + u'/' + name + QStringLiteral(".png");
        ASSERT_TRUE(window->grab().save(file)) << file.toStdString();
    }
    void takeControl(Qt::Key profile)
    {
        click(QStringLiteral("powerProfile-first"));
        ASSERT_TRUE(becomes([this] { return find(QStringLiteral("powerProfile")).isEnabled(); }));
        choose(QStringLiteral("powerProfile"), profile);
        ASSERT_TRUE(becomes([this] { return find(QStringLiteral("powerProfile")).isEnabled(); }));
    }
};

} // namespace

TEST_F(PanelPictures, GraphicsBox)
{
    begin(QStringLiteral("light"), {1400, 900});
    attach(QStringLiteral("graphics"));
    ASSERT_TRUE(service.waitForLog(QStringLiteral("Successed to active graphics.")));
    takeControl(Qt::Key_H);
    QTest::qWait(20000);
    choose(QStringLiteral("powerProfile"), Qt::Key_L);
    QTest::qWait(15000);
    choose(QStringLiteral("graphicsLight"), Qt::Key_C);
    ASSERT_TRUE(becomes(
        [this] { return find<QComboBox>(QStringLiteral("graphicsLight")).currentText() == u"cyan"; }));
    take(QStringLiteral("panel"));
}

TEST_F(PanelPictures, Update)
{
    service.write(QStringLiteral("function/MCU/stm32flash.exe"), "#!/bin/sh\nsleep 8\n");
    QFile::setPermissions(service.path(QStringLiteral("function/MCU/stm32flash.exe")),
        QFile::ReadOwner | QFile::WriteOwner | QFile::ExeOwner);
    service.write(QStringLiteral("kvane-2.06.bin"), "firmware");
    qputenv("HOME", QFile::encodeName(service.path(QString())));
    qputenv("XDG_CONFIG_HOME", QFile::encodeName(service.path(QString())));
    begin(QStringLiteral("dark"), {1400, 900});
    attach(QStringLiteral("kvane"));
    ASSERT_TRUE(becomes([this] { return find(QStringLiteral("kvaneLight")).isEnabled(); }));
    auto &light = find<QSlider>(QStringLiteral("kvaneLight"));
    bring(light);
    light.setFocus();
    QTest::keyClick(&light, Qt::Key_End);
    ASSERT_TRUE(becomes([this] { return computer().kvaneLed() == 255; }));
    auto &file = find<QLineEdit>(QStringLiteral("updateFile"));
    bring(file);
    file.setText(service.path(QStringLiteral("kvane-2.06.bin")));
    ASSERT_TRUE(becomes([this] { return find(QStringLiteral("startUpdate")).isEnabled(); }));
    click(QStringLiteral("startUpdate"));
    QTest::qWait(QApplication::doubleClickInterval() + 50);
    click(QStringLiteral("startUpdate"));
    QTest::qWait(9000);
    take(QStringLiteral("panel-update"));
    ASSERT_TRUE(becomes([this] { return !find(QStringLiteral("updateProgress")).isVisible(); }, 60000));
}

TEST_F(PanelPictures, Question)
{
    begin(QStringLiteral("light"), {900, 600});
    computer().desktop().setAnswer(tarnSimulator::Desktop::waits);
    attach(QStringLiteral("graphics"));
    ASSERT_TRUE(service.waitForLog(QStringLiteral("Successed to active graphics.")));
    ASSERT_TRUE(
        becomes([this] { return says(QStringLiteral("smartChargingStatus"), QStringLiteral(", read")); }));
    click(QStringLiteral("gpuKey"));
    ASSERT_TRUE(becomes([this] { return find(QStringLiteral("askedWindow")).isVisible(); }));
    take(QStringLiteral("panel-question"));
    click(QStringLiteral("askedNo"));
}

TEST_F(PanelPictures, Faults)
{
    begin(QStringLiteral("dark"), {1200, 800});
    attach(QStringLiteral("dock"));
    ASSERT_TRUE(becomes([this] { return find(QStringLiteral("dockLight")).isEnabled(); }));
    ASSERT_TRUE(
        becomes([this] { return says(QStringLiteral("dockLightStatus"), QStringLiteral(", read")); }));
    click(QStringLiteral("fault-mailbox-stuck"));
    click(QStringLiteral("fault-slow"));
    take(QStringLiteral("panel-faults"));
}

TEST_F(PanelPictures, LostService)
{
    begin(QStringLiteral("light"), {1200, 800});
    attach(QStringLiteral("dock"));
    ASSERT_TRUE(becomes([this] { return find(QStringLiteral("dockLight")).isEnabled(); }));
    for (const char *read : {"dockLightStatus", "smartChargingStatus"})
        ASSERT_TRUE(becomes([this, read] { return says(QLatin1String(read), QStringLiteral(", read")); }));
    service.kill();
    ASSERT_TRUE(becomes([this] { return find(QStringLiteral("connect")).isEnabled(); }));
    take(QStringLiteral("panel-lost"));
}
