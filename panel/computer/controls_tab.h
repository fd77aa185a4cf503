#pragma once

#include "simulator/computer_control.h"
#include "simulator/value_group.h"

#include <QList>
#include <QScrollArea>

class QGridLayout;

namespace tarnPanel {

class MachineOperations;
class ValueEditor;

// Every value of the machine that has a name, by group.
class ControlsTab : public QScrollArea
{
    Q_OBJECT

public:
    explicit ControlsTab(MachineOperations &machineOperations, QWidget *parent = nullptr);

    void look(const tarnSimulator::ComputerControl &computer);

private:
    void addGroup(tarnSimulator::ValueGroup group, MachineOperations &operations);
    void addRow(ValueEditor *editor);

    QGridLayout *grid;
    QList<ValueEditor *> editors;
};

} // namespace tarnPanel
