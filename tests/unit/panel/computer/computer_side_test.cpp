#include "panel/look/theme.h"
#include "unit/panel/computer/panel_machine.h"

#include <QLabel>
#include <QSplitter>
#include <QTabWidget>

#include <algorithm>
#include <filesystem>

using namespace tarnPanel;
using namespace tarnPanelTest;

namespace {

using ComputerSideTest = PanelMachine;

// What a user changes something with, but for parts of larger controls.
bool isControl(const QWidget *widget)
{
    const QWidget *parent = widget->parentWidget();
    const bool isPart = parent->inherits("QAbstractSpinBox") || parent->inherits("QComboBox")
        || parent->inherits("QLineEdit") || parent->inherits("QTableView") || parent->inherits("QTabBar");
    if (isPart || widget->inherits("QScrollBar"))
        return false;
    constexpr const char *kinds[] = {"QAbstractButton", "QComboBox", "QLineEdit", "QAbstractSpinBox",
        "QAbstractSlider", "QTableView", "tarnPanel::MachineDrawing"};
    return std::ranges::any_of(kinds, [widget](const char *kind) { return widget->inherits(kind); });
}

} // namespace

TEST_F(ComputerSideTest, FitsIntoHalfOfTheSmallestWindow)
{
    setAppearance(Appearance::Light);
    openSide();
    EXPECT_LE(side->minimumSizeHint().width(), 440);
    EXPECT_LE(side->minimumSizeHint().height(), 520);
    ASSERT_TRUE(soon([this] { return side->hasComputer(); }));
    EXPECT_TRUE(find<QWidget>(QStringLiteral("machineDrawing"))->isVisible());
}

TEST_F(ComputerSideTest, SaysThatThereIsNoMachineAndFindsItAgain)
{
    openSide();
    ASSERT_TRUE(side->hasComputer());
    auto *text = find<QLabel>(QStringLiteral("noMachine"));
    EXPECT_FALSE(text->isVisible());

    QList<bool> changes;
    QObject::connect(
        side.get(), &ComputerSide::hasComputerChanged, side.get(), [&changes](bool has) { changes << has; });
    std::filesystem::remove(stateFile.toStdU16String());
    ASSERT_TRUE(soon([this] { return !side->hasComputer(); }));
    EXPECT_TRUE(text->isVisible());
    EXPECT_TRUE(text->text().contains(stateFile)) << text->text().toStdString();
    EXPECT_TRUE(text->text().contains(QStringLiteral("./run")));
    EXPECT_FALSE(find<QWidget>(QStringLiteral("machineDrawing"))->isVisible());

    makeMachine();
    EXPECT_TRUE(soon([this] { return side->hasComputer(); }));
    EXPECT_FALSE(text->isVisible());
    EXPECT_EQ(changes, QList<bool>({false, true}));
}

TEST_F(ComputerSideTest, SaysWhyAFileCannotBeUsed)
{
    QFile broken(folder.filePath(QStringLiteral("broken.state")));
    ASSERT_TRUE(broken.open(QIODevice::WriteOnly));
    broken.write(QByteArray(100, 'x'));
    broken.close();
    const ComputerSide half(broken.fileName(), session, settings);
    EXPECT_FALSE(half.hasComputer());
    const auto *text = half.findChild<QLabel *>(QStringLiteral("noMachine"));
    EXPECT_TRUE(text->text().contains(QStringLiteral("is not the state of a simulated computer")))
        << text->text().toStdString();
}

TEST_F(ComputerSideTest, TellsWhenAServiceUsesThisMachine)
{
    access(3);
    openSide();
    int seen = 0;
    QObject::connect(side.get(), &ComputerSide::serviceSeen, side.get(), [&seen] { ++seen; });
    QTest::qWait(300);
    EXPECT_EQ(seen, 0) << "an access of before tells nothing";
    access(1);
    EXPECT_TRUE(soon([&seen] { return seen > 0; }));
}

TEST_F(ComputerSideTest, RestsWhileNobodySeesIt)
{
    openSide();
    side->hide();
    int seen = 0;
    QObject::connect(side.get(), &ComputerSide::serviceSeen, side.get(), [&seen] { ++seen; });
    access(1);
    QTest::qWait(400);
    EXPECT_EQ(seen, 0);
    side->show();
    EXPECT_TRUE(soon([&seen] { return seen > 0; }));
    side->showMinimized();
    seen = 0;
    access(1);
    QTest::qWait(400);
    EXPECT_EQ(seen, 0) << "minimised";
    side->showNormal();
    EXPECT_TRUE(soon([&seen] { return seen > 0; }));
}

TEST_F(ComputerSideTest, RemembersSizesAndTab)
{
    openSide({500, 800});
    auto *splitter = side->findChild<QSplitter *>();
    splitter->setSizes({250, 300, 130, 120});
    const QList<int> before = splitter->sizes();
    find<QTabWidget>(QStringLiteral("computerTabs"))->setCurrentIndex(1);
    side.reset();
    openSide({500, 800});
    EXPECT_EQ(side->findChild<QSplitter *>()->sizes(), before);
    EXPECT_EQ(find<QTabWidget>(QStringLiteral("computerTabs"))->currentIndex(), 1);
}

TEST_F(ComputerSideTest, EveryControlHasNameAndDescriptionAndIsReachedByTab)
{
    openSide();
    const QList<QWidget *> all = side->findChildren<QWidget *>();
    const auto controls = std::ranges::count_if(all, isControl);
    EXPECT_GT(controls, 80);
    for (const QWidget *widget : all) {
        if (!isControl(widget))
            continue;
        const std::string name = widget->objectName().toStdString();
        EXPECT_FALSE(name.empty()) << widget->metaObject()->className();
        const bool hasText = !widget->property("text").toString().isEmpty();
        EXPECT_TRUE(hasText || !widget->accessibleName().isEmpty()) << name;
        const bool opensMore = qobject_cast<const QTabWidget *>(widget->parentWidget()) != nullptr;
        EXPECT_TRUE(opensMore || !widget->accessibleDescription().isEmpty()) << name;
        EXPECT_TRUE(widget->focusPolicy() & Qt::TabFocus) << name;
    }
}
