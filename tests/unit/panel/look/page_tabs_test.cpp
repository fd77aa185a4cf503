#include "panel/look/page_tabs.h"

#include <QLineEdit>
#include <QTest>
#include <QVBoxLayout>

#include <gtest/gtest.h>

namespace {

class PageTabsTest : public ::testing::Test
{
protected:
    PageTabsTest()
    {
        auto *lines = new QVBoxLayout(&window);
        lines->addWidget(outside);
        lines->addWidget(tabs);
        tabs->addTab(new QLineEdit, QStringLiteral("&First"));
        tabs->addTab(inside, QStringLiteral("&Second"));
    }

    QWidget window;
    QLineEdit *outside = new QLineEdit;
    QLineEdit *inside = new QLineEdit;
    tarnPanel::PageTabs *tabs = new tarnPanel::PageTabs;
};

TEST_F(PageTabsTest, TheLetterOfATabBringsTheFocusThere)
{
    window.show();
    window.activateWindow();
    ASSERT_TRUE(QTest::qWaitForWindowActive(&window));
    outside->setFocus();
    QTest::keyClick(&window, Qt::Key_S, Qt::AltModifier);
    EXPECT_EQ(tabs->currentIndex(), 1);
    EXPECT_TRUE(tabs->isAncestorOf(window.focusWidget()));
    QTest::keyClick(window.focusWidget(), Qt::Key_Tab);
    EXPECT_EQ(window.focusWidget(), inside);
}

TEST_F(PageTabsTest, TheFocusStaysWhereItIsWhenThePageIsChosenBeforeTheWindowIsShown)
{
    outside->setFocus();
    tabs->setCurrentIndex(1);
    EXPECT_EQ(window.focusWidget(), outside);
}

} // namespace
