#include "panel/client/message_log.h"
#include "panel/client/message_view.h"
#include "unit/panel/client/client_side_fixture.h"

#include <QClipboard>
#include <QScrollBar>

using namespace panelTest;
using tarnPanel::MessageKind;
using tarnPanel::MessageLog;
using tarnPanel::MessageView;

namespace {

class MessageViewTest : public ::testing::Test
{
protected:
    MessageViewTest()
        : settings(folder.filePath(QStringLiteral("panel.ini")), QSettings::IniFormat)
        , view(std::make_unique<MessageView>(log, settings))
        , table(view->findChild<QTableView *>())
    {
        view->resize(440, 200);
        view->show();
    }

    void add(int count, const QString &text = QStringLiteral("message %1"))
    {
        for (int i = 0; i < count; ++i)
            log.add(i % 2 == 0 ? MessageKind::Sent : MessageKind::Answer, text.arg(i));
    }

    [[nodiscard]] bool hasRows(int rows) const
    {
        return QTest::qWaitFor([this, rows] { return table->model()->rowCount() == rows; }, patienceMs);
    }

    [[nodiscard]] bool isAtEnd() const
    {
        return table->verticalScrollBar()->value() == table->verticalScrollBar()->maximum();
    }

    QTemporaryDir folder;
    QSettings settings;
    MessageLog log;
    std::unique_ptr<MessageView> view;
    QTableView *table;
};

} // namespace

TEST_F(MessageViewTest, ShowsTimeKindAndText)
{
    log.add(MessageKind::Garbage, QStringLiteral("one\ntwo"));
    ASSERT_TRUE(hasRows(1));
    const QAbstractItemModel *model = table->model();
    EXPECT_EQ(model->index(0, MessageLog::Time).data().toString().size(), 12);
    EXPECT_EQ(model->index(0, MessageLog::Kind).data().toString(), QStringLiteral("Garbage"));
    EXPECT_EQ(model->index(0, MessageLog::Text).data().toString(), QStringLiteral("one two"));
    EXPECT_EQ(model->index(0, MessageLog::Text).data(Qt::ToolTipRole).toString(), QStringLiteral("one\ntwo"));
}

TEST_F(MessageViewTest, KeepsTheLastHundredThousandAndFollowsThem)
{
    add(MessageLog::capacity + 2500);
    ASSERT_TRUE(QTest::qWaitFor(
        [this] {
            return log.rowCount() > 0
                && log.at(log.rowCount() - 1).text
                == QStringLiteral("message %1").arg(MessageLog::capacity + 2499);
        },
        patienceMs));
    EXPECT_LE(log.rowCount(), MessageLog::capacity);
    EXPECT_GE(log.rowCount(), MessageLog::capacity - MessageLog::removedAtOnce);
    EXPECT_EQ(table->model()->rowCount(), log.rowCount());
    EXPECT_GT(table->verticalScrollBar()->maximum(), 0);
    EXPECT_TRUE(isAtEnd());
}

TEST_F(MessageViewTest, AHugeTextIsShortenedAndSaysSo)
{
    log.add(MessageKind::Garbage, QString(1000000, u'x'));
    ASSERT_TRUE(hasRows(1));
    EXPECT_LT(log.at(0).text.size(), MessageLog::longestText + 100);
    EXPECT_TRUE(log.at(0).text.endsWith(QStringLiteral("(4096 of 1000000 characters kept)")));
}

TEST_F(MessageViewTest, ManyHugeTextsStayBounded)
{
    const QString huge(MessageLog::longestText, u'x');
    const int most = static_cast<int>(MessageLog::mostCharacters / MessageLog::longestText);
    for (int i = 0; i < most + 2 * MessageLog::removedAtOnce; ++i)
        log.add(MessageKind::Other, huge);
    EXPECT_LE(log.rowCount(), most);
    EXPECT_GE(log.rowCount(), most - MessageLog::removedAtOnce);
}

