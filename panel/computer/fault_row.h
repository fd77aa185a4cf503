#pragma once

#include "simulator/computer_control.h"
#include "simulator/fault_table.h"

#include <QWidget>

class QCheckBox;
class QComboBox;
class QGridLayout;
class QLabel;
class QLineEdit;
class QSpinBox;

namespace tarnPanel {

class MachineOperations;

// One fault: its switch, one sentence, and what it takes.
class FaultRow : public QWidget
{
    Q_OBJECT

public:
    FaultRow(const tarnSimulator::FaultDescription &description, MachineOperations &machineOperations);

    void look(const tarnSimulator::ComputerControl &computer);
    [[nodiscard]] bool isOn() const;
    // Whether the name or the sentence has this text.
    [[nodiscard]] bool matches(const QString &filter) const;

private:
    void addFields(QGridLayout *layout);
    void addTargets(QGridLayout *layout);
    void apply(bool on);
    void applyAgain();
    [[nodiscard]] QStringList words() const;
    void listDevices(const tarnSimulator::ComputerControl &computer);

    const tarnSimulator::FaultDescription &fault;
    MachineOperations &operations;
    QCheckBox *box;
    QLabel *state;
    QLabel *complaint;
    QLineEdit *number = nullptr; // of a fault that takes one
    QComboBox *target = nullptr; // register or device
    QSpinBox *skip = nullptr; // accesses that succeed before
};

} // namespace tarnPanel
