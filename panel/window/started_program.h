#pragma once

#include <QProcess>
#include <QString>
#include <QStringList>
#include <QTimer>

namespace tarnPanel {

// A program that lies beside this one and may be started for the window.
struct ProgramKind
{
    QString file; // without the ending that the system wants
    QStringList arguments;
    QString noun; // for the user, at the beginning of a sentence
};

[[nodiscard]] ProgramKind serviceProgram();
// The serial port at which the MCU of the simulated KVane is flashed.
[[nodiscard]] ProgramKind serialPortProgram();

// One of them, started unless it runs already. What it prints goes to the terminal of this program.
class StartedProgram : public QObject
{
    Q_OBJECT

public:
    enum class State {
        // start() has not been called, or there is nothing that could be started.
        None,
        // Somebody else has started it.
        Foreign,
        Running,
        Ending,
        Ended,
    };

    // An empty `folder`: nothing is ever started. `stateFile` is the simulated computer that it is to work
    // on; empty: as it chooses by itself.
    StartedProgram(const ProgramKind &kind, const QString &folder, const QString &stateFile = {},
        QObject *parent = nullptr);
    // Kills it when it still runs.
    ~StartedProgram() override;

    // Does nothing while it runs.
    void start();
    // Asks it to end, and kills it when it has not ended in time.
    void end();

    [[nodiscard]] State state() const { return now; }
    [[nodiscard]] bool isAlive() const { return process.state() != QProcess::NotRunning; }
    // For the user; empty before start().
    [[nodiscard]] QString text() const { return reason; }
    // Whether there is something that start() would start now.
    [[nodiscard]] bool mayBeStarted() const { return !program.isEmpty() && !isAlive(); }
    [[nodiscard]] qint64 processId() const { return process.processId(); }

Q_SIGNALS:
    void changed();

private:
    void noteEnd(int exitCode, QProcess::ExitStatus status);
    void enter(State next, const QString &why);
    [[nodiscard]] bool runsAlready() const;
    void lookForForeign();

    const ProgramKind kind;
    const QString program; // the whole path; empty: none
    QProcess process;
    QTimer looking; // while somebody else's runs, whose end nobody tells
    State now = State::None;
    QString reason;
};

// The program of this name in this folder; empty where this system could not end it in an orderly way again,
// and where there is none.
[[nodiscard]] QString startableProgram(const QString &folder, const QString &name);

} // namespace tarnPanel
