#pragma once

#include "simulator/computer_control.h"
#include "simulator/machine_state_file.h"

#include <QProcess>
#include <QString>
#include <QStringList>
#include <QTemporaryDir>

#include <memory>
#include <optional>

namespace tarnTest {

// Path of a program of the build under test.
[[nodiscard]] QString builtProgram(const QString &name);

// Path of a file that stands in for one of Windows.
[[nodiscard]] QString standIn(const QString &name);

// A real service process in a folder of its own, on a simulated computer of its own. Each test ends with a
// look at what the machine has counted against the host. TARN_ACCEPTANCE_POLLS makes the EC of every test a
// slow one.
class ServiceProcess
{
public:
    ServiceProcess();
    ~ServiceProcess();

    // Starts the service and waits until it serves clients and its monitor polls.
    [[nodiscard]] bool start(const QStringList &arguments = {QStringLiteral("-exec")});
    // Starts the process and waits for nothing.
    [[nodiscard]] bool launch(const QStringList &arguments, const QString &workingFolder = {});
    // Asks it to end as a terminal or a system would, and waits; the exit code, nothing if it did not end.
    [[nodiscard]] std::optional<int> stop(int boundMs = 15000);
    void kill();

    [[nodiscard]] bool waitForLog(const QString &text, int times = 1, int boundMs = 30000);
    [[nodiscard]] bool waitForEnd(int boundMs = 30000);
    [[nodiscard]] QString log();
    [[nodiscard]] QStringList logLines() { return log().split(QLatin1Char('\n')); }
    [[nodiscard]] qsizetype logCount(const QString &text) { return log().count(text); }

    [[nodiscard]] QString path(const QString &name) const { return folder.filePath(name); }
    [[nodiscard]] QByteArray read(const QString &name) const;
    void write(const QString &name, const QByteArray &content) const;

    // The folder in which this service looks for downloaded files.
    [[nodiscard]] QString downloads() const;

    [[nodiscard]] tarnSimulator::ComputerControl &computer() { return *control; }
    [[nodiscard]] tarnSimulator::MachineState &state() { return machine->state(); }
    void attach(std::uint8_t accessoryCode);
    // Fault by its name in the simulator's table, with its usual value if none is given.
    void breakDown(const char *fault, std::optional<int> value = std::nullopt, unsigned skip = 0);
    void repair() { computer().faults().clear(); }
    // From now on the EC takes each byte only after a few looks at its status.
    void takeBytesSlowly() { computer().timing().acceptancePolls.store(2); }
    // The service was killed from outside this object.
    void noteKill() { ++kills; }

    QProcess process;

private:
    QTemporaryDir folder;
    std::optional<tarnSimulator::MachineStateFile> machine;
    std::unique_ptr<tarnSimulator::ComputerControl> control;
    std::uint64_t kills = 0;
};

} // namespace tarnTest
