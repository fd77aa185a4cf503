#include "device/ec_registers.h"
#include "end_to_end/panel/panel_fixture.h"

#include "panel/session/session_bar.h"

#include <QComboBox>
#include <QFile>
#include <QFileDialog>
#include <QProcess>

// The service comes, goes and comes again while the window is open.
using namespace tarnDeviceInfos;

namespace {

using PanelLife = tarnTest::PanelFixture;

} // namespace

TEST_F(PanelLife, StartsTheServiceAndEndsItWithTheWindow)
{
    open(true);
    EXPECT_TRUE(says(QStringLiteral("serviceText"), QStringLiteral("started for this window")));
    ASSERT_TRUE(becomesConnected());
    EXPECT_FALSE(find(QStringLiteral("startService")).isVisible());
    const qint64 process = window->startedService().processId();
    ASSERT_GT(process, 0);
    EXPECT_TRUE(QFile::exists(QStringLiteral("/proc/%1").arg(process)));
    close();
    EXPECT_FALSE(QFile::exists(QStringLiteral("/proc/%1").arg(process)));
}

TEST_F(PanelLife, SeesAKilledServiceAndItsReturn)
{
    open(true);
    ASSERT_TRUE(becomesConnected());
    attach(QStringLiteral("dock"));
    ASSERT_TRUE(becomes([this] { return says(QStringLiteral("accessory"), QStringLiteral("dock")); }));
    ASSERT_TRUE(becomes([this] { return find(QStringLiteral("dockLight")).isEnabled(); }));
    QProcess::execute(QStringLiteral("kill"),
        {QStringLiteral("-9"), QString::number(window->startedService().processId())});
    service.noteKill();
    ASSERT_TRUE(becomes([this] { return find(QStringLiteral("connect")).isEnabled(); }));
    EXPECT_FALSE(find(QStringLiteral("dockLight")).isEnabled());
    ASSERT_TRUE(
        becomes([this] { return says(QStringLiteral("serviceText"), QStringLiteral("was killed")); }));
    const QString stateThen = text(QStringLiteral("connectionState"));

    click(QStringLiteral("startService"));
    ASSERT_TRUE(becomesConnected()) << stateThen.toStdString();
    EXPECT_TRUE(becomes([this] { return find(QStringLiteral("dockLight")).isEnabled(); }));
    EXPECT_TRUE(becomes([this] { return says(QStringLiteral("accessory"), QStringLiteral("dock, read")); }));
    close();
}

// What the session lists does the same once more, with the service of the window, from which it has
// disconnected.
TEST_F(PanelLife, TheScriptOfTheSessionDoesTheSame)
{
    open(true);
    ASSERT_TRUE(becomesConnected());
    attach(QStringLiteral("dock"));
    ASSERT_TRUE(becomes([this] { return find(QStringLiteral("dockLight")).isEnabled(); }));
    choose(QStringLiteral("powerMode"), Qt::Key_L);
    ASSERT_TRUE(becomes([this] { return peek(EC_TARN_POWER_MODE) == TARN_POWER_MODE_LOW; }));
    const QString script = service.path(QStringLiteral("session.sh"));
    find<tarnPanel::SessionBar>(QStringLiteral("sessionBar")).saveAs();
    Q_EMIT find<QFileDialog>(QStringLiteral("saveSession")).fileSelected(script);
    ASSERT_TRUE(QFile::exists(script));
    click(QStringLiteral("disconnect"));

    computer().detach();
    computer().setTarnPowerMode(TARN_POWER_MODE_HIGH);
    for (const char *tool : {"tarnctl", "tarnsim"})
        ASSERT_TRUE(QFile::link(
            tarnTest::builtProgram(QString::fromLatin1(tool)), service.path(QString::fromLatin1(tool))));
    QProcess shell;
    shell.start(script, QStringList());
    ASSERT_TRUE(becomes([&shell] { return shell.state() == QProcess::NotRunning; }, 60000));
    EXPECT_EQ(shell.exitCode(), 0) << shell.readAllStandardError().toStdString();
    EXPECT_TRUE(computer().isAttached());
    EXPECT_EQ(peek(EC_TARN_POWER_MODE), TARN_POWER_MODE_LOW);
    close();
}
