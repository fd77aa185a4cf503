#include "panel/computer/computer_side.h"

#include "panel/computer/access_list.h"
#include "panel/computer/accessory_row.h"
#include "panel/computer/asked_window.h"
#include "panel/computer/controls_tab.h"
#include "panel/computer/faults_tab.h"
#include "panel/computer/history_plot.h"
#include "panel/computer/machine_drawing.h"
#include "panel/look/page_tabs.h"
#include "panel/look/tone_label.h"

#include <QAccessible>
#include <QEvent>
#include <QLabel>
#include <QSettings>
#include <QSplitter>
#include <QStackedLayout>
#include <QVBoxLayout>

namespace tarnPanel {

namespace {

const QString sizesKey = QStringLiteral("computer/sizes");
const QString tabKey = QStringLiteral("computer/tab");

// Of what is left over when the half is taller than it has to be: drawing, tabs, registers, plot.
constexpr int stretches[] = {2, 5, 4, 2};

} // namespace

ComputerSide::ComputerSide(const QString &stateFile, Session &session, QSettings &settings, QWidget *parent,
    const QString &programFolder)
    : QWidget(parent)
    , memory(settings)
    , watch(stateFile, this, programFolder)
    , operations(watch, session)
    , pages(new QStackedLayout(this))
    , noMachine(new QLabel)
    , splitter(new QSplitter(Qt::Vertical))
    , drawing(new MachineDrawing)
    , accessories(new AccessoryRow(operations, drawing))
    , asked(new AskedWindow(operations, this))
    , complaint(new ToneLabel(Tone::Bad))
    , tabs(new PageTabs)
    , controls(new ControlsTab(operations))
    , faults(new FaultsTab(operations, settings))
    , accesses(new AccessList(settings))
    , plot(new HistoryPlot)
{
    setAccessibleName(QStringLiteral("Simulated computer"));
    noMachine->setObjectName(QStringLiteral("noMachine"));
    noMachine->setWordWrap(true);
    noMachine->setAlignment(Qt::AlignCenter);
    noMachine->setMargin(fontMetrics().height());
    noMachine->setTextInteractionFlags(Qt::TextSelectableByMouse | Qt::TextSelectableByKeyboard);
    splitter->addWidget(makeTopPane());
    splitter->addWidget(makeTabs());
    splitter->addWidget(accesses);
    splitter->addWidget(plot);
    for (int pane = 0; pane < splitter->count(); ++pane)
        splitter->setStretchFactor(pane, stretches[pane]);
    pages->addWidget(noMachine);
    auto *machinePage = new QWidget;
    auto *pageLayout = new QVBoxLayout(machinePage);
    pageLayout->setContentsMargins(0, 0, 0, 0);
    pageLayout->setSpacing(0);
    pageLayout->addWidget(splitter, 1);
    pageLayout->addWidget(complaint);
    pages->addWidget(machinePage);
    asked->raise();
    asked->followInTabOrder(drawing);
    restoreSizes();

    connect(&watch, &MachineWatch::machineChanged, this, &ComputerSide::showMachine);
    connect(&watch, &MachineWatch::looked, this, &ComputerSide::look);
    connect(&watch, &MachineWatch::accessed, this, &ComputerSide::serviceSeen);
    watch.look();
}

ComputerSide::~ComputerSide()
{
    rememberSizes();
}

bool ComputerSide::hasComputer() const
{
    return watch.hasMachine();
}

int ComputerSide::reasonWidth() const
{
    return noMachine->minimumSizeHint().width();
}

void ComputerSide::showEvent(QShowEvent *event)
{
    QWidget::showEvent(event);
    window()->installEventFilter(this);
    watchWhileSeen();
}

void ComputerSide::hideEvent(QHideEvent *event)
{
    QWidget::hideEvent(event);
    rememberSizes();
    watchWhileSeen();
}

void ComputerSide::resizeEvent(QResizeEvent *event)
{
    QWidget::resizeEvent(event);
    placeAsked();
}

bool ComputerSide::eventFilter(QObject *watched, QEvent *event)
{
    if (event->type() == QEvent::WindowStateChange)
        watchWhileSeen();
    return QWidget::eventFilter(watched, event);
}

QWidget *ComputerSide::makeTopPane()
{
    complaint->setObjectName(QStringLiteral("complaint"));
    complaint->setMargin(4);
    complaint->hide();
    // Complaints of a single control stand beside it as well; this one is seen wherever the list has gone.
    connect(&operations, &MachineOperations::complained, this, [this](const QString &text) {
        complaint->setText(text);
        complaint->setVisible(!text.isEmpty());
        if (text.isEmpty())
            return;
        QAccessibleEvent alert(complaint, QAccessible::Alert);
        QAccessible::updateAccessibility(&alert);
    });
    connect(drawing, &MachineDrawing::unplugWanted, this,
        [this] { operations.carryOut({QStringLiteral("detach")}); });
    auto *pane = new QWidget;
    auto *layout = new QVBoxLayout(pane);
    layout->setContentsMargins(0, 0, 0, 0);
    layout->setSpacing(2);
    layout->addWidget(drawing, 1);
    layout->addWidget(accessories);
    return pane;
}

QWidget *ComputerSide::makeTabs()
{
    tabs->setObjectName(QStringLiteral("computerTabs"));
    tabs->setDocumentMode(true);
    tabs->setAccessibleName(QStringLiteral("Values and faults of the computer"));
    tabs->addTab(controls, QStringLiteral("C&ontrols"));
    tabs->addTab(faults, QStringLiteral("Fau&lts"));
    tabs->setMinimumHeight(fontMetrics().height() * 6);
    connect(faults, &FaultsTab::countChanged, this, [this](int count) {
        tabs->setTabText(
            1, count == 0 ? QStringLiteral("Fau&lts") : QStringLiteral("Fau&lts (%1 on)").arg(count));
    });
    return tabs;
}

void ComputerSide::showMachine(bool available)
{
    // Numbers, limits and windows of another machine would be taken for this one's.
    accesses->startAnew();
    plot->startAnew();
    pages->setCurrentIndex(available ? 1 : 0);
    asked->startAnew();
    complaint->clear();
    complaint->hide();
    Q_EMIT hasComputerChanged(available);
}

void ComputerSide::look()
{
    const tarnSimulator::ComputerControl *computer = watch.computer();
    if (computer == nullptr) {
        const QString text = QStringLiteral("No simulated computer beside this window.\n\n") + watch.reason();
        if (text == noMachine->text())
            return;
        noMachine->setText(text);
        Q_EMIT reasonChanged();
        return;
    }
    const MachineFacts facts = factsOf(*computer);
    drawing->show(facts);
    accessories->show(facts);
    controls->look(*computer);
    faults->look(*computer);
    accesses->look(*computer);
    plot->look(*computer);
    // Last, because it may carry something out and so look again.
    asked->show(*computer);
    placeAsked();
}

// Below the drawing and the accessories, which show what the question is about.
void ComputerSide::placeAsked()
{
    const int margin = fontMetrics().height() / 2;
    const int top = splitter->sizes().value(0);
    asked->placeIn(QRect(margin, top + margin / 2, width() - 2 * margin, height() - top));
}

void ComputerSide::watchWhileSeen()
{
    watch.setActive(isVisible() && !window()->isMinimized());
}

void ComputerSide::restoreSizes()
{
    if (!splitter->restoreState(memory.value(sizesKey).toByteArray()))
        splitter->setSizes({200, 190, 170, 110});
    tabs->setCurrentIndex(memory.value(tabKey).toInt());
}

void ComputerSide::rememberSizes() const
{
    memory.setValue(sizesKey, splitter->saveState());
    memory.setValue(tabKey, tabs->currentIndex());
}

} // namespace tarnPanel
