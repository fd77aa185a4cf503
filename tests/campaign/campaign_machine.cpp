#include "campaign_machine.h"

#include "device/ec_dirver_controller_hal.h"
#include "pipe/tarn_pipe_server.h"

#include <QDir>
#include <QFile>

namespace tarnCampaign {

using namespace tarnDeviceInfos;

namespace {

constexpr int slowestAcceptancePolls = 2000; // the driver gives up after 1000

} // namespace

CampaignMachine::CampaignMachine()
    : homeBefore(qgetenv("HOME"))
{
    qputenv("HOME", folder.path(".").toLocal8Bit());
    qputenv("XDG_CONFIG_HOME", folder.path(".").toLocal8Bit());
    for (const char *name : {"Downloads", "function/MCU", "function/EC"})
        QDir().mkpath(folder.path(name));
    folder.write("function/EC/uiset.ini", "AutoFlash=0\nBinName=old.rom\n");
    const QString flasher = folder.path("function/MCU/stm32flash.exe");
    folder.write("function/MCU/stm32flash.exe", "#!/bin/sh\n[ ! -e refuse ] || echo no >&2\n");
    QFile(flasher).setPermissions(QFile::ReadOwner | QFile::WriteOwner | QFile::ExeOwner);

    EcDirverControllerHal::instance();
    tarnPipeServer::TarnPipeServer::instance();
}

CampaignMachine::~CampaignMachine()
{
    qputenv("HOME", homeBefore);
    qunsetenv("XDG_CONFIG_HOME");
}

void CampaignMachine::out(std::uint16_t port, std::uint8_t value)
{
    SimulatedMachine::out(port, value);
    const auto reports = computer.gpuReports();
    if (reports.count == reportsSeen)
        return;
    reportsSeen = reports.count;
    if (onGpuReport)
        onGpuReport(reports.gpuDriverData);
}

void CampaignMachine::heal()
{
    faults().clear();
    // With a stuck output buffer the driver takes the next byte for its answer before the EC has taken the
    // request's last byte. A slow EC answers that request later, so a repair includes the time for that.
    for (int look = 0; look < slowestAcceptancePolls && isInputWaiting(); ++look)
        in(EC_CMD_STATUS_PORT);
    const std::uint32_t opened = state->devices.listsOpened;
    const std::uint32_t closed = state->devices.listsClosed;
    computer.devices().reset();
    state->devices.listsOpened = opened;
    state->devices.listsClosed = closed;
    computer.setHostBattery(70);
    computer.setPowerControl(PL_CTRL_MANUAL); // as a client's start leaves it
    session.serviceSession = false;
    session.stage = tarnPlatform::LaunchStage::Ended;
    session.exitCode = 1;
    processes.programs.removeAll("Tarn.exe");
}

bool CampaignMachine::isInputWaiting() const
{
    return state->channel.inputKind.load() != 0;
}

bool CampaignMachine::isExchangeOpen() const
{
    return state->channel.phase.load() != 0 || isInputWaiting();
}

bool CampaignMachine::takesBytesSlowly() const
{
    return state->timing.acceptancePolls.load() != 0;
}

std::uint8_t CampaignMachine::attachedCode() const
{
    return computer.isAttached() ? computer.peek(ACCESSORY_CODE) : ACCESSORY_NONE;
}

} // namespace tarnCampaign
