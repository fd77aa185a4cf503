#include "bench/figures.h"
#include "bench/live_memory.h"
#include "load/figure_table.h"
#include "load/load_scale.h"
#include "panel/client/message_log.h"
#include "panel/computer/machine_watch.h"
#include "panel/window/main_window.h"
#include "simulator/machine_state_file.h"
#include "simulator/register_log.h"
#include "support/time_bound.h"

#include <QElapsedTimer>
#include <QSettings>
#include <QTableView>
#include <QTemporaryDir>
#include <QTest>

#include <gtest/gtest.h>

using namespace tarnPanel;
using tarnBench::liveMemory;
using tarnBench::LiveMemory;
using tarnSimulator::MachineStateFile;

namespace {

// Full traffic: 50 accesses a second, looked at ten times a second, and as many messages as looks.
constexpr int accessesPerLook = 5;
constexpr std::uint16_t someRegister = 0x06A0;
constexpr int fullRows = 100000;
constexpr int looksOfAMinute = 600;
constexpr int looksOfAnHour = 60 * looksOfAMinute;

class PanelLoad : public ::testing::Test
{
protected:
    void SetUp() override
    {
        std::string error;
        machine = MachineStateFile::open(folder.filePath(QStringLiteral("machine.state")).toStdString(),
            MachineStateFile::Missing::IsCreated, error);
        ASSERT_TRUE(machine.has_value()) << error;
        settings =
            std::make_unique<QSettings>(folder.filePath(QStringLiteral("panel.ini")), QSettings::IniFormat);
        const WindowOptions options {folder.filePath(QStringLiteral("machine.state")),
            QStringLiteral("tarnPanelLoad"), folder.path(), false};
        window = std::make_unique<MainWindow>(options, *settings);
        window->resize(1400, 900);
        window->show();
        watch = window->findChild<MachineWatch *>();
        messages = window->findChild<MessageLog *>();
        ASSERT_NE(watch, nullptr);
        ASSERT_NE(messages, nullptr);
        watch->look();
    }

    void access(int count)
    {
        tarnSimulator::RegisterLog log(machine->state().log);
        for (int done = 0; done < count; ++done)
            log.append(tarnSimulator::AccessKind::Read, someRegister, static_cast<std::uint8_t>(done), ++now);
    }
    // One look with all that follows from it, until it is on the screen.
    double frameMs()
    {
        access(accessesPerLook);
        messages->add(MessageKind::Notification, QStringLiteral("getTarnBatteryNum %1").arg(++said));
        QElapsedTimer timer;
        timer.start();
        watch->look();
        QApplication::processEvents();
        window->repaint();
        return static_cast<double>(timer.nsecsElapsed()) / 1e6;
    }
    void fill()
    {
        constexpr int atOnce = 4000; // the machine's own log keeps a little more
        for (int row = 0; row <= fullRows + atOnce; row += atOnce) {
            access(atOnce);
            watch->look();
        }
        for (int row = 0; row <= fullRows; ++row)
            messages->add(MessageKind::Notification, QStringLiteral("getTarnBatteryNum %1").arg(++said));
        ASSERT_TRUE(QTest::qWaitFor([this] { return messages->rowCount() > fullRows / 2; }, 60000));
        for (int look = 0; look < looksOfAMinute; ++look)
            static_cast<void>(frameMs());
    }
    [[nodiscard]] const QAbstractItemModel &model(const char *table) const
    {
        return *window->findChild<QTableView *>(QString::fromLatin1(table))->model();
    }

    const QTemporaryDir folder;
    std::optional<MachineStateFile> machine;
    std::unique_ptr<QSettings> settings;
    std::unique_ptr<MainWindow> window;
    MachineWatch *watch = nullptr;
    MessageLog *messages = nullptr;
    std::uint64_t now = 0;
    int said = 0;
};

} // namespace

// With both lists full. The long form is an hour.
TEST_F(PanelLoad, FollowsFullTrafficWithoutFallingBehindOrGrowing)
{
    fill();
    const LiveMemory before = liveMemory();
    tarnBench::Figures frames;
    const int looks = tarnLoad::scaled(looksOfAMinute, looksOfAnHour);
    for (int look = 0; look < looks; ++look)
        frames.add(frameMs());
    const LiveMemory after = liveMemory();

    const QAbstractItemModel &registers = model("registers");
    EXPECT_LE(registers.rowCount(), fullRows);
    EXPECT_GT(registers.rowCount(), fullRows * 9 / 10);
    const std::uint64_t last = registers.index(registers.rowCount() - 1, 0).data().toULongLong();
    EXPECT_EQ(last, tarnSimulator::RegisterLog(machine->state().log).end());
    EXPECT_LE(messages->rowCount(), fullRows);
    EXPECT_TRUE(QTest::qWaitFor(
        [this] { return messages->at(messages->rowCount() - 1).text.endsWith(QString::number(said)); },
        20000));

    // Qt's own lists of rows double what they hold once, by 4 MiB in all. A picture that is made anew for
    // each frame would fill the cache of pictures with 10 MiB.
    const double grownMib = static_cast<double>(after.bytes - before.bytes) / 1048576;
    EXPECT_LT(grownMib, 8);
    EXPECT_LT(frames.median(), tarnTest::allowedMs(30));
    tarnLoad::report(QStringLiteral("panel, frames at full traffic"),
        QStringLiteral("%1, ms median %2, 99 % %3, largest %4; %5 MiB live, grown by %6")
            .arg(frames.count())
            .arg(frames.median(), 0, 'f', 1)
            .arg(frames.quantile(0.99), 0, 'f', 1)
            .arg(frames.largest(), 0, 'f', 1)
            .arg(static_cast<double>(after.bytes) / 1048576, 0, 'f', 1)
            .arg(grownMib, 0, 'f', 2));
}
