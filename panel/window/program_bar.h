#pragma once

#include <QWidget>

class QPushButton;

namespace tarnPanel {

class StartedProgram;
class ToneLabel;

// What has become of the service that was started for the window, and a button that starts again what has
// ended. The serial port is only spoken of when it is gone.
class ProgramBar : public QWidget
{
    Q_OBJECT

public:
    ProgramBar(StartedProgram &service, StartedProgram &serialPort, QWidget *parent = nullptr);

private:
    void refresh();
    void start();
    [[nodiscard]] bool isPortMissing() const;

    StartedProgram &service;
    StartedProgram &serialPort;
    ToneLabel *text;
    QPushButton *button;
};

} // namespace tarnPanel
