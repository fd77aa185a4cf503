#pragma once

#include "platform/waits.h"

#include <QList>
#include <QMutex>
#include <QString>

#include <atomic>
#include <optional>
#include <string>

class QProcess;

namespace tarnPlatform {
template <typename Object> class ProcessWide;
}

namespace tarnFirmwareUpdate {

// Flashes the accessory's MCU and the EC with the external tools under function/. All operations block until
// they are done; they run on handler threads. File names come from clients: one that is not a plain name of a
// firmware file is refused before any file is touched.
class FirmwareUpdater
{
public:
    static FirmwareUpdater *instance();
    virtual ~FirmwareUpdater() = default;
    FirmwareUpdater(const FirmwareUpdater &) = delete;
    FirmwareUpdater &operator=(const FirmwareUpdater &) = delete;

    // firmware_files.cpp: takes the file out of the download folder and flashes it; 0 on success.
    [[nodiscard]] int copyMcuFile(const QString &fileName);
    // Only takes the file; 0 on success.
    [[nodiscard]] int copyEcFile(const QString &fileName);

    // mcu_update.cpp: 0 or -1. Holds ecAccessMutex for about 10 s and the flasher's run. A wait for another
    // update (waitedBefore) counts like one for the EC: the KVane may have been detached meanwhile.
    [[nodiscard]] int mcuUpdate(const QString &fileName, tarnPlatform::milliseconds waitedBefore = {});
    // One run of the flasher, repeated at most twice while it reports errors; 0 or -1.
    [[nodiscard]] int mcuUpdateProcess(const QString &fileName);
    // Switch the KVane's MCU to its boot loader and back; 0, or -1 when there is no KVane or, for leaving,
    // when the mode was not entered. In between the EC stays locked and the monitor paused, whichever threads
    // call.
    [[nodiscard]] int enterMcuUpdateMode();
    [[nodiscard]] int leaveMcuUpdateMode();

    // ec_update.cpp: writes the tool's settings, takes the file, reserves the EC and runs the tool. False
    // when the tool was not run; true does not tell whether it succeeded. One update at a time.
    [[nodiscard]] bool updateEc(const QString &fileName);
    // True unless one of the two files could not be opened or replaced.
    [[nodiscard]] bool modifyEcIniFile(const std::string &iniPath, const std::string &binName);
    void ecUpdate();

private:
    friend class tarnPlatform::ProcessWide<FirmwareUpdater>;
    FirmwareUpdater() = default;

    // Empty when the KVane was detached during the wait for the EC.
    [[nodiscard]] std::optional<int> switchAndFlash(
        const QString &fileName, tarnPlatform::milliseconds waitedBefore);
    [[nodiscard]] bool takeEcForMode(tarnPlatform::milliseconds waitBegan);
    void readControl();
    void changeControl(quint8 bits, bool set);
    void startBootLoader();
    void startFirmware();

    std::atomic<quint8> control {0xFF}; // EC_MCU_UPDATE_CTRL as last read or written
    QMutex modeMutex; // guards ecHeldForMode, and makes a leave wait for an enter that has begun
    bool ecHeldForMode = false;
    [[nodiscard]] bool reserveAndRunEcTool(const QString &fileName);

    QMutex mcuUpdateMutex; // two updates with one file name would take the file from each other
    QMutex ecUpdateMutex; // settings, firmware file and tool are one set, which two updates at a time would
                          // mix up
    // One for each update; only the last one may still run. Never deleted, because that would end a tool that
    // still runs. Guarded by ecUpdateMutex.
    QList<QProcess *> ecTools;
};

} // namespace tarnFirmwareUpdate
