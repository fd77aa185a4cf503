#include "gui/popup_table.h"
#include "unit/panel/computer/panel_machine.h"

#include <QLabel>
#include <QPushButton>

using namespace tarnPanel;
using namespace tarnPanelTest;
using namespace tarnSimulator;

namespace {

class AskedWindowTest : public PanelMachine
{
protected:
    void SetUp() override
    {
        PanelMachine::SetUp();
        computer->desktop().setAnswer(Desktop::waits);
        openSide();
        frame = find<QWidget>(QStringLiteral("askedWindow"));
    }

    // As the program that stands in for the windows does it.
    void openWindow(const char *programSwitch)
    {
        computer->desktop().windowOpened(programSwitch);
        ASSERT_TRUE(soon([this] { return staysOpen() && frame->isVisible(); }));
    }

    // The window lives as long as somebody says so.
    bool staysOpen()
    {
        computer->desktop().windowStaysOpen();
        return true;
    }

    [[nodiscard]] QString text(const char *name) const { return find<QLabel>(QLatin1String(name))->text(); }

    QWidget *frame = nullptr;
};

} // namespace

TEST_F(AskedWindowTest, EveryWindowIsShownInItsWords)
{
    EXPECT_FALSE(frame->isVisible());
    for (const tarnGui::Popup &popup : tarnGui::popupTable()) {
        const std::string programSwitch(popup.commandSwitch.begin(), popup.commandSwitch.end());
        openWindow(programSwitch.c_str());
        const QString title =
            QString::fromWCharArray(popup.title.data(), static_cast<qsizetype>(popup.title.size()));
        EXPECT_TRUE(text("askedTitle").contains(title)) << text("askedTitle").toStdString();
        for (const std::wstring_view paragraph : popup.paragraphs) {
            EXPECT_TRUE(text("askedText")
                            .contains(QString::fromWCharArray(
                                paragraph.data(), static_cast<qsizetype>(paragraph.size()))));
        }
        EXPECT_EQ(frame->accessibleDescription(), text("askedText"));
        EXPECT_EQ(frame->accessibleName(), text("askedTitle"));
        const bool isQuestion = popup.kind == tarnGui::PopupKind::Question;
        EXPECT_EQ(find<QPushButton>(QStringLiteral("askedYes")) != nullptr, isQuestion);
        EXPECT_NE(find<QPushButton>(QStringLiteral("askedNo")), nullptr);
        EXPECT_TRUE(side->rect().contains(frame->geometry())) << programSwitch;
        EXPECT_GE(frame->height(), frame->minimumSizeHint().height());
        computer->desktop().windowClosed();
        ASSERT_TRUE(soon([this] { return !frame->isVisible(); }));
    }
    EXPECT_EQ(commandCount(), 0);
}

TEST_F(AskedWindowTest, AnAnswerIsGivenAndTheNextQuestionWaits)
{
    for (const bool isYes : {true, false}) {
        openWindow("--disengaged-graphics");
        const QString answer = isYes ? QStringLiteral("yes") : QStringLiteral("no");
        const int before = commandCount();
        auto *button = find<QPushButton>(isYes ? QStringLiteral("askedYes") : QStringLiteral("askedNo"));
        QTest::mouseClick(button, Qt::LeftButton);
        EXPECT_EQ(computer->desktop().answer(), isYes ? 1 : 0);
        EXPECT_EQ(lastCommand(), QStringLiteral("set gui-answer %1").arg(answer));
        EXPECT_FALSE(button->isEnabled()) << "there is only one answer";
        computer->desktop().windowClosed();
        EXPECT_TRUE(soon([this] { return computer->desktop().answer() == Desktop::waits; }));
        EXPECT_TRUE(soon([this] { return !frame->isVisible(); }));
        EXPECT_EQ(lastCommand(), QStringLiteral("set gui-answer wait"));
        EXPECT_EQ(commandCount(), before + 2);
    }
}

TEST_F(AskedWindowTest, AnAnswerThatWasChosenBeforeStays)
{
    computer->desktop().setAnswer(1);
    openWindow("--disengaged-graphics");
    QTest::mouseClick(find<QPushButton>(QStringLiteral("askedNo")), Qt::LeftButton);
    computer->desktop().windowClosed();
    ASSERT_TRUE(soon([this] { return !frame->isVisible(); }));
    EXPECT_EQ(computer->desktop().answer(), 0);
    EXPECT_EQ(lastCommand(), QStringLiteral("set gui-answer no"));
}

// A message is still open when the key is pressed.
TEST_F(AskedWindowTest, SaysHowManyWindowsOneAnswerIsFor)
{
    openWindow("--graphics-driver-error");
    EXPECT_FALSE(find<QLabel>(QStringLiteral("askedOthers"))->isVisible());
    openWindow("--disengaged-graphics");
    ASSERT_TRUE(soon([this] {
        staysOpen();
        return find<QPushButton>(QStringLiteral("askedYes")) != nullptr;
    }));
    EXPECT_TRUE(find<QLabel>(QStringLiteral("askedOthers"))->isVisible());
    EXPECT_TRUE(text("askedOthers").startsWith(QStringLiteral("2 windows")));
}

// The next one comes before the panel has seen the first one close.
TEST_F(AskedWindowTest, TheNextWindowIsNotAnsweredWithTheAnswerBefore)
{
    openWindow("--disengaged-graphics");
    QTest::mouseClick(find<QPushButton>(QStringLiteral("askedYes")), Qt::LeftButton);
    computer->desktop().windowClosed();
    computer->desktop().windowOpened("--disengaged-graphics");
    EXPECT_TRUE(soon([this] {
        staysOpen();
        auto *yes = find<QPushButton>(QStringLiteral("askedYes"));
        return computer->desktop().answer() == Desktop::waits && yes != nullptr && yes->isEnabled();
    }));
    EXPECT_TRUE(frame->isVisible());
}

TEST_F(AskedWindowTest, IsReachedByTabFromTheDrawing)
{
    openWindow("--disengaged-graphics");
    side->activateWindow();
    ASSERT_TRUE(QTest::qWaitForWindowActive(side.get()));
    find<QWidget>(QStringLiteral("machineDrawing"))->setFocus();
    for (const char *next : {"askedText", "askedYes", "askedNo"}) {
        QTest::keyClick(QApplication::focusWidget(), Qt::Key_Tab);
        ASSERT_NE(QApplication::focusWidget(), nullptr);
        EXPECT_EQ(QApplication::focusWidget()->objectName(), QLatin1String(next));
    }
}

TEST_F(AskedWindowTest, KeepsNothingOfAnotherMachine)
{
    openWindow("--disengaged-graphics");
    QTest::mouseClick(find<QPushButton>(QStringLiteral("askedYes")), Qt::LeftButton);
    const int before = commandCount();
    std::filesystem::remove(stateFile.toStdU16String());
    ASSERT_TRUE(soon([this] { return !side->hasComputer(); }));
    makeMachine();
    ASSERT_TRUE(soon([this] { return side->hasComputer(); }));
    EXPECT_FALSE(frame->isVisible());
    EXPECT_EQ(commandCount(), before);
}

TEST_F(AskedWindowTest, AnUnknownWindowIsShownToo)
{
    openWindow("--something-new");
    EXPECT_TRUE(text("askedText").contains(QStringLiteral("--something-new")));
}
