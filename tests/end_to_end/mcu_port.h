#pragma once

#include <QProcess>

namespace tarnTest {

class ServiceProcess;

// The serial port COM1 of a service's computer, with the KVane's MCU at its other end.
class McuPort
{
public:
    ~McuPort();
    // False where there is none: on Windows it has to be served from outside.
    [[nodiscard]] bool open(const ServiceProcess &service);

private:
    QProcess process;
};

} // namespace tarnTest
