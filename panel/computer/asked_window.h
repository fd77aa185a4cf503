#pragma once

#include "simulator/computer_control.h"

#include <QFrame>
#include <QList>

#include <string>

class QHBoxLayout;
class QLabel;
class QPushButton;

namespace tarnPanel {

class MachineOperations;

// The window that the service shows to the user of the computer, to be answered here.
class AskedWindow : public QFrame
{
    Q_OBJECT

public:
    explicit AskedWindow(MachineOperations &machineOperations, QWidget *parent = nullptr);

    void show(const tarnSimulator::ComputerControl &computer);
    // Another machine, whose user has been asked nothing yet.
    void startAnew();
    using QWidget::show;
    // Over whatever lies in this part of the parent, at its top. It moves nothing, because it comes unasked.
    void placeIn(const QRect &part);
    // Its text and its buttons come right behind it for the Tab key.
    void followInTabOrder(QWidget *widget) { before = widget; }

private:
    void build(const std::string &programSwitch);
    void showCount(std::uint32_t windowsOpen);
    void addButton(const QString &text, bool isYes);
    void enableButtons();
    void answer(bool isYes);
    void waitAgain(const tarnSimulator::ComputerControl &computer);

    MachineOperations &operations;
    QLabel *title;
    QLabel *text;
    QLabel *others;
    QHBoxLayout *buttons;
    QList<QPushButton *> answers;
    QWidget *before = nullptr;
    std::string shownSwitch;
    std::uint32_t shownBefore = 0; // windows of this machine when this one was built
    // The user of the machine waited before, and has to once this window is closed.
    bool hasAnswered = false;
    bool wasWaiting = false;
};

} // namespace tarnPanel
