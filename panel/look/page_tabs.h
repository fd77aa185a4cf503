#pragma once

#include <QTabWidget>

namespace tarnPanel {

// Pages of which one is shown. The letter of a page's tab brings the focus to the tab as well, so that the
// next Tab goes into the page.
class PageTabs : public QTabWidget
{
    Q_OBJECT

public:
    explicit PageTabs(QWidget *parent = nullptr);

private:
    void takeFocus();
};

} // namespace tarnPanel
