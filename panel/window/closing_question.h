#pragma once

#include <QMessageBox>

namespace tarnPanel {

// Asked when the window is to close during an update, because the serial port at which the KVane is flashed,
// and the one who tells the result, end with it.
class ClosingQuestion : public QMessageBox
{
    Q_OBJECT

public:
    explicit ClosingQuestion(QWidget *parent);

Q_SIGNALS:
    void keepOpenChosen();
    void closeAfterwardsChosen();
    void closeNowChosen();
};

} // namespace tarnPanel