TEST_F(MessageViewTest, AResizeKeepsTheEnd)
{
    add(100);
    ASSERT_TRUE(hasRows(100));
    view->resize(440, 120);
    EXPECT_TRUE(QTest::qWaitFor([this] { return table->height() < 120 && isAtEnd(); }, patienceMs));
}

TEST_F(MessageViewTest, FollowsTheEndUnlessSomebodyReads)
{
    add(100);
    ASSERT_TRUE(hasRows(100));
    EXPECT_TRUE(isAtEnd());
    table->verticalScrollBar()->setValue(0);
    add(100);
    ASSERT_TRUE(hasRows(200));
    EXPECT_EQ(table->verticalScrollBar()->value(), 0);
    table->scrollToBottom();
    add(100);
    ASSERT_TRUE(hasRows(300));
    EXPECT_TRUE(isAtEnd());
    table->selectRow(299);
    add(100);
    ASSERT_TRUE(hasRows(400));
    // The table notices later how long it has become.
    EXPECT_TRUE(QTest::qWaitFor([this] { return !isAtEnd(); }, patienceMs));
}

TEST_F(MessageViewTest, SaysThatItIsPausedAndGoesOnWhenAsked)
{
    add(100);
    ASSERT_TRUE(hasRows(100));
    const auto *state = view->findChild<QLabel *>(QStringLiteral("messageState"));
    auto *resume = view->findChild<QAbstractButton *>(QStringLiteral("resumeMessages"));
    ASSERT_TRUE(state != nullptr && resume != nullptr);
    EXPECT_EQ(state->text(), QStringLiteral("100 shown of 100."));
    EXPECT_FALSE(resume->isVisible());
    QTest::mouseClick(table->viewport(), Qt::LeftButton, {}, {20, 20});
    EXPECT_EQ(state->text(), QStringLiteral("Paused, 0 more since."));
    EXPECT_TRUE(resume->isVisible());
    add(30);
    ASSERT_TRUE(hasRows(130));
    EXPECT_EQ(state->text(), QStringLiteral("Paused, 30 more since."));
    QTest::mouseClick(resume, Qt::LeftButton);
    EXPECT_FALSE(table->selectionModel()->hasSelection());
    EXPECT_TRUE(isAtEnd());
    EXPECT_EQ(state->text(), QStringLiteral("130 shown of 130."));
    EXPECT_FALSE(resume->isVisible());
    add(10);
    ASSERT_TRUE(hasRows(140));
    EXPECT_TRUE(isAtEnd());
    table->verticalScrollBar()->setValue(3);
    EXPECT_EQ(state->text(), QStringLiteral("Paused, 0 more since."));
    view->findChild<QLineEdit *>(QStringLiteral("messageText"))->setText(QStringLiteral("message 9"));
    EXPECT_TRUE(isAtEnd());
    EXPECT_EQ(state->text(), QStringLiteral("13 shown of 140."));
}

TEST_F(MessageViewTest, IsNoLongerPausedWhenThereIsNothingToRead)
{
    add(100);
    ASSERT_TRUE(hasRows(100));
    const auto *state = view->findChild<QLabel *>(QStringLiteral("messageState"));
    ASSERT_NE(state, nullptr);
    table->selectRow(50);
    EXPECT_TRUE(state->text().startsWith(QStringLiteral("Paused")));
    QTest::mouseClick(view->findChild<QAbstractButton *>(QStringLiteral("clearMessages")), Qt::LeftButton);
    EXPECT_EQ(state->text(), QStringLiteral("No message yet."));
    table->verticalScrollBar()->setValue(0);
    add(100);
    ASSERT_TRUE(hasRows(100));
    EXPECT_TRUE(isAtEnd());
}

