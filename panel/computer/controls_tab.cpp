#include "panel/computer/controls_tab.h"

#include "panel/computer/value_editor.h"
#include "panel/computer/value_names.h"
#include "panel/look/tone_label.h"
#include "simulator/tool/tool_text.h"

#include <QGridLayout>
#include <QLabel>

namespace tarnPanel {

using namespace tarnSimulator;

namespace {

enum Column { Title, Control, ColumnCount };

} // namespace

ControlsTab::ControlsTab(MachineOperations &machineOperations, QWidget *parent)
    : QScrollArea(parent)
{
    auto *page = new QWidget;
    grid = new QGridLayout(page);
    grid->setContentsMargins(6, 4, 6, 4);
    grid->setVerticalSpacing(3);
    grid->setColumnStretch(Title, 1);
    grid->setColumnStretch(Control, 1);
    for (const ValueGroup group : groupsInOrder())
        addGroup(group, machineOperations);
    grid->setRowStretch(grid->rowCount(), 1);
    setWidget(page);
    setWidgetResizable(true);
    setHorizontalScrollBarPolicy(Qt::ScrollBarAlwaysOff);
    setFrameShape(QFrame::NoFrame);
    setMinimumWidth(page->minimumSizeHint().width());
    setAccessibleName(QStringLiteral("Values of the computer"));
}

void ControlsTab::look(const ComputerControl &computer)
{
    for (ValueEditor *editor : editors)
        editor->look(computer);
}

void ControlsTab::addGroup(ValueGroup group, MachineOperations &operations)
{
    auto *title = new QLabel(titleOf(group));
    QFont bold = title->font();
    bold.setBold(true);
    title->setFont(bold);
    title->setContentsMargins(0, title->fontMetrics().height() / 3, 0, 0);
    grid->addWidget(title, grid->rowCount(), Title, 1, ColumnCount);
    for (const MachineValue &value : machineValues()) {
        if (value.group == group)
            addRow(editorOf(value, operations).release());
    }
}

// The grid owns what is put into it.
void ControlsTab::addRow(ValueEditor *editor)
{
    editors << editor;
    const int row = grid->rowCount();
    const MachineValue &value = editor->machineValue();
    auto *title = new QLabel(titleOf(value));
    title->setToolTip(toQString(value.help));
    title->setBuddy(editor->control());
    title->setWordWrap(true);
    grid->addWidget(title, row, Title);
    grid->addWidget(editor, row, Control);
    grid->addWidget(new ToneLabel(Tone::Quiet, toQString(value.help)), row + 1, Title, 1, ColumnCount);
    auto *complaint = new ToneLabel(Tone::Bad);
    complaint->setObjectName(QStringLiteral("complaint-") + toQString(value.name));
    complaint->hide();
    grid->addWidget(complaint, row + 2, Title, 1, ColumnCount);
    connect(editor, &ValueEditor::complained, complaint, [complaint](const QString &text) {
        complaint->setText(text);
        complaint->setVisible(!text.isEmpty());
    });
}

} // namespace tarnPanel
