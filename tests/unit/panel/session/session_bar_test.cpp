#include "panel/session/session_bar.h"

#include "panel/session/session.h"

#include <QClipboard>
#include <QDialog>
#include <QFileDialog>
#include <QGuiApplication>
#include <QLineEdit>
#include <QMessageBox>
#include <QPushButton>
#include <QTableView>
#include <QTemporaryDir>
#include <QTest>

#include <gtest/gtest.h>

using namespace tarnPanel;

namespace {

class SessionBarTest : public ::testing::Test
{
protected:
    void SetUp() override { bar.show(); }

    template <typename Widget> Widget *find(const char *name) const
    {
        return bar.findChild<Widget *>(QString::fromLatin1(name));
    }
    QPushButton *button(const char *name) const { return find<QPushButton>(name); }
    void attachDock()
    {
        session.add({QStringLiteral("tarnsim"), {QStringLiteral("attach"), QStringLiteral("dock")}});
    }
    static QString copied() { return QGuiApplication::clipboard()->text(); }

    Session session;
    SessionBar bar {session, QStringLiteral("/opt/tarn")};
};

} // namespace

TEST_F(SessionBarTest, ShowsTheLastCommandAndCopiesIt)
{
    EXPECT_FALSE(button("copyCommand")->isEnabled());
    EXPECT_FALSE(button("allCommands")->isEnabled());
    attachDock();
    session.add({QStringLiteral("tarnctl"), {QStringLiteral("getMcuVersion")}});
    EXPECT_EQ(find<QLineEdit>("lastCommand")->text(), QStringLiteral("./tarnctl getMcuVersion"));
    QTest::mouseClick(button("copyCommand"), Qt::LeftButton);
    EXPECT_EQ(copied(), QStringLiteral("./tarnctl getMcuVersion"));
    EXPECT_TRUE(button("allCommands")->text().contains(QStringLiteral("2")));
}

TEST_F(SessionBarTest, ListsAllCommandsInOneWindow)
{
    attachDock();
    session.add({QStringLiteral("tarnsim"), {QStringLiteral("detach")}});
    QTest::mouseClick(button("allCommands"), Qt::LeftButton);
    QTest::mouseClick(button("allCommands"), Qt::LeftButton);
    const auto lists = bar.window()->findChildren<QDialog *>(QStringLiteral("sessionList"));
    ASSERT_EQ(lists.size(), 1);
    QTest::mouseClick(
        lists.front()->findChild<QPushButton *>(QStringLiteral("copyCommands")), Qt::LeftButton);
    EXPECT_EQ(copied(), QStringLiteral("./tarnsim attach dock\n./tarnsim detach"));
    auto *table = lists.front()->findChild<QTableView *>();
    table->selectRow(1);
    ASSERT_TRUE(QTest::qWaitForWindowActive(lists.front()));
    table->setFocus();
    QTest::keySequence(table, QKeySequence::Copy);
    EXPECT_EQ(copied(), QStringLiteral("./tarnsim detach"));
}

TEST_F(SessionBarTest, SavesAScriptThatCanBeRun)
{
    const QTemporaryDir folder;
    const QString file = folder.filePath(QStringLiteral("session.sh"));
    attachDock();
    bar.saveAs();
    auto *dialog = bar.window()->findChild<QFileDialog *>(QStringLiteral("saveSession"));
    ASSERT_NE(dialog, nullptr);
    EXPECT_EQ(QFileInfo(dialog->selectedFiles().value(0)).fileName(), QStringLiteral("session.sh"));
    Q_EMIT dialog->fileSelected(file);
    QFile script(file);
    ASSERT_TRUE(script.open(QIODevice::ReadOnly));
    EXPECT_TRUE(script.readAll().endsWith("cd /opt/tarn || exit 1\n./tarnsim attach dock\n"));
    EXPECT_TRUE(script.permissions() & QFile::ExeOwner);
}

TEST_F(SessionBarTest, SaysWhyItCannotBeSaved)
{
    attachDock();
    const QString file = QStringLiteral("/nowhere/at/all.sh");
    EXPECT_TRUE(SessionBar::save(session, QStringLiteral("/opt"), file)
                    .startsWith(QStringLiteral("The session cannot be saved in /nowhere/at/all.sh: ")));
    bar.saveAs();
    Q_EMIT bar.window()->findChild<QFileDialog *>(QStringLiteral("saveSession"))->fileSelected(file);
    const auto *box = bar.window()->findChild<QMessageBox *>();
    ASSERT_NE(box, nullptr);
    EXPECT_TRUE(box->isVisible());
    EXPECT_TRUE(box->text().contains(file));
}
