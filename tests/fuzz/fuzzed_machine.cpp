#include "fuzzed_machine.h"

#include "device/ec_access_lock.h"
#include "device/ec_dirver_controller_hal.h"
#include "device/ec_registers.h"
#include "device/monitor/ec_dirver_reader.h"
#include "harness.h"
#include "pipe/outbox/send_queue_thread.h"
#include "pipe/tarn_pipe_server.h"

#include <QCoreApplication>
#include <QDir>

namespace tarnFuzz {
namespace {

constexpr int inputsUntilQueueIsEmptied = 2000;

} // namespace

FuzzedMachine &FuzzedMachine::instance()
{
    static auto *machine = new FuzzedMachine;
    return *machine;
}

FuzzedMachine::FuzzedMachine()
{
    silenceLog(); // before anything is captured
    // The download folder lies here, so that the user's own downloads are not touched.
    qputenv("HOME", QDir::currentPath().toLocal8Bit());
    qputenv("XDG_CONFIG_HOME", QDir::currentPath().toLocal8Bit());
    QDir().mkpath(QStringLiteral("Downloads"));
    tarnDeviceInfos::EcDirverControllerHal::instance();
    tarnPipeServer::TarnPipeServer::instance();
}

void FuzzedMachine::startAfresh()
{
    faults().clear();
    computer.detach();
    computer.devices().reset();
    computer.setPowerControl(tarnDeviceInfos::PL_CTRL_MANUAL); // as a client's start leaves it
    clock.forgetWaits();
    if (++inputsSinceEmptied < inputsUntilQueueIsEmptied)
        return;
    inputsSinceEmptied = 0;
    emptySendQueue();
}

void FuzzedMachine::attachAndPoll(std::uint8_t accessoryCode)
{
    if (const auto *known = tarnSimulator::findAccessory(accessoryCode))
        computer.attach(*known);
    else if (accessoryCode != tarnDeviceInfos::ACCESSORY_NONE)
        computer.attach(tarnSimulator::unknownAccessory(accessoryCode));
    const tarnDeviceInfos::EcAccess access;
    require(static_cast<bool>(access), "the EC is free between inputs");
    tarnDeviceInfos::EcDirverReader::instance()->pollAccessory();
}

// Messages wait for a client that never comes; the sender drops what it takes out while there is none.
void FuzzedMachine::emptySendQueue()
{
    auto *sender = tarnPipeServer::SendQueueThread::instance();
    sender->startSending();
    while (!sender->waitingMessages().isEmpty())
        QCoreApplication::processEvents();
    sender->endQuietly();
    while (!sender->isFinished())
        QCoreApplication::processEvents();
}

} // namespace tarnFuzz