TEST_F(MessageViewTest, WhatSomebodyReadsStaysWhenTheOldestLeave)
{
    add(MessageLog::capacity);
    ASSERT_TRUE(hasRows(MessageLog::capacity));
    const auto topText = [this] {
        return table->model()->index(table->rowAt(1), MessageLog::Text).data().toString();
    };
    table->verticalScrollBar()->setValue(5000);
    ASSERT_EQ(topText(), QStringLiteral("message 5000"));
    add(MessageLog::removedAtOnce);
    ASSERT_TRUE(
        QTest::qWaitFor([this] { return log.at(0).text == QStringLiteral("message 1000"); }, patienceMs));
    QCoreApplication::processEvents();
    EXPECT_EQ(topText(), QStringLiteral("message 5000"));
    EXPECT_FALSE(isAtEnd());
}

TEST_F(MessageViewTest, FiltersAndRemembersThat)
{
    add(10);
    ASSERT_TRUE(hasRows(10));
    auto *kind = view->findChild<QComboBox *>(QStringLiteral("messageKind"));
    kind->setCurrentIndex(kind->findText(QStringLiteral("Answer")));
    EXPECT_TRUE(hasRows(5));
    view->findChild<QLineEdit *>(QStringLiteral("messageText"))->setText(QStringLiteral("AGE 7"));
    EXPECT_TRUE(hasRows(1));

    view = std::make_unique<MessageView>(log, settings);
    table = view->findChild<QTableView *>();
    EXPECT_EQ(table->model()->rowCount(), 1);
    EXPECT_EQ(view->findChild<QComboBox *>()->currentText(), QStringLiteral("Answer"));
}

TEST_F(MessageViewTest, CopiesTheSelectedRowsAndClears)
{
    add(10);
    ASSERT_TRUE(hasRows(10));
    view->activateWindow();
    table->setFocus();
    ASSERT_TRUE(QTest::qWaitFor([this] { return table->hasFocus(); }, patienceMs));
    table->selectRow(3);
    QTest::keyClick(table, Qt::Key_Down, Qt::ShiftModifier);
    QTest::keyClick(table, Qt::Key_C, Qt::ControlModifier);
    const QStringList lines = QGuiApplication::clipboard()->text().split(u'\n');
    ASSERT_EQ(lines.size(), 3);
    EXPECT_TRUE(lines.at(0).endsWith(QStringLiteral("\tAnswer\tmessage 3")));
    EXPECT_TRUE(lines.at(1).endsWith(QStringLiteral("\tSent\tmessage 4")));
    QTest::mouseClick(view->findChild<QAbstractButton *>(QStringLiteral("clearMessages")), Qt::LeftButton);
    EXPECT_EQ(log.rowCount(), 0);
}

namespace {

using EveryMessageTest = ClientSideTest;

} // namespace

TEST_F(EveryMessageTest, IsShownWithItsKind)
{
    makeAndConnect();
    EXPECT_TRUE(logs(QStringLiteral("Sent"), QStringLiteral("getTarnPowerMode")));
    EXPECT_TRUE(logs(QStringLiteral("Answer"), QStringLiteral("\"data\":\"balance\"")));
    EXPECT_TRUE(logs(QStringLiteral("Answer"), QStringLiteral("getTarnBatteryNum")));
    service.notify(QStringLiteral("getTarnBatteryNum"), QStringLiteral("79"));
    EXPECT_TRUE(logs(QStringLiteral("Notification"), QStringLiteral("getTarnBatteryNum 79")));
    service.notify(QStringLiteral("somethingElse"), QStringLiteral("x"));
    EXPECT_TRUE(logs(QStringLiteral("Other"), QStringLiteral("somethingElse")));
    service.write("%%%%");
    service.notify(QStringLiteral("somethingElse"), QStringLiteral("y"));
    EXPECT_TRUE(logs(QStringLiteral("Garbage"), QStringLiteral("%%%%")));
    service.silent << QStringLiteral("setTarnPowerMode");
    choose("powerMode", QStringLiteral("low"));
    ASSERT_TRUE(gets(QStringLiteral("setTarnPowerMode low")));
    service.drop();
    EXPECT_TRUE(logs(QStringLiteral("Not answered"), QStringLiteral("setTarnPowerMode low")));
}
