#pragma once

#include <QWidget>

class QLabel;
class QPushButton;

namespace tarnPanel {

class AccessoryButton;
class MachineDrawing;
class MachineOperations;
struct MachineFacts;

// What can be plugged in, and the key of the graphics box.
class AccessoryRow : public QWidget
{
    Q_OBJECT

public:
    AccessoryRow(MachineOperations &machineOperations, MachineDrawing *dropPlace, QWidget *parent = nullptr);

    void show(const MachineFacts &facts);
    using QWidget::show;

private:
    void addButton(const QString &name, const QString &title, const QString &help, int place);
    void plug(const QString &name);

    MachineOperations &operations;
    MachineDrawing *drawing;
    QList<AccessoryButton *> buttons;
    QPushButton *key;
    QLabel *keyText;
};

} // namespace tarnPanel
