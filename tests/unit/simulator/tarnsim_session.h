#pragma once

#include "simulator/computer_control.h"
#include "simulator/machine_state_file.h"
#include "simulator/tool/run_tool.h"

#include <QTemporaryDir>

#include <gtest/gtest.h>

#include <optional>

namespace tarnSimulatorTest {

// Calls of the control tool on a state file of its own.
class TarnsimSession : public ::testing::Test
{
protected:
    void SetUp() override
    {
        std::string reason;
        machine = tarnSimulator::MachineStateFile::open(
            stateFile.toStdU16String(), tarnSimulator::MachineStateFile::Missing::IsCreated, reason);
        ASSERT_TRUE(machine.has_value()) << reason;
        computer.emplace(machine->state());
    }

    // The command line without the program name and the state file, split at blanks.
    int run(const QString &commandLine)
    {
        return runBare({QStringLiteral("--state"), stateFile, commandLine});
    }

    int runBare(const QStringList &parts)
    {
        QStringList arguments {QStringLiteral("tarnsim")};
        for (const QString &part : parts) {
            arguments << (part == stateFile ? QStringList {part}
                                            : part.split(QLatin1Char(' '), Qt::SkipEmptyParts));
        }
        output.clear();
        errors.clear();
        QTextStream out(&output);
        QTextStream err(&errors);
        return tarnSimulator::runTool(arguments, out, err);
    }

    [[nodiscard]] bool said(const char *text) const { return output.contains(QString::fromUtf8(text)); }
    [[nodiscard]] bool complained(const char *text) const { return errors.contains(QString::fromUtf8(text)); }

    QTemporaryDir folder;
    QString stateFile = folder.filePath(QStringLiteral("machine.state"));
    QString output;
    QString errors;
    std::optional<tarnSimulator::MachineStateFile> machine;
    std::optional<tarnSimulator::ComputerControl> computer;
};

} // namespace tarnSimulatorTest
