#include "panel/computer/access_list.h"

#include "simulator/computer_control.h"

#include <QAction>
#include <QApplication>
#include <QClipboard>
#include <QComboBox>
#include <QHBoxLayout>
#include <QHeaderView>
#include <QKeyEvent>
#include <QLabel>
#include <QLineEdit>
#include <QPushButton>
#include <QScrollBar>
#include <QSettings>
#include <QTableView>
#include <QVBoxLayout>

namespace tarnPanel {

namespace {

const QString accessFilterKey = QStringLiteral("computer/registerFilter");
const QString accessKindsKey = QStringLiteral("computer/registerKinds");

// The widest that a column usually has.
constexpr std::array<const char *, AccessModel::ColumnCount> samples {
    "0000", "0000.000", "write", "0x0000 EC_KVANE_CHARGING_STATUS", "0x00 (000)"};

} // namespace

AccessList::AccessList(QSettings &memory, QWidget *parent)
    : QWidget(parent)
    , settings(memory)
    , table(new QTableView)
    , filterLine(new QLineEdit)
    , kindBox(new QComboBox)
    , pauseButton(new QPushButton(QStringLiteral("&Pause")))
    , state(new QLabel)
{
    auto *layout = new QVBoxLayout(this);
    layout->setContentsMargins(4, 2, 4, 2);
    layout->setSpacing(2);
    layout->addWidget(makeTopLine());
    layout->addWidget(table, 1);
    layout->addWidget(state);
    state->setObjectName(QStringLiteral("registerState"));
    state->setWordWrap(true);
    setUpTable();
    connect(filterLine, &QLineEdit::textChanged, this, &AccessList::applyFilter);
    connect(kindBox, &QComboBox::currentIndexChanged, this, &AccessList::applyFilter);
    connect(pauseButton, &QPushButton::toggled, this, &AccessList::setPaused);
    applyFilter();
}

void AccessList::look(const tarnSimulator::ComputerControl &computer)
{
    if (computer.registerLog().end() == cursor)
        return;
    const tarnSimulator::LogReading reading = computer.registerLog().readAfter(cursor);
    cursor = reading.cursor;
    append(reading.accesses, reading.lost);
}

void AccessList::startAnew()
{
    cursor = 0;
    lost = 0;
    model.clear();
    showState();
}

void AccessList::append(const std::vector<tarnSimulator::RegisterAccess> &accesses, std::uint64_t lostNow)
{
    lost += lostNow;
    model.append(accesses);
    widenColumn(AccessModel::Number);
    widenColumn(AccessModel::Time);
    followEnd();
    showState();
}

bool AccessList::eventFilter(QObject *watched, QEvent *event)
{
    // Who points at a row or looks for an older one wants the list to stay.
    if (event->type() == QEvent::MouseButtonPress || event->type() == QEvent::Wheel)
        pauseButton->setChecked(true);
    if (event->type() == QEvent::Resize)
        QMetaObject::invokeMethod(this, &AccessList::followEnd, Qt::QueuedConnection);
    if (event->type() == QEvent::KeyPress) {
        const auto *key = static_cast<QKeyEvent *>(event);
        if (key->matches(QKeySequence::Copy)) {
            copySelected();
            return true;
        }
        const bool isMovement = key->key() >= Qt::Key_Home && key->key() <= Qt::Key_PageDown;
        if (isMovement)
            pauseButton->setChecked(true);
    }
    return QWidget::eventFilter(watched, event);
}

QWidget *AccessList::makeTopLine()
{
    filterLine->setObjectName(QStringLiteral("registerFilter"));
    filterLine->setPlaceholderText(QStringLiteral("Filter registers: names or addresses"));
    filterLine->setClearButtonEnabled(true);
    filterLine->setAccessibleName(QStringLiteral("Filter of the registers"));
    filterLine->setAccessibleDescription(
        QStringLiteral("shows the accesses of registers whose name or address has one of the words"));
    filterLine->setText(settings.value(accessFilterKey).toString());
    kindBox->addItems({QStringLiteral("all"), QStringLiteral("reads"), QStringLiteral("writes")});
    kindBox->setObjectName(QStringLiteral("registerKinds"));
    kindBox->setAccessibleName(QStringLiteral("Kind of accesses"));
    kindBox->setAccessibleDescription(QStringLiteral("shows reads, writes or both"));
    kindBox->setCurrentIndex(std::clamp(settings.value(accessKindsKey).toInt(), 0, kindBox->count() - 1));
    pauseButton->setObjectName(QStringLiteral("registerPause"));
    pauseButton->setCheckable(true);
    pauseButton->setAccessibleDescription(
        QStringLiteral("holds the list of registers; a click into the list does so too"));
    auto *line = new QWidget;
    auto *layout = new QHBoxLayout(line);
    layout->setContentsMargins(0, 0, 0, 0);
    layout->addWidget(filterLine, 1);
    layout->addWidget(kindBox);
    layout->addWidget(pauseButton);
    return line;
}

void AccessList::setUpTable()
{
    table->setObjectName(QStringLiteral("registers"));
    table->setAccessibleName(QStringLiteral("Register accesses"));
    table->setAccessibleDescription(QStringLiteral("the newest is the last row"));
    table->setModel(&model);
    table->setSelectionBehavior(QAbstractItemView::SelectRows);
    table->setWordWrap(false);
    table->setShowGrid(false);
    table->setAlternatingRowColors(true);
    table->setTabKeyNavigation(false);
    table->verticalHeader()->hide();
    table->horizontalHeader()->setHighlightSections(false);
    table->setTextElideMode(Qt::ElideMiddle);
    table->setHorizontalScrollBarPolicy(Qt::ScrollBarAlwaysOff);
    table->installEventFilter(this);
    table->viewport()->installEventFilter(this);
    connect(table->verticalScrollBar(), &QScrollBar::actionTriggered, this,
        [this] { pauseButton->setChecked(true); });
    auto *copy = new QAction(QStringLiteral("Copy"), table);
    connect(copy, &QAction::triggered, this, &AccessList::copySelected);
    table->addAction(copy);
    table->setContextMenuPolicy(Qt::ActionsContextMenu);
    setColumnWidths();
}

void AccessList::setColumnWidths()
{
    const QFontMetrics metrics = table->fontMetrics();
    // Rows of one height: with others each of them would have to be measured.
    table->verticalHeader()->setSectionResizeMode(QHeaderView::Fixed);
    table->verticalHeader()->setMinimumSectionSize(metrics.height());
    table->verticalHeader()->setDefaultSectionSize(metrics.height() + metrics.leading() + 3);
    for (int column = 0; column < AccessModel::ColumnCount; ++column) {
        const QString sample = QString::fromLatin1(samples.at(static_cast<std::size_t>(column)));
        table->setColumnWidth(column, metrics.horizontalAdvance(sample) + metrics.height() * 2 / 3);
        table->horizontalHeader()->setSectionResizeMode(column, QHeaderView::Interactive);
    }
    // In a narrow window the long names are cut off, and never the values.
    table->horizontalHeader()->setSectionResizeMode(AccessModel::Register, QHeaderView::Stretch);
    table->setMinimumHeight(metrics.height() * 4);
}

// Numbers and times only grow, so the newest are the widest.
void AccessList::widenColumn(int column)
{
    const QModelIndex newest = model.index(model.rowCount() - 1, column);
    const QFontMetrics metrics = table->fontMetrics();
    const int wanted = metrics.horizontalAdvance(newest.data().toString()) + metrics.height() * 2 / 3;
    if (wanted > table->columnWidth(column))
        table->setColumnWidth(column, wanted);
}

void AccessList::applyFilter()
{
    settings.setValue(accessFilterKey, filterLine->text());
    settings.setValue(accessKindsKey, kindBox->currentIndex());
    model.setFilter({filterLine->text(), static_cast<AccessFilter::Kinds>(kindBox->currentIndex())});
    followEnd();
    showState();
}

void AccessList::setPaused(bool paused)
{
    model.setPaused(paused);
    if (!paused)
        table->clearSelection();
    followEnd();
    pauseButton->setText(paused ? QStringLiteral("R&esume") : QStringLiteral("&Pause"));
    showState();
}

void AccessList::followEnd()
{
    if (!model.isPaused())
        table->scrollToBottom();
}

void AccessList::copySelected() const
{
    QModelIndexList rows = table->selectionModel()->selectedRows();
    std::ranges::sort(rows, {}, &QModelIndex::row);
    QString text;
    for (const QModelIndex &row : rows) {
        QStringList cells;
        for (int column = 0; column < AccessModel::ColumnCount; ++column)
            cells << row.siblingAtColumn(column).data().toString();
        text += cells.join(u'\t') + u'\n';
    }
    if (!text.isEmpty())
        QApplication::clipboard()->setText(text);
}

void AccessList::showState()
{
    QStringList parts;
    if (model.isPaused())
        parts << QStringLiteral("Paused, %1 more since").arg(model.heldBack());
    else if (model.keptCount() == 0)
        parts << QStringLiteral("No register has been accessed yet");
    else
        parts << QStringLiteral("%1 shown of %2").arg(model.rowCount()).arg(model.keptCount());
    if (model.goneInPause() > 0)
        parts << QStringLiteral("the oldest %1 had to make room").arg(model.goneInPause());
    if (lost > 0)
        parts << QStringLiteral("%1 were overwritten before they could be read").arg(lost);
    state->setText(parts.join(QStringLiteral("; ")) + u'.');
}

} // namespace tarnPanel
