#include "panel/client/command_text.h"
#include "unit/panel/client/client_side_fixture.h"

#include <QAbstractItemView>
#include <QCompleter>

using namespace panelTest;
using tarnPanel::completionsOf;
using tarnPanel::typedText;

TEST(CommandTextTest, SplitsALine)
{
    EXPECT_EQ(typedText(QStringLiteral("  setX  a b ")).name, QStringLiteral("setX"));
    EXPECT_EQ(typedText(QStringLiteral("  setX  a b ")).data, QStringLiteral("a b"));
    EXPECT_TRUE(typedText(QStringLiteral("getX")).data.isNull());
}

TEST(CommandTextTest, ObjectsToWhatTheServiceDoesNotTake)
{
    const auto objection = [](const QString &line) {
        return tarnPanel::objectionTo(typedText(line));
    };
    EXPECT_EQ(objection(QStringLiteral("setDockLedStatus on")), QString());
    EXPECT_TRUE(objection(QStringLiteral("setDockLedStatus On")).contains(QStringLiteral("\"on\"")));
    EXPECT_TRUE(objection(QStringLiteral("setDockLedStatus")).contains(QStringLiteral("needs data")));
    EXPECT_TRUE(objection(QStringLiteral("nonsense")).contains(QStringLiteral("no command \"nonsense\"")));
}

TEST(CommandTextTest, CompletesNamesAndThenTheirWords)
{
    EXPECT_TRUE(completionsOf(QStringLiteral("set")).contains(QStringLiteral("setDockLedStatus")));
    EXPECT_EQ(completionsOf(QStringLiteral("setDockLedStatus ")),
        (QStringList {QStringLiteral("setDockLedStatus on"), QStringLiteral("setDockLedStatus off")}));
}

namespace {

class CommandLineTest : public ClientSideTest
{
protected:
    void type(const QString &line)
    {
        auto &edit = find<QLineEdit>("command");
        edit.clear();
        QTest::keyClicks(&edit, line);
    }
    void enter()
    {
        QTest::keyClick(&find<QLineEdit>("command"), Qt::Key_Return);
        QCoreApplication::processEvents();
    }
};

} // namespace

TEST_F(CommandLineTest, OffersWhatMatches)
{
    makeAndConnect();
    type(QStringLiteral("dockled"));
    QCompleter *completer = find<QLineEdit>("command").completer();
    EXPECT_EQ(completer->completionCount(), 2);
    type(QStringLiteral("setDockLedStatus o"));
    EXPECT_EQ(completer->completionCount(), 2);
    EXPECT_TRUE(text("commandSummary").startsWith(QStringLiteral("Switches the dock's LED.")));
}

TEST_F(CommandLineTest, SendsAndShowsTheAnswer)
{
    makeAndConnect();
    type(QStringLiteral("getMcuVersion"));
    enter();
    ASSERT_TRUE(gets(QStringLiteral("getMcuVersion")));
    EXPECT_TRUE(logs(QStringLiteral("Answer"), QStringLiteral("\"cmd\":\"getMcuVersion\"")));
    EXPECT_EQ(commands(), QStringList {command(QStringLiteral("getMcuVersion"))});
    EXPECT_EQ(find<QLineEdit>("command").text(), QString());
}

TEST_F(CommandLineTest, ObjectsButSendsAnyway)
{
    makeAndConnect();
    EXPECT_FALSE(find<QWidget>("sendAnyway").isVisible());
    type(QStringLiteral("setDockLedStatus ON"));
    enter();
    EXPECT_TRUE(text("commandSummary").contains(QStringLiteral("written exactly so")));
    EXPECT_FALSE(service.requests.contains(QStringLiteral("setDockLedStatus ON")));
    ASSERT_TRUE(find<QWidget>("sendAnyway").isVisible());
    click("sendAnyway");
    ASSERT_TRUE(gets(QStringLiteral("setDockLedStatus ON")));
    EXPECT_EQ(commands(), QStringList {command(QStringLiteral("--force setDockLedStatus ON"))});
    EXPECT_FALSE(find<QWidget>("sendAnyway").isVisible());
}

