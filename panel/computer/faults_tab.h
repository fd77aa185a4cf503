#pragma once

#include "simulator/computer_control.h"

#include <QList>
#include <QWidget>

class QLabel;
class QLineEdit;
class QPushButton;
class QSettings;

namespace tarnPanel {

class FaultRow;
class MachineOperations;

// Every fault of the machine as a switch.
class FaultsTab : public QWidget
{
    Q_OBJECT

public:
    // `memory` keeps the filter.
    FaultsTab(MachineOperations &machineOperations, QSettings &memory, QWidget *parent = nullptr);

    void look(const tarnSimulator::ComputerControl &computer);

Q_SIGNALS:
    void countChanged(int faultsOn);

private:
    void filterRows(const QString &filter);
    [[nodiscard]] QWidget *makeTopLine();
    [[nodiscard]] QWidget *makeList();

    MachineOperations &operations;
    QSettings &settings;
    QLineEdit *filterLine;
    QPushButton *allOff;
    QLabel *nothingFits;
    QList<FaultRow *> rows;
    qsizetype lastCount = -1;
};

} // namespace tarnPanel
