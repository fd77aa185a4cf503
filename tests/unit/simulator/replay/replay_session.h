#pragma once

#include "unit/simulator/replay/recording_builder.h"
#include "unit/simulator/tarnsim_session.h"

#include "simulator/replay/replay_control.h"
#include "simulator/replay/replayed_ports.h"

#include <memory>

namespace tarnSimulatorTest {

// A computer that answers from a recording, without a service.
class ReplaySession : public TarnsimSession
{
protected:
    [[nodiscard]] std::string file(const char *name) const
    {
        return folder.filePath(QString::fromUtf8(name)).toStdString();
    }
    // Prepares with the tool; its exit code.
    int prepare(const RecordingBuilder &recording, const char *options = "")
    {
        recording.save(file("ec.recording"));
        return runBare({QStringLiteral("--state"), stateFile,
            QStringLiteral("replay %1 %2")
                .arg(folder.filePath(QStringLiteral("ec.recording")), QLatin1String(options))});
    }
    void steps(const std::string &text) const
    {
        std::ofstream(file("ec.requests"), std::ios::binary) << text;
    }
    // The port library is loaded, once more perhaps.
    void load()
    {
        ports = tarnSimulator::replayedPorts(machine->state(), machine->path());
        ASSERT_NE(ports, nullptr);
        ports->noteLoad();
    }
    // As a host does it that waits for nothing.
    std::uint8_t readRegister(std::uint16_t address)
    {
        ports->write(0x6C, 0x92);
        static_cast<void>(ports->read(0x6C));
        ports->write(0x68, static_cast<std::uint8_t>(address >> 8));
        static_cast<void>(ports->read(0x6C));
        ports->write(0x68, static_cast<std::uint8_t>(address & 0xFF));
        static_cast<void>(ports->read(0x6C));
        return static_cast<std::uint8_t>(ports->read(0x68));
    }
    void writeRegister(std::uint16_t address, std::uint8_t value)
    {
        ports->write(0x6C, 0x93);
        static_cast<void>(ports->read(0x6C));
        ports->write(0x68, static_cast<std::uint8_t>(address >> 8));
        static_cast<void>(ports->read(0x6C));
        ports->write(0x68, static_cast<std::uint8_t>(address & 0xFF));
        ports->write(0x68, value);
    }
    [[nodiscard]] tarnSimulator::Replay state() const { return replayOf(machine->state()); }

    std::unique_ptr<tarnSimulator::ReplayedPorts> ports;
};

} // namespace tarnSimulatorTest