TEST_F(CommandLineTest, RemembersWhatWasSent)
{
    makeAndConnect();
    for (const char *line : {"getMcuVersion", "getHardwareVersion"}) {
        type(QString::fromLatin1(line));
        enter();
    }
    auto &edit = find<QLineEdit>("command");
    QTest::keyClick(&edit, Qt::Key_Up);
    EXPECT_EQ(edit.text(), QStringLiteral("getHardwareVersion"));
    QTest::keyClick(&edit, Qt::Key_Up);
    QTest::keyClick(&edit, Qt::Key_Up);
    EXPECT_EQ(edit.text(), QStringLiteral("getMcuVersion"));
    QTest::keyClick(&edit, Qt::Key_Down);
    QTest::keyClick(&edit, Qt::Key_Down);
    EXPECT_EQ(edit.text(), QString());
}

TEST_F(CommandLineTest, SaysWhyNothingIsSent)
{
    make();
    type(QStringLiteral("getMcuVersion"));
    EXPECT_FALSE(find<QWidget>("send").isEnabled());
    EXPECT_TRUE(text("commandSummary").startsWith(QStringLiteral("Not connected.")));
    enter();
    EXPECT_EQ(find<QLineEdit>("command").text(), QStringLiteral("getMcuVersion"));
    EXPECT_TRUE(commands().isEmpty());
}

TEST_F(CommandLineTest, ACompletionThatIsSentLeavesTheLineEmpty)
{
    makeAndConnect();
    side->activateWindow();
    auto &edit = find<QLineEdit>("command");
    edit.setFocus();
    ASSERT_TRUE(becomes([&edit] { return edit.hasFocus(); }));
    type(QStringLiteral("mcuvers"));
    QAbstractItemView *popup = edit.completer()->popup();
    ASSERT_TRUE(becomes([popup] { return popup->isVisible(); }));
    QTest::keyClick(popup, Qt::Key_Down);
    ASSERT_EQ(edit.text(), QStringLiteral("getMcuVersion"));
    QTest::keyClick(popup, Qt::Key_Return);
    ASSERT_TRUE(gets(QStringLiteral("getMcuVersion")));
    QCoreApplication::processEvents();
    EXPECT_EQ(edit.text(), QString());
    EXPECT_FALSE(popup->isVisible());
    EXPECT_EQ(commands(), QStringList {command(QStringLiteral("getMcuVersion"))});
}

TEST_F(CommandLineTest, AnObjectionStaysWhileTheLineIsTheSame)
{
    makeAndConnect();
    type(QStringLiteral("setDockLedStatus ON"));
    enter();
    ASSERT_TRUE(find<QWidget>("sendAnyway").isVisible());
    attach(QStringLiteral("k_vane"), QStringLiteral("KVane"));
    EXPECT_TRUE(find<QWidget>("sendAnyway").isVisible());
    EXPECT_TRUE(text("commandSummary").contains(QStringLiteral("written exactly so")));
    EXPECT_TRUE(
        find<QWidget>("command").accessibleDescription().contains(QStringLiteral("written exactly so")));
    click("disconnect");
    ASSERT_TRUE(shows("commandSummary", QStringLiteral("Not connected.")));
    EXPECT_FALSE(find<QWidget>("sendAnyway").isVisible());
    click("connect");
    ASSERT_TRUE(shows("commandSummary", QStringLiteral("written exactly so")));
    QTest::keyClick(&find<QLineEdit>("command"), Qt::Key_Backspace);
    EXPECT_FALSE(find<QWidget>("sendAnyway").isVisible());
    EXPECT_FALSE(text("commandSummary").contains(QStringLiteral("written exactly so")));
}
