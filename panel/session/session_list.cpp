#include "panel/session/session_list.h"

#include "panel/session/session.h"

#include <QAction>
#include <QClipboard>
#include <QDialogButtonBox>
#include <QFontDatabase>
#include <QFontMetrics>
#include <QGuiApplication>
#include <QHeaderView>
#include <QPushButton>
#include <QScrollBar>
#include <QTableView>
#include <QVBoxLayout>

#include <algorithm>

namespace tarnPanel {

SessionList::SessionList(Session &session, QWidget *parent)
    : QDialog(parent)
    , table(new QTableView)
{
    setWindowTitle(QStringLiteral("Commands of this session"));
    setObjectName(QStringLiteral("sessionList"));
    table->setModel(&session);
    table->setAccessibleName(QStringLiteral("Commands of this session"));
    table->setSelectionBehavior(QAbstractItemView::SelectRows);
    table->setShowGrid(false);
    table->setTabKeyNavigation(false);
    table->verticalHeader()->hide();
    table->horizontalHeader()->setStretchLastSection(true);
    table->setFont(QFontDatabase::systemFont(QFontDatabase::FixedFont));
    table->resizeColumnToContents(Session::Time);
    table->scrollToBottom();
    connect(&session, &Session::rowsAboutToBeInserted, this, &SessionList::noteEnd);
    connect(&session, &Session::rowsInserted, this, &SessionList::followEnd, Qt::QueuedConnection);

    auto *copyAction = new QAction(QStringLiteral("Copy"), table);
    copyAction->setShortcut(QKeySequence::Copy);
    copyAction->setShortcutContext(Qt::WidgetWithChildrenShortcut);
    connect(copyAction, &QAction::triggered, this, &SessionList::copy);
    table->addAction(copyAction);
    table->setContextMenuPolicy(Qt::ActionsContextMenu);

    auto *buttons = new QDialogButtonBox(QDialogButtonBox::Close);
    auto *copyButton = buttons->addButton(QStringLiteral("&Copy"), QDialogButtonBox::ActionRole);
    copyButton->setObjectName(QStringLiteral("copyCommands"));
    copyButton->setAccessibleDescription(
        QStringLiteral("Copies the marked commands, or all where none is marked"));
    auto *saveButton = buttons->addButton(QStringLiteral("&Save as a script…"), QDialogButtonBox::ActionRole);
    saveButton->setObjectName(QStringLiteral("saveCommands"));
    connect(copyButton, &QPushButton::clicked, this, &SessionList::copy);
    connect(saveButton, &QPushButton::clicked, this, &SessionList::saveWanted);
    connect(buttons, &QDialogButtonBox::rejected, this, &SessionList::close);

    auto *layout = new QVBoxLayout(this);
    layout->addWidget(table);
    layout->addWidget(buttons);
    const QFontMetrics metrics = fontMetrics();
    resize(metrics.averageCharWidth() * 80, metrics.height() * 24);
}

// Who has scrolled up reads there.
void SessionList::noteEnd()
{
    const QScrollBar *bar = table->verticalScrollBar();
    isAtEnd = bar->value() == bar->maximum();
}

void SessionList::followEnd()
{
    if (isAtEnd)
        table->scrollToBottom();
}

void SessionList::copy()
{
    QModelIndexList rows = table->selectionModel()->selectedRows(Session::Text);
    std::sort(rows.begin(), rows.end());
    QStringList lines;
    for (const QModelIndex &row : rows)
        lines << row.data().toString();
    for (int row = 0; rows.isEmpty() && row < table->model()->rowCount(); ++row)
        lines << table->model()->index(row, Session::Text).data().toString();
    QGuiApplication::clipboard()->setText(lines.join(u'\n'));
}

} // namespace tarnPanel
