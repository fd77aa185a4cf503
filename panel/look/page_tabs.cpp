#include "panel/look/page_tabs.h"

#include <QApplication>
#include <QTabBar>

namespace tarnPanel {

PageTabs::PageTabs(QWidget *parent)
    : QTabWidget(parent)
{
    connect(this, &QTabWidget::currentChanged, this, &PageTabs::takeFocus);
}

// Not while the window is being made, and not from a control of the page that has changed.
void PageTabs::takeFocus()
{
    if (isVisible() && !isAncestorOf(QApplication::focusWidget()))
        tabBar()->setFocus();
}

} // namespace tarnPanel
