#include "support/scripted_ports.h"

namespace tarnTest {
namespace {

constexpr std::uint16_t dataPort = 0x68;
constexpr std::uint16_t statusPort = 0x6C;
constexpr std::uint8_t channelBits = 0x03;

QString hex(std::uint8_t value)
{
    return QStringLiteral("%1").arg(value, 2, 16, QLatin1Char('0')).toUpper();
}

} // namespace

ScriptedPorts::ScriptedPorts()
{
    folder.installPortLibrary();
    setPortBackend(this);
    clock.onWait = [this](milliseconds wait) {
        trace << QStringLiteral("sleep %1").arg(wait.count());
    };
}

ScriptedPorts::~ScriptedPorts()
{
    setPortBackend(nullptr);
}

void ScriptedPorts::out(std::uint16_t port, std::uint8_t value)
{
    const QString kind = port == statusPort ? QStringLiteral("command ")
        : port == dataPort                  ? QStringLiteral("byte ")
                                            : QStringLiteral("port %1 ").arg(port);
    trace << kind + hex(value);
}

std::uint8_t ScriptedPorts::in(std::uint16_t port)
{
    if (port == statusPort) {
        trace << QStringLiteral("status");
        otherBits += 0x64; // goes through all values of the six bits
        return static_cast<std::uint8_t>((status() & channelBits) | (otherBits & ~channelBits));
    }
    if (port != dataPort) {
        trace << QStringLiteral("port %1").arg(port);
        return 0xFF;
    }
    const std::uint8_t value = data();
    trace << QStringLiteral("data ") + hex(value);
    return value;
}

QStringList ScriptedPorts::takeTrace()
{
    return std::exchange(trace, {});
}

} // namespace tarnTest
