#pragma once

#include "simulator/computer_control.h"

#include <QColor>
#include <QString>
#include <QStringList>

#include <cstdint>

namespace tarnPanel {

enum class GpuState { None, Stopped, Started, Problem };

// What the drawing shows, read at one time.
struct MachineFacts
{
    bool isAttached = false;
    bool userWaits = false; // with the answer to a question of the service
    std::uint8_t accessoryCode = 0;
    int battery = 0;
    bool isCharging = false;
    int kvaneBattery = 0;
    bool isKvaneCharging = false;
    int kvaneLight = 0;
    QColor dockLight;
    QColor graphicsLight;
    GpuState gpu = GpuState::None;
    QString gpuName;
    unsigned gpuProblem = 0;
    tarnSimulator::McuMode mcu = tarnSimulator::McuMode::Firmware;
    int supplyMode = 0;

    [[nodiscard]] bool hasDock() const;
    [[nodiscard]] bool hasGraphics() const;
    [[nodiscard]] bool hasKvane() const;

    friend bool operator==(const MachineFacts &, const MachineFacts &) = default;
};

[[nodiscard]] MachineFacts factsOf(const tarnSimulator::ComputerControl &computer);

// The name of an accessory as people read it: "Graphics box, 16 GB".
[[nodiscard]] QString accessoryTitle(std::uint8_t code);
// The same for the name that tarnsim has for it.
[[nodiscard]] QString accessoryTitle(const QString &name);
// The computer itself, a line each: battery (first, and without the word), supply.
[[nodiscard]] QStringList computerLines(const MachineFacts &facts);
// What is plugged in, a line each: battery (as above), GPU, lights, MCU. Empty when nothing is.
[[nodiscard]] QStringList accessoryLines(const MachineFacts &facts);
// All of it in sentences, for those who cannot see the drawing.
[[nodiscard]] QString descriptionOf(const MachineFacts &facts);

} // namespace tarnPanel
