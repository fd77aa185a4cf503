#include "panel/client/message_view.h"

#include "panel/client/message_filter.h"
#include "panel/client/message_log.h"
#include "panel/look/tone_label.h"

#include <QAction>
#include <QBoxLayout>
#include <QClipboard>
#include <QComboBox>
#include <QGuiApplication>
#include <QHeaderView>
#include <QLineEdit>
#include <QPushButton>
#include <QScrollBar>
#include <QSettings>
#include <QTableView>

#include <algorithm>

namespace tarnPanel {

namespace {

const QString kindKey = QStringLiteral("client/messages/kind");
const QString textKey = QStringLiteral("client/messages/text");

} // namespace

MessageView::MessageView(MessageLog &messageLog, QSettings &panelSettings, QWidget *parent)
    : QWidget(parent)
    , log(messageLog)
    , settings(panelSettings)
    , filter(new MessageFilter(log, this))
    , kind(new QComboBox)
    , text(new QLineEdit)
    , table(new QTableView)
    , state(new ToneLabel(QStringLiteral("messageState")))
    , resuming(new QPushButton(QStringLiteral("Resume")))
{
    auto *layout = new QVBoxLayout(this);
    layout->setContentsMargins({});
    addFilters();
    addTable();
    addState();
    addActions();
    listen();
    useFilters();
}

void MessageView::addFilters()
{
    auto *line = new QHBoxLayout;
    static_cast<QVBoxLayout *>(layout())->addLayout(line);
    kind->setObjectName(QStringLiteral("messageKind"));
    kind->setAccessibleName(QStringLiteral("Kind of messages shown"));
    kind->setToolTip(QStringLiteral("Which kind of messages the table shows"));
    kind->addItem(QStringLiteral("All kinds"));
    for (int i = 0; i < messageKindCount; ++i)
        kind->addItem(nameOf(static_cast<MessageKind>(i)), i);
    kind->setCurrentIndex(std::max(0, kind->findText(settings.value(kindKey).toString())));
    text->setObjectName(QStringLiteral("messageText"));
    text->setAccessibleName(QStringLiteral("Text that messages must contain"));
    text->setPlaceholderText(QStringLiteral("only with this text"));
    text->setClearButtonEnabled(true);
    text->setText(settings.value(textKey).toString());
    auto *label = new QLabel(QStringLiteral("&Messages"));
    label->setBuddy(kind);
    line->addWidget(label);
    line->addWidget(kind);
    line->addWidget(text, 1);
    connect(kind, &QComboBox::currentIndexChanged, this, &MessageView::useFilters);
    connect(text, &QLineEdit::textChanged, this, &MessageView::useFilters);
}

void MessageView::addTable()
{
    layout()->addWidget(table);
    table->setObjectName(QStringLiteral("messages"));
    table->setAccessibleName(QStringLiteral("Messages"));
    table->setAccessibleDescription(
        QStringLiteral("What was sent to the service and what came from it, the newest last"));
    table->setModel(filter);
    table->setSelectionBehavior(QAbstractItemView::SelectRows);
    table->setEditTriggers(QAbstractItemView::NoEditTriggers);
    table->setTabKeyNavigation(false);
    table->setWordWrap(false);
    table->setAlternatingRowColors(true);
    table->setShowGrid(false);
    table->verticalHeader()->hide();
    table->verticalHeader()->setSectionResizeMode(QHeaderView::Fixed);
    table->horizontalHeader()->setStretchLastSection(true);
    table->horizontalHeader()->setHighlightSections(false);
    fitToFont();
}

void MessageView::addState()
{
    resuming->setObjectName(QStringLiteral("resumeMessages"));
    resuming->setAccessibleDescription(
        QStringLiteral("Shows the newest messages again; none is selected afterwards"));
    resuming->setToolTip(resuming->accessibleDescription());
    // The table must not move under the pointer when the button appears.
    QSizePolicy policy = resuming->sizePolicy();
    policy.setRetainSizeWhenHidden(true);
    resuming->setSizePolicy(policy);
    auto *line = new QHBoxLayout;
    line->addWidget(state, 1);
    line->addWidget(resuming);
    static_cast<QVBoxLayout *>(layout())->addLayout(line);
    connect(resuming, &QPushButton::clicked, this, &MessageView::resume);
}

void MessageView::listen()
{
    // The value changes when somebody scrolls; a table that only grows leaves it where it is.
    QScrollBar *bar = table->verticalScrollBar();
    connect(bar, &QScrollBar::valueChanged, this, [this, bar](int value) {
        follows = value == bar->maximum();
        showState();
    });
    connect(bar, &QScrollBar::rangeChanged, this, [this, bar](int, int most) {
        follows = follows || bar->value() == most;
        followEnd();
        showState();
    });
    connect(table->selectionModel(), &QItemSelectionModel::selectionChanged, this, [this] {
        followEnd();
        showState();
    });
    connect(
        filter, &QAbstractItemModel::rowsInserted, this, [this](const QModelIndex &, int first, int last) {
            newRows += last - first + 1;
            followEnd();
        });
    connect(filter, &QAbstractItemModel::rowsRemoved, this,
        [this](const QModelIndex &, int first, int last) { keepPlace(first, last); });
    connect(filter, &QAbstractItemModel::modelReset, this, &MessageView::resume);
    // After the filter, which has connected itself before.
    connect(&log, &QAbstractItemModel::rowsInserted, this, &MessageView::showState);
    connect(&log, &QAbstractItemModel::rowsRemoved, this, &MessageView::showState);
}

void MessageView::addActions()
{
    auto *copy = new QAction(QStringLiteral("&Copy selected messages"), this);
    copy->setShortcut(QKeySequence::Copy);
    copy->setShortcutContext(Qt::WidgetWithChildrenShortcut);
    copy->setObjectName(QStringLiteral("copyMessages"));
    connect(copy, &QAction::triggered, this, &MessageView::copySelected);
    table->addAction(copy);
    table->setContextMenuPolicy(Qt::ActionsContextMenu);
    auto *clear = new QPushButton(QStringLiteral("Clear"));
    clear->setObjectName(QStringLiteral("clearMessages"));
    clear->setAccessibleDescription(QStringLiteral("Removes all messages from the table"));
    clear->setToolTip(clear->accessibleDescription());
    connect(clear, &QPushButton::clicked, &log, &MessageLog::clear);
    static_cast<QBoxLayout *>(layout()->itemAt(0)->layout())->addWidget(clear);
}

void MessageView::copySelected()
{
    QModelIndexList rows = table->selectionModel()->selectedRows();
    std::ranges::sort(rows, {}, &QModelIndex::row);
    QStringList lines;
    for (const QModelIndex &row : std::as_const(rows))
        lines << filter->line(row.row());
    if (!lines.isEmpty())
        QGuiApplication::clipboard()->setText(lines.join(u'\n') + u'\n');
}

void MessageView::useFilters()
{
    // What was shown may be gone with the next filter.
    follows = true;
    table->clearSelection();
    const QVariant wanted = kind->currentData();
    filter->setKind(
        wanted.isValid() ? std::optional(static_cast<MessageKind>(wanted.toInt())) : std::nullopt);
    filter->setText(text->text());
    settings.setValue(kindKey, kind->currentText());
    settings.setValue(textKey, text->text());
    table->scrollToBottom();
    showState();
}

void MessageView::fitToFont()
{
    const QFontMetrics metrics(table->font());
    const int margin = 2 * metrics.averageCharWidth();
    table->verticalHeader()->setMinimumSectionSize(1);
    table->verticalHeader()->setDefaultSectionSize(metrics.height() + metrics.height() / 4);
    table->horizontalHeader()->resizeSection(
        MessageLog::Time, metrics.horizontalAdvance(QStringLiteral("00:00:00.000")) + margin);
    table->horizontalHeader()->resizeSection(
        MessageLog::Kind, metrics.horizontalAdvance(nameOf(MessageKind::NotAnswered)) + margin);
}

void MessageView::changeEvent(QEvent *event)
{
    QWidget::changeEvent(event);
    if (event->type() == QEvent::FontChange || event->type() == QEvent::StyleChange)
        fitToFont();
}

bool MessageView::isPaused() const
{
    return !follows || table->selectionModel()->hasSelection();
}

void MessageView::followEnd()
{
    if (!isPaused())
        table->scrollToBottom();
}

void MessageView::resume()
{
    follows = true;
    table->clearSelection();
    table->scrollToBottom();
    showState();
}

// Rows above the shown ones have left: the shown ones stay in their place.
void MessageView::keepPlace(int first, int last)
{
    QScrollBar *bar = table->verticalScrollBar();
    const int above = std::min(last + 1, bar->value()) - first;
    if (isPaused() && above > 0)
        bar->setValue(bar->value() - above);
}

void MessageView::showState()
{
    const bool isHeld = isPaused();
    if (!isHeld)
        newRows = 0;
    if (isHeld)
        state->say(QStringLiteral("Paused, %1 more since.").arg(newRows), Tone::Waiting);
    else if (log.rowCount() == 0)
        state->say(QStringLiteral("No message yet."), Tone::Quiet);
    else
        state->say(
            QStringLiteral("%1 shown of %2.").arg(filter->rowCount()).arg(log.rowCount()), Tone::Quiet);
    resuming->setVisible(isHeld);
}

} // namespace tarnPanel
