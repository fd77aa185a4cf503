#pragma once

#include "device/ec_access_lock.h"
#include "device/ec_dirver_controller_hal.h"
#include "device/ec_registers.h"
#include "device/monitor/ec_dirver_reader.h"
#include "support/desktop_stand_ins.h"
#include "support/simulated_machine.h"
#include "update/firmware_updater.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QProcess>

namespace tarnTest {

// A KVane, a download folder and tools that are shell scripts of the test.
class UpdateTest : public MachineTest
{
protected:
    UpdateTest()
        : monitor(tarnDeviceInfos::EcDirverReader::instance())
        , updater(tarnFirmwareUpdate::FirmwareUpdater::instance())
    {
        homeBefore = qgetenv("HOME");
        qputenv("HOME", machine.folder.path(".").toLocal8Bit());
        qputenv("XDG_CONFIG_HOME", machine.folder.path(".").toLocal8Bit());
        for (const char *folder : {"Downloads", "function/MCU", "function/EC"})
            QDir().mkpath(machine.folder.path(folder));
        tarnDeviceInfos::EcDirverControllerHal::instance();
        attachAccessory(tarnDeviceInfos::ACCESSORY_KVANE);
    }
    ~UpdateTest() override
    {
        qputenv("HOME", homeBefore);
        qunsetenv("XDG_CONFIG_HOME");
    }

    // Attached and noticed by the monitor.
    void attachAccessory(quint8 code)
    {
        machine.attach(code);
        monitor->pollAccessory();
        forgetPast();
    }

    void forgetPast()
    {
        machine.log.clear();
        machine.traffic();
        machine.clock.forgetWaits();
        start = machine.clock.now();
    }

    void installTool(const char *name, const QByteArray &commands)
    {
        machine.folder.write(name, "#!/bin/sh\n" + commands + '\n');
        QFile(machine.folder.path(name))
            .setPermissions(QFile::ReadOwner | QFile::WriteOwner | QFile::ExeOwner);
    }
    void installFlasher(const QByteArray &commands)
    {
        installTool("function/MCU/stm32flash.exe", "echo run >>runs\n" + commands);
    }
    // Commands of a tool that goes on until there is a file "go" beside it, or for a while.
    static constexpr char untilGo[] =
        "touch running; for i in $(seq 1500); do [ ! -e go ] || break; sleep 0.01; done";
    [[nodiscard]] int flasherRuns() const
    {
        return static_cast<int>(machine.folder.read("function/MCU/runs").count('\n'));
    }

    void download(const QByteArray &content, const char *name = "fw.bin")
    {
        machine.folder.write(QString("Downloads/") + name, content);
    }
    [[nodiscard]] bool exists(const QString &name) const { return QFile::exists(machine.folder.path(name)); }
    [[nodiscard]] int elapsed() const { return static_cast<int>((machine.clock.now() - start).count()); }

    tarnDeviceInfos::EcDirverReader *monitor;
    tarnFirmwareUpdate::FirmwareUpdater *updater;
    ScriptedSession session;
    milliseconds start {0};

private:
    QByteArray homeBefore;
};

} // namespace tarnTest
