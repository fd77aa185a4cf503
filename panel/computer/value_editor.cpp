#include "panel/computer/value_editor.h"

#include "panel/computer/machine_operations.h"
#include "panel/computer/value_names.h"
#include "panel/computer/wheel_guard.h"
#include "simulator/tool/tool_text.h"

namespace tarnPanel {

using tarnSimulator::toQString;

ValueEditor::ValueEditor(
    const tarnSimulator::MachineValue &machineValue, MachineOperations &machineOperations)
    : value(machineValue)
    , operations(machineOperations)
{ }

void ValueEditor::look(const tarnSimulator::ComputerControl &computer)
{
    if (isBusy())
        return;
    const QString text = toQString(value.read(computer));
    if (shown == text)
        return;
    shown = text;
    display(text);
}

void ValueEditor::describe(QWidget *control, const QString &suffix)
{
    control->setObjectName(QStringLiteral("value-") + toQString(value.name) + suffix);
    control->setAccessibleName(titleOf(value));
    QString help = toQString(value.help);
    if (value.write != nullptr)
        help += QStringLiteral("; allowed: ") + toQString(value.allowed);
    control->setAccessibleDescription(help);
    control->setToolTip(help);
    if (value.write != nullptr)
        guardFromWheel(control);
    if (suffix.isEmpty())
        setFocusProxy(control);
}

bool ValueEditor::set(const QString &text, bool isStepOfMany)
{
    const auto noted = isStepOfMany ? MachineOperations::Noted::Later : MachineOperations::Noted::Now;
    const bool isDone = operations.carryOut(words(text), noted);
    Q_EMIT complained(isDone ? QString() : operations.complaint());
    return isDone;
}

void ValueEditor::noteSet(const QString &text)
{
    operations.note(words(text));
}

QStringList ValueEditor::words(const QString &text) const
{
    return {QStringLiteral("set"), toQString(value.name), text};
}

} // namespace tarnPanel
