#include "panel/computer/faults_tab.h"

#include "panel/computer/fault_row.h"
#include "panel/computer/machine_operations.h"

#include <QHBoxLayout>
#include <QLabel>
#include <QLineEdit>
#include <QPushButton>
#include <QScrollArea>
#include <QSettings>
#include <QVBoxLayout>

#include <algorithm>

namespace tarnPanel {

namespace {

const QString faultFilterKey = QStringLiteral("computer/faultFilter");

} // namespace

FaultsTab::FaultsTab(MachineOperations &machineOperations, QSettings &memory, QWidget *parent)
    : QWidget(parent)
    , operations(machineOperations)
    , settings(memory)
    , filterLine(new QLineEdit)
    , allOff(new QPushButton(QStringLiteral("S&witch all off")))
    , nothingFits(new QLabel(QStringLiteral("No fault has this text.")))
{
    auto *layout = new QVBoxLayout(this);
    layout->setContentsMargins(4, 4, 4, 0);
    layout->setSpacing(2);
    layout->addWidget(makeTopLine());
    layout->addWidget(makeList());
    connect(filterLine, &QLineEdit::textChanged, this, &FaultsTab::filterRows);
    connect(allOff, &QPushButton::clicked, this,
        [this] { operations.carryOut({QStringLiteral("clear-faults")}); });
    filterLine->setText(settings.value(faultFilterKey).toString());
    filterRows(filterLine->text());
}

void FaultsTab::look(const tarnSimulator::ComputerControl &computer)
{
    for (FaultRow *row : rows)
        row->look(computer);
    const auto count = std::ranges::count_if(rows, [](const FaultRow *row) { return row->isOn(); });
    if (count == lastCount)
        return;
    lastCount = count;
    allOff->setEnabled(count > 0);
    allOff->setToolTip(count > 0 ? QStringLiteral("%1 on").arg(count) : QStringLiteral("No fault is on."));
    Q_EMIT countChanged(static_cast<int>(count));
}

void FaultsTab::filterRows(const QString &filter)
{
    bool isAnyShown = false;
    for (FaultRow *row : rows) {
        const bool fits = row->matches(filter.trimmed());
        row->setVisible(fits);
        isAnyShown = isAnyShown || fits;
    }
    nothingFits->setVisible(!isAnyShown);
    settings.setValue(faultFilterKey, filter);
}

QWidget *FaultsTab::makeTopLine()
{
    filterLine->setObjectName(QStringLiteral("faultFilter"));
    filterLine->setPlaceholderText(QStringLiteral("Filter faults"));
    filterLine->setClearButtonEnabled(true);
    filterLine->setAccessibleName(QStringLiteral("Filter of the faults"));
    filterLine->setAccessibleDescription(QStringLiteral("shows the faults that have this text"));
    allOff->setObjectName(QStringLiteral("faultsOff"));
    allOff->setAccessibleDescription(QStringLiteral("switches every fault off"));
    auto *line = new QWidget;
    auto *layout = new QHBoxLayout(line);
    layout->setContentsMargins(0, 0, 0, 0);
    layout->addWidget(filterLine, 1);
    layout->addWidget(allOff);
    return line;
}

QWidget *FaultsTab::makeList()
{
    auto *page = new QWidget;
    auto *layout = new QVBoxLayout(page);
    layout->setContentsMargins(2, 0, 4, 0);
    layout->setSpacing(0);
    for (const tarnSimulator::FaultDescription &fault : tarnSimulator::faultTable()) {
        rows << new FaultRow(fault, operations);
        layout->addWidget(rows.last());
    }
    layout->addWidget(nothingFits);
    layout->addStretch();
    auto *area = new QScrollArea;
    // It follows the focus of what is in it, so it needs none itself.
    area->setFocusPolicy(Qt::NoFocus);
    area->setWidget(page);
    area->setWidgetResizable(true);
    area->setFrameShape(QFrame::NoFrame);
    area->setHorizontalScrollBarPolicy(Qt::ScrollBarAlwaysOff);
    area->setMinimumWidth(page->minimumSizeHint().width());
    area->setAccessibleName(QStringLiteral("Faults"));
    return area;
}

} // namespace tarnPanel
