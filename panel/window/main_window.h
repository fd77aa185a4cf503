#pragma once

#include "panel/session/session.h"
#include "panel/window/started_program.h"
#include "panel/window/window_options.h"

#include <QMainWindow>

class QActionGroup;
class QSettings;
class QSplitter;

namespace tarnPanel {

class ClientSide;
class ComputerSide;
class SessionBar;

// The simulated computer on the left, the client on the right, and the commands of the session below.
class MainWindow : public QMainWindow
{
    Q_OBJECT

public:
    // The settings outlive the window.
    MainWindow(const WindowOptions &options, QSettings &settings, QWidget *parent = nullptr);
    ~MainWindow() override;

    [[nodiscard]] StartedProgram &startedService() { return service; }
    // Asks nobody. For whoever ends the programs anyway, such as Ctrl+C in the terminal.
    void closeNow();

Q_SIGNALS:
    // The window is closed, and what was started for it has ended.
    void ended();

protected:
    void closeEvent(QCloseEvent *event) override;

private:
    void addMenus();
    void addAppearances(QMenu *menu);
    void restore();
    void remember();
    void showHalves();
    void startSerialPort();
    void noteProgram();
    void askBeforeClosing();
    void closeAfterUpdate(bool closes);
    void noteUpdateEnd(bool isDone);

    QSettings &settings;
    Session session;
    StartedProgram service;
    StartedProgram serialPort;
    ComputerSide *computerSide;
    ClientSide *clientSide;
    SessionBar *sessionBar;
    QSplitter *halves;
    bool isClosing = false;
    bool closesAfterUpdate = false;
    bool asksBeforeClosing = true;
};

} // namespace tarnPanel
