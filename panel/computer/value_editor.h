#pragma once

#include "simulator/machine_values.h"

#include <QWidget>

#include <memory>
#include <optional>

namespace tarnPanel {

class MachineOperations;

// The control of one value of the machine. It shows what the machine has, not what was last typed.
class ValueEditor : public QWidget
{
    Q_OBJECT

public:
    ValueEditor(const tarnSimulator::MachineValue &machineValue, MachineOperations &machineOperations);

    void look(const tarnSimulator::ComputerControl &computer);
    [[nodiscard]] const tarnSimulator::MachineValue &machineValue() const { return value; }
    // What the label's key leads to.
    [[nodiscard]] QWidget *control() const { return focusProxy(); }

Q_SIGNALS:
    // Of the last change; empty when it was done.
    void complained(const QString &complaint);

protected:
    // Another value than before.
    virtual void display(const QString &text) = 0;
    // Whether the user is changing it just now, so that it must not be overwritten.
    [[nodiscard]] virtual bool isBusy() const { return false; }

    // Name, help and what is allowed, for the keyboard and the screen reader.
    void describe(QWidget *control, const QString &suffix = {});
    bool set(const QString &text, bool isStepOfMany = false);
    void noteSet(const QString &text);
    // So that the next look shows the machine's value again.
    void forgetShown() { shown.reset(); }
    [[nodiscard]] QString shownText() const { return shown.value_or(QString()); }

private:
    [[nodiscard]] QStringList words(const QString &text) const;

    const tarnSimulator::MachineValue &value;
    MachineOperations &operations;
    std::optional<QString> shown;
};

// The editor that fits to what may be set.
[[nodiscard]] std::unique_ptr<ValueEditor> editorOf(
    const tarnSimulator::MachineValue &value, MachineOperations &operations);

} // namespace tarnPanel
