#pragma once

#include "panel/client/update_run.h"

#include <QTimer>
#include <QWidget>

class QComboBox;
class QGridLayout;
class QLineEdit;
class QProgressBar;
class QPushButton;

namespace tarnPanel {

class CarefulButton;
class ReachableLabel;
class ToneLabel;

// Firmware updates: what to flash, how far it is, and what its end means.
class UpdatePage : public QWidget
{
    Q_OBJECT

public:
    UpdatePage(ServiceLink &link, UpdateRun &run, QWidget *parent = nullptr);

    // The time goes on.
    void refreshAges();

protected:
    void dragEnterEvent(QDragEnterEvent *event) override;
    void dropEvent(QDropEvent *event) override;

private:
    void addForm(QGridLayout &grid);
    void addRun(QGridLayout &grid);
    void browse();
    void lookAtFile();
    void refresh();
    void refreshPhase();
    void showEnd(tarn::FirmwareKind ended, const tarn::FirmwareResult &end);
    void copyResult();
    [[nodiscard]] UpdateRun::Wish wish() const;
    // Why an update cannot be started now; empty when it can.
    [[nodiscard]] QString hindrance() const;

    ServiceLink &link;
    UpdateRun &run;
    QComboBox *kind;
    QLineEdit *file;
    QLineEdit *version;
    QPushButton *browsing;
    ToneLabel *notice;
    ReachableLabel *objection;
    CarefulButton *starting;
    QPushButton *abandoning;
    QProgressBar *progress;
    ReachableLabel *phase;
    ReachableLabel *result;
    QPushButton *copying;
    QTimer looking;
    QString fileObjection;
    // Only the answer to the last look counts.
    int lookNumber = 0;
    bool isLooking = false;
};

} // namespace tarnPanel
