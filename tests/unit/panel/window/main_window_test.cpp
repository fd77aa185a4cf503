#include "panel/window/main_window.h"

#include "panel/look/theme.h"
#include "simulator/machine_state_file.h"

#include <QAbstractButton>
#include <QAccessible>
#include <QAction>
#include <QApplication>
#include <QLabel>
#include <QMenuBar>
#include <QSettings>
#include <QSignalSpy>
#include <QSplitter>
#include <QTabBar>
#include <QTemporaryDir>
#include <QTest>

#include <gtest/gtest.h>

using namespace tarnPanel;

namespace {

// A window without any service, whose computer is a file that is not there.
class MainWindowTest : public ::testing::Test
{
protected:
    [[nodiscard]] WindowOptions options() const
    {
        return {
            folder.filePath(QStringLiteral("machine.state")), QStringLiteral("tarnPanelTest"), folder.path()};
    }

    void makeComputer()
    {
        std::string error;
        computer = tarnSimulator::MachineStateFile::open(
            options().stateFile.toStdString(), tarnSimulator::MachineStateFile::Missing::IsCreated, error);
        ASSERT_TRUE(computer.has_value()) << error;
    }

    const QTemporaryDir folder;
    std::optional<tarnSimulator::MachineStateFile> computer;
    QSettings settings {folder.filePath(QStringLiteral("settings.ini")), QSettings::IniFormat};
};

} // namespace

TEST_F(MainWindowTest, FitsASmallScreen)
{
    MainWindow window(options(), settings);
    window.show();
    window.resize(1, 1);
    EXPECT_EQ(window.size(), QSize(900, 600));
    EXPECT_LE(window.centralWidget()->minimumSizeHint().width(), 900);
    EXPECT_LE(
        window.centralWidget()->minimumSizeHint().height() + window.menuWidget()->sizeHint().height(), 600);
}

TEST_F(MainWindowTest, LeavesTheWindowToTheClientWithoutAComputer)
{
    MainWindow window(options(), settings);
    window.show();
    const auto width = [&window](const char *side) {
        return window.findChild<QWidget *>(QString::fromLatin1(side))->width();
    };
    EXPECT_LT(width("computerSide") * 3, width("clientSide"));
    makeComputer();
    ASSERT_TRUE(QTest::qWaitFor([&] { return width("computerSide") * 3 > width("clientSide") * 2; }, 20000));
}

TEST_F(MainWindowTest, RemembersSizeAndHalves)
{
    makeComputer();
    {
        MainWindow window(options(), settings);
        window.show();
        window.resize(1010, 710);
        window.findChild<QSplitter *>()->setSizes({450, 550});
        window.close();
    }
    MainWindow window(options(), settings);
    window.show();
    EXPECT_EQ(window.size(), QSize(1010, 710));
    const QList<int> sizes = window.findChild<QSplitter *>()->sizes();
    EXPECT_LT(sizes.at(0), sizes.at(1));
}

TEST_F(MainWindowTest, RemembersTheAppearance)
{
    {
        MainWindow window(options(), settings);
        window.findChild<QAction *>(QStringLiteral("appearance_light"))->trigger();
        EXPECT_FALSE(isDark(QApplication::palette()));
        window.findChild<QAction *>(QStringLiteral("appearance_dark"))->trigger();
        EXPECT_TRUE(isDark(QApplication::palette()));
    }
    setAppearance(Appearance::Light);
    const MainWindow window(options(), settings);
    EXPECT_TRUE(isDark(QApplication::palette()));
    EXPECT_TRUE(window.findChild<QAction *>(QStringLiteral("appearance_dark"))->isChecked());
}

// Half the screen would show nothing, or a control nothing to a screen reader, without any other test
// failing.
TEST_F(MainWindowTest, ShowsSomethingOnBothSidesInEveryLook)
{
    makeComputer();
    MainWindow window(options(), settings);
    window.show();
    for (const char *look : {"light", "dark", "system"}) {
        window.findChild<QAction *>(QStringLiteral("appearance_") + QString::fromLatin1(look))->trigger();
        for (const char *side : {"computerSide", "clientSide"}) {
            const QImage picture = window.findChild<QWidget *>(QString::fromLatin1(side))->grab().toImage();
            QSet<QRgb> colours;
            for (int y = 0; y < picture.height(); ++y) {
                for (int x = 0; x < picture.width(); ++x)
                    colours.insert(picture.pixel(x, y));
            }
            EXPECT_GT(colours.size(), 50) << side << ' ' << look;
        }
    }
}

TEST_F(MainWindowTest, EveryControlHasANameForTheScreenReader)
{
    makeComputer();
    MainWindow window(options(), settings);
    window.show();
    int controls = 0;
    for (QWidget *widget : window.findChildren<QWidget *>()) {
        const bool isOfPopup = widget->window() != &window;
        if ((widget->focusPolicy() & Qt::TabFocus) == 0 || widget->focusProxy() != nullptr || isOfPopup)
            continue;
        QAccessibleInterface *seen = QAccessible::queryAccessibleInterface(widget);
        ASSERT_NE(seen, nullptr);
        EXPECT_FALSE(seen->text(QAccessible::Name).isEmpty())
            << widget->metaObject()->className() << ' ' << widget->objectName().toStdString();
        ++controls;
    }
    EXPECT_GT(controls, 50);
}

TEST_F(MainWindowTest, NoTwoControlsHaveTheSameKey)
{
    makeComputer();
    MainWindow window(options(), settings);
    window.show();
    QMap<QString, QStringList> users;
    const auto note = [&users](const QString &text) {
        const QKeySequence key = QKeySequence::mnemonic(text);
        if (!key.isEmpty())
            users[key.toString()] << text;
    };
    for (const QAction *action : window.menuBar()->actions())
        note(action->text());
    for (const QWidget *widget : window.findChildren<QWidget *>()) {
        if (const auto *button = qobject_cast<const QAbstractButton *>(widget))
            note(button->text());
        const auto *label = qobject_cast<const QLabel *>(widget);
        if (label != nullptr && label->buddy() != nullptr)
            note(label->text());
        const auto *bar = qobject_cast<const QTabBar *>(widget);
        for (int tab = 0; bar != nullptr && tab < bar->count(); ++tab)
            note(bar->tabText(tab));
    }
    EXPECT_GT(users.size(), 15);
    for (const QStringList &texts : users)
        EXPECT_EQ(texts.size(), 1) << texts.join(QStringLiteral(", ")).toStdString();
}

TEST_F(MainWindowTest, HasEndedWhenItIsClosedAndNothingRuns)
{
    MainWindow window(options(), settings);
    const QSignalSpy ended(&window, &MainWindow::ended);
    window.show();
    EXPECT_EQ(ended.count(), 0);
    window.close();
    EXPECT_GE(ended.count(), 1);
}
