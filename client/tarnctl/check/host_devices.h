#pragma once

#include <QList>
#include <QString>

namespace tarnctl {

// A display adapter or an audio device of the computer, as Windows shows it.
struct HostDevice
{
    enum class Kind { Display, Audio };

    Kind kind = Kind::Display;
    bool isStarted = false;
    quint32 problem = 0; // code of the configuration manager; 0: none
    QString description {};
    QString hardwareId {}; // the first one
    QString instanceId {};

    bool operator==(const HostDevice &) const = default;
};

// Those that are present. None on systems where the simulated computer has devices of its own.
[[nodiscard]] QList<HostDevice> hostDevices();

} // namespace tarnctl
