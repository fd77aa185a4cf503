#pragma once

#include "panel/computer/machine_operations.h"
#include "panel/computer/machine_watch.h"

#include <QWidget>

class QLabel;
class QSettings;
class QSplitter;
class QStackedLayout;

namespace tarnPanel {

class AccessList;
class AccessoryRow;
class AskedWindow;
class ControlsTab;
class FaultsTab;
class HistoryPlot;
class MachineDrawing;
class PageTabs;
class Session;

// The left half of the window: the simulated computer.
class ComputerSide : public QWidget
{
    Q_OBJECT

public:
    // An empty `stateFile`: the one that tarnsim would choose. `settings` holds what is remembered of this
    // half. Both references outlive the widget.
    // `programFolder` is where tarnsim lies.
    ComputerSide(const QString &stateFile, Session &session, QSettings &settings, QWidget *parent = nullptr,
        const QString &programFolder = QCoreApplication::applicationDirPath());
    ~ComputerSide() override;

    // Whether there is a simulated computer. Without one the half says so and offers nothing.
    [[nodiscard]] bool hasComputer() const;
    // What the reason why there is none needs at least: the name of a file is not broken.
    [[nodiscard]] int reasonWidth() const;

Q_SIGNALS:
    void hasComputerChanged(bool hasComputer);
    // Why there is none.
    void reasonChanged();
    // The service has just accessed a register of this very computer, so it is no real one that it runs on.
    void serviceSeen();

protected:
    void showEvent(QShowEvent *event) override;
    void hideEvent(QHideEvent *event) override;
    void resizeEvent(QResizeEvent *event) override;
    bool eventFilter(QObject *watched, QEvent *event) override;

private:
    [[nodiscard]] QWidget *makeTopPane();
    [[nodiscard]] QWidget *makeTabs();
    void showMachine(bool available);
    void look();
    void placeAsked();
    void watchWhileSeen();
    void restoreSizes();
    void rememberSizes() const;

    QSettings &memory;
    MachineWatch watch;
    MachineOperations operations;
    QStackedLayout *pages;
    QLabel *noMachine;
    QSplitter *splitter;
    MachineDrawing *drawing;
    AccessoryRow *accessories;
    AskedWindow *asked;
    QLabel *complaint;
    PageTabs *tabs;
    ControlsTab *controls;
    FaultsTab *faults;
    AccessList *accesses;
    HistoryPlot *plot;
};

} // namespace tarnPanel
