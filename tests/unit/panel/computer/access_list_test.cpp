#include "panel/computer/access_list.h"
#include "unit/panel/computer/panel_machine.h"

#include <QApplication>
#include <QClipboard>
#include <QComboBox>
#include <QElapsedTimer>
#include <QLabel>
#include <QLineEdit>
#include <QPushButton>
#include <QScrollBar>
#include <QTableView>

using namespace tarnPanel;
using namespace tarnPanelTest;
using namespace tarnDeviceInfos;

namespace {

class AccessListTest : public PanelMachine
{
protected:
    void SetUp() override
    {
        PanelMachine::SetUp();
        openSide();
        table = find<QTableView>(QStringLiteral("registers"));
    }

    [[nodiscard]] int rows() const { return table->model()->rowCount(); }
    [[nodiscard]] QString state() const { return find<QLabel>(QStringLiteral("registerState"))->text(); }

    void clickRow(int row) const
    {
        const QPoint place = table->visualRect(table->model()->index(row, AccessModel::Kind)).center();
        QTest::mouseClick(table->viewport(), Qt::LeftButton, {}, place);
    }

    QTableView *table = nullptr;
};

} // namespace

TEST_F(AccessListTest, FollowsTheRegistersAsTheyAreAccessed)
{
    EXPECT_TRUE(state().contains(QStringLiteral("No register")));
    access(200);
    ASSERT_TRUE(soon([this] { return rows() == 200; }));
    const auto *bar = table->verticalScrollBar();
    EXPECT_TRUE(soon([bar] { return bar->maximum() > 0 && bar->value() == bar->maximum(); }));
    side->resize(440, 700);
    EXPECT_TRUE(soon([bar] { return bar->value() == bar->maximum(); })) << "after a change of size";
    access(50);
    ASSERT_TRUE(soon([this] { return rows() == 250; }));
    EXPECT_EQ(bar->value(), bar->maximum());
}

TEST_F(AccessListTest, AClickIntoTheListPausesIt)
{
    access(3);
    ASSERT_TRUE(soon([this] { return rows() == 3; }));
    clickRow(1);
    auto *pause = find<QPushButton>(QStringLiteral("registerPause"));
    EXPECT_TRUE(pause->isChecked());
    access(5);
    ASSERT_TRUE(soon([this] { return state().contains(QStringLiteral("5 more since")); }));
    EXPECT_EQ(rows(), 3);
    QTest::mouseClick(pause, Qt::LeftButton);
    EXPECT_EQ(rows(), 8);
}

TEST_F(AccessListTest, AnyWayOfScrollingPausesIt)
{
    access(500);
    ASSERT_TRUE(soon([this] { return rows() == 500; }));
    auto *bar = table->verticalScrollBar();
    ASSERT_TRUE(soon([bar] { return bar->value() == bar->maximum() && bar->maximum() > 0; }));
    EXPECT_FALSE(find<QPushButton>(QStringLiteral("registerPause"))->isChecked());
    // Beside the handle.
    QTest::mouseClick(bar, Qt::LeftButton, {}, QPoint(bar->width() / 2, bar->height() / 4));
    EXPECT_TRUE(find<QPushButton>(QStringLiteral("registerPause"))->isChecked());
    const int seen = bar->value();
    EXPECT_LT(seen, bar->maximum());
    access(10);
    ASSERT_TRUE(soon([this] { return state().contains(QStringLiteral("10 more since")); }));
    EXPECT_EQ(bar->value(), seen);
}

TEST_F(AccessListTest, CopiesTheSelectedRows)
{
    access(1, EC_POWERMODE_PL1);
    access(1, EC_POWERMODE_PL2);
    ASSERT_TRUE(soon([this] { return rows() == 2; }));
    clickRow(0);
    QTest::keyClick(table, Qt::Key_A, Qt::ControlModifier);
    QTest::keyClick(table, Qt::Key_C, Qt::ControlModifier);
    EXPECT_EQ(QApplication::clipboard()->text(),
        QStringLiteral("1\t5.000\tread\t0x04A8 EC_POWERMODE_PL1\t0x1C (28)\n"
                       "2\t5.000\tread\t0x04A9 EC_POWERMODE_PL2\t0x1C (28)\n"));
}

TEST_F(AccessListTest, TheFilterIsRemembered)
{
    access(4, EC_POWERMODE_PL1);
    access(7, EC_POWERMODE_PL2);
    ASSERT_TRUE(soon([this] { return rows() == 11; }));
    QTest::keyClicks(find<QLineEdit>(QStringLiteral("registerFilter")), QStringLiteral("pl2"));
    EXPECT_EQ(rows(), 7);
    QTest::keyClick(find<QComboBox>(QStringLiteral("registerKinds")), Qt::Key_End);
    EXPECT_EQ(rows(), 0);
    side.reset();
    openSide();
    table = find<QTableView>(QStringLiteral("registers"));
    EXPECT_EQ(find<QLineEdit>(QStringLiteral("registerFilter"))->text(), QStringLiteral("pl2"));
    EXPECT_EQ(rows(), 0);
    QTest::keyClick(find<QComboBox>(QStringLiteral("registerKinds")), Qt::Key_Home);
    EXPECT_EQ(rows(), 7);
    find<QLineEdit>(QStringLiteral("registerFilter"))->clear();
    EXPECT_EQ(rows(), 11);
}

TEST_F(AccessListTest, StaysFastWhenItIsFull)
{
    auto *list = side->findChild<AccessList *>();
    const std::vector<tarnSimulator::RegisterAccess> many(
        AccessModel::capacity, {1, 20, tarnSimulator::AccessKind::Read, EC_POWERMODE_PL1, 1});
    list->append(many, 0);
    ASSERT_EQ(rows(), static_cast<int>(AccessModel::capacity));
    const std::vector<tarnSimulator::RegisterAccess> some(many.begin(), many.begin() + 50);
    constexpr int frames = 40;
    QElapsedTimer timer;
    timer.start();
    for (int frame = 0; frame < frames; ++frame) {
        list->append(some, 0);
        EXPECT_FALSE(list->grab().isNull());
    }
    // One or two milliseconds each; as many as in the pause between two looks would fall behind.
    EXPECT_LT(timer.elapsed() / frames, 50);
    RecordProperty("frameMs", std::to_string(static_cast<double>(timer.elapsed()) / frames));
}

TEST_F(AccessListTest, SaysWhenAccessesWereLost)
{
    access(1);
    ASSERT_TRUE(soon([this] { return rows() == 1; }));
    EXPECT_FALSE(state().contains(QStringLiteral("overwritten")));
    access(static_cast<int>(tarnSimulator::logEntries) + 10);
    ASSERT_TRUE(soon([this] { return rows() > 1; }));
    EXPECT_TRUE(state().contains(QStringLiteral("10 were overwritten"))) << state().toStdString();
}
