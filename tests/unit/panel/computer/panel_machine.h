#pragma once

#include "panel/computer/computer_side.h"
#include "panel/computer/machine_operations.h"
#include "panel/computer/machine_watch.h"
#include "panel/session/session.h"
#include "simulator/computer_control.h"
#include "simulator/machine_state_file.h"
#include "support/printing.h"

#include <QSettings>
#include <QTemporaryDir>
#include <QTest>

#include <gtest/gtest.h>

#include <memory>
#include <optional>

namespace tarnPanelTest {

inline constexpr int patienceMs = 15000;

// A machine of its own in a temporary file, without a service, and what the panel needs beside it.
class PanelMachine : public ::testing::Test
{
protected:
    void SetUp() override { makeMachine(); }

    void makeMachine()
    {
        std::string reason;
        file = tarnSimulator::MachineStateFile::open(
            stateFile.toStdU16String(), tarnSimulator::MachineStateFile::Missing::IsCreated, reason);
        ASSERT_TRUE(file.has_value()) << reason;
        computer.emplace(file->state());
    }

    void openSide(QSize size = {440, 520})
    {
        side = std::make_unique<tarnPanel::ComputerSide>(stateFile, session, settings);
        side->resize(size);
        side->show();
    }

    template <typename Widget> [[nodiscard]] Widget *find(const QString &name) const
    {
        return side->findChild<Widget *>(name);
    }

    template <typename Condition> [[nodiscard]] static bool soon(Condition condition)
    {
        return QTest::qWaitFor(condition, patienceMs);
    }

    // The last command without the program and the state file.
    [[nodiscard]] QString lastCommand() const
    {
        const int rows = session.rowCount();
        const QString text = session.index(rows - 1, tarnPanel::Session::Text).data().toString();
        const QString start = QStringLiteral("./tarnsim --state %1 ").arg(stateFile);
        return text.startsWith(start) ? text.mid(start.size()) : text;
    }

    [[nodiscard]] int commandCount() const { return session.rowCount(); }

    // As the service would: through the log of the registers.
    void access(int count, std::uint16_t address = 0x04AB)
    {
        tarnSimulator::RegisterLog log(file->state().log);
        for (int index = 0; index < count; ++index)
            log.append(tarnSimulator::AccessKind::Read, address, 0x1C, 5000);
    }

    QTemporaryDir folder;
    QString stateFile = folder.filePath(QStringLiteral("machine.state"));
    QSettings settings {folder.filePath(QStringLiteral("panel.ini")), QSettings::IniFormat};
    tarnPanel::Session session;
    std::optional<tarnSimulator::MachineStateFile> file;
    std::optional<tarnSimulator::ComputerControl> computer;
    std::unique_ptr<tarnPanel::ComputerSide> side;
};

} // namespace tarnPanelTest
