#pragma once

#include "panel/computer/file_identity.h"
#include "simulator/computer_control.h"
#include "simulator/machine_state_file.h"

#include <QCoreApplication>
#include <QObject>
#include <QTimer>

#include <chrono>
#include <optional>

namespace tarnPanel {

// Looks at the simulated computer again and again, as long as somebody looks at the window. Notices when its
// file goes away, is replaced or cannot be used, and looks for one while there is none.
class MachineWatch : public QObject
{
    Q_OBJECT

public:
    static constexpr std::chrono::milliseconds lookPeriod {100};
    static constexpr std::chrono::milliseconds searchPeriod {2000};

    // An empty name: the file that tarnsim would choose. Looks nowhere before look() or setActive().
    // `programFolder` is where tarnsim lies.
    explicit MachineWatch(const QString &stateFile, QObject *parent = nullptr,
        const QString &programFolder = QCoreApplication::applicationDirPath());

    void setActive(bool active);
    // At once instead of after the period.
    void look();

    // Null when there is no machine. Do not keep it: it is gone when machineChanged is sent.
    [[nodiscard]] const tarnSimulator::ComputerControl *computer() const;
    [[nodiscard]] bool hasMachine() const { return control.has_value(); }
    // Why there is none, in sentences.
    [[nodiscard]] QString reason() const { return whyNone; }
    // Of the machine, else empty.
    [[nodiscard]] QString fileName() const;
    // Whether tarnsim, started in its folder from any terminal, would work with the same file without being
    // told: what this program has from its own environment and folder, that terminal may not have.
    [[nodiscard]] bool isDefaultFile() const { return isDefault; }

Q_SIGNALS:
    void machineChanged(bool available);
    void looked();
    // Registers have been accessed since the last look.
    void accessed();

private:
    [[nodiscard]] bool isStillThere() const;
    void open();
    void forget();
    void lookAtLog();

    const QString named;
    const QString folder;
    QTimer timer;
    std::optional<tarnSimulator::MachineStateFile> file;
    std::optional<tarnSimulator::ComputerControl> control;
    FileIdentity identity;
    QString whyNone;
    std::uint64_t lastAccess = 0;
    bool isDefault = true;
};

} // namespace tarnPanel
