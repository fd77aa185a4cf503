#include "support/simulated_machine.h"

#include "pipe/outbox/send_queue_thread.h"
#include "platform/process_wide.h"
#include "simulator/accessory_catalog.h"
#include "simulator/platform/simulated_computer.h"
#include "simulator/power_on.h"
#include "simulator/register_log.h"
#include "support/pipe_peer.h"

namespace tarnTest {
namespace {

std::unique_ptr<tarnSimulator::MachineState> newState()
{
    auto state = std::make_unique<tarnSimulator::MachineState>();
    tarnSimulator::initialiseState(*state);
    return state;
}

// After a test with a client the send thread would go on logging and posting events while the process ends.
void endSendThread()
{
    auto *sender = tarnPlatform::ProcessWide<tarnPipeServer::SendQueueThread>::existing();
    if (!sender)
        return;
    sender->endQuietly();
    if (waitUntil([sender] { return !sender->isRunning(); }))
        sender->wait(); // for its last steps
}

} // namespace

SimulatedMachine::SimulatedMachine()
    : state(newState())
    , ec(*state, [this] { return static_cast<std::uint64_t>(clock.now().count()); })
    , computer(*state)
{
    folder.installPortLibrary();
    setPortBackend(this);
    tarnPlatform::setSimulatedComputer(state.get());
}

SimulatedMachine::~SimulatedMachine()
{
    endSendThread();
    setPortBackend(nullptr);
    tarnPlatform::setSimulatedComputer(nullptr);
}

void SimulatedMachine::attach(std::uint8_t accessoryCode)
{
    computer.attach(*tarnSimulator::findAccessory(accessoryCode));
}

QStringList SimulatedMachine::traffic()
{
    return accesses(false);
}

QStringList SimulatedMachine::timeline()
{
    return accesses(true);
}

QStringList SimulatedMachine::accesses(bool withTime)
{
    const auto reading = tarnSimulator::RegisterLog(state->log).readAfter(cursor);
    cursor = reading.cursor;
    QStringList texts;
    for (const auto &access : reading.accesses) {
        const QString kind =
            access.kind == tarnSimulator::AccessKind::Read ? QStringLiteral("R") : QStringLiteral("W");
        QString text = QStringLiteral("%1 %2 %3")
                           .arg(kind)
                           .arg(access.address, 4, 16, QLatin1Char('0'))
                           .arg(access.value, 2, 16, QLatin1Char('0'))
                           .toUpper();
        if (withTime)
            text.prepend(QStringLiteral("%1 ").arg(access.timeMs - cursorTime));
        texts << text;
    }
    cursorTime = static_cast<std::uint64_t>(clock.now().count());
    return texts;
}

} // namespace tarnTest
