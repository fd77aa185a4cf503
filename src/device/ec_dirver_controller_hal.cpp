#include "device/ec_dirver_controller_hal.h"

#include "device/ec_registers.h"
#include "device/recording/ec_recorder.h"
#include "platform/paths.h"
#include "platform/process_wide.h"
#include "platform/waits.h"

#include <QDebug>
#include <QDir>

namespace tarnDeviceInfos {
namespace {

using namespace std::chrono_literals;
using tarnPlatform::sleepFor;

constexpr auto pollInterval = 5ms;
constexpr int maximumPolls = 1000; // bounds every handshake wait at about 5 s
constexpr auto unloadPause = 500ms;
constexpr auto eepromPause = 10ms;
constexpr int maximumEepromPolls = 10;
constexpr quint8 eepromStatusUnread = 255;

constexpr quint8 highByte(quint16 word)
{
    return static_cast<quint8>(word >> 8);
}
constexpr quint8 lowByte(quint16 word)
{
    return static_cast<quint8>(word & 0xFF);
}

} // namespace

EcDirverControllerHal *EcDirverControllerHal::instance()
{
    return tarnPlatform::ProcessWide<EcDirverControllerHal>::instance();
}

EcDirverControllerHal::EcDirverControllerHal()
    : libraryPath(tarnPlatform::path::portLibrary)
    // As an absolute path: for a relative one Windows would search PATH as well, with a service's rights.
    , library(QDir::current().absoluteFilePath(libraryPath))
    , recorder(tarnRecording::EcRecorder::active())
{
    qDebug() << "dirverControllerHal object is create!";
    if (!loadLibrary())
        qFatal("Cannot load library");
    qDebug() << "Library loaded";
}

EcDirverControllerHal::~EcDirverControllerHal()
{
    library.unload();
    qDebug() << "Library is kill";
    qDebug() << "dirverControllerHal object is kill!";
}

int EcDirverControllerHal::readXdata(quint16 address, quint8 *value)
{
    if (!value)
        return -1;
    if (sendReadRequest(address) != 0)
        return -1;
    return readData(value);
}

int EcDirverControllerHal::writeXdata(quint16 address, quint8 value)
{
    if (sendCommand(XDATA_WRITE_CMD) != 0)
        return -1;
    sleepFor(pollInterval);
    if (writeData(highByte(address)) != 0)
        return -1;
    sleepFor(pollInterval);
    if (writeData(lowByte(address)) != 0)
        return -1;
    return writeData(value);
}

int EcDirverControllerHal::readEeprom(quint16 offset)
{
    startEepromOperation(offset, EEP_CMD_READ);
    sleepFor(eepromPause);

    quint8 status = eepromStatusUnread;
    if (readEepromStatus(&status) == 0)
        qDebug() << "wait eep_status  ";
    else
        qWarning() << "readEeprom failed";
    awaitEeprom(&status);

    if (status == EEP_STATUS_DONE) {
        // Returned when nothing can be read, which makes 255 ambiguous; callers know only 0x00 and 0x50.
        quint8 data = 255;
        if (sendReadRequest(EEP_DATA) == 0)
            readData(&data);
        return data;
    }
    if (status == EEP_STATUS_BUSY)
        return -1;
    qWarning() << "read eeprom error";
    return -2;
}

int EcDirverControllerHal::writeEeprom(quint16 offset, quint8 value)
{
    writeXdata(EEP_DATA, value);
    startEepromOperation(offset, EEP_CMD_WRITE);
    sleepFor(eepromPause);

    // Read twice before the polling, with a log line for the second read only, because log readers rely on
    // how long a write takes and on its exact lines: the texts of read and write differ in one blank. The
    // first answer counts when the second read fails.
    quint8 status = eepromStatusUnread;
    readEepromStatus(&status);
    if (readEepromStatus(&status) == 0)
        qDebug() << "wait eep_status ";
    else
        qWarning() << "writeEeprom failed";
    awaitEeprom(&status);

    if (status == EEP_STATUS_DONE) {
        qDebug() << "write eeprom success";
        return 0;
    }
    if (status == EEP_STATUS_BUSY) {
        qWarning() << "write eeprom fail after 10 attempts";
        return -1;
    }
    qWarning() << "write eeprom fail";
    return -2;
}

void EcDirverControllerHal::reloadDLL()
{
    library.unload();
    if (recorder)
        recorder->noteUnload();
    qDebug() << "Library is kill";
    sleepFor(unloadPause);
    if (!loadLibrary())
        qFatal("Cannot load library second");
    qDebug() << "Library loaded second";
}

bool EcDirverControllerHal::loadLibrary()
{
    const bool isLoaded = library.load();
    if (isLoaded) {
        out32Func = reinterpret_cast<Out32>(library.resolve("Out32"));
        inp32Func = reinterpret_cast<Inp32>(library.resolve("Inp32"));
    }
    if (recorder)
        recordLoad(isLoaded);
    if (!isLoaded)
        return false;
    if (!out32Func || !inp32Func)
        qFatal("out32Func or inp32Func is empty!");
    qDebug() << "open out32Func and inp32Func is sucessful!";
    return true;
}

void EcDirverControllerHal::recordLoad(bool isLoaded)
{
    using Result = tarnRecording::EcRecord::LoadResult;
    const bool isComplete = isLoaded && out32Func && inp32Func;
    recorder->noteLoad(isComplete ? Result::Ok : isLoaded ? Result::Incomplete : Result::Failed);
    if (isComplete)
        recorder->tap(out32Func, inp32Func);
}

int EcDirverControllerHal::sendCommand(quint8 command)
{
    // Drain bytes that were never fetched. They are no answers, so they do not count for hasEcAnswered().
    for (int poll = 0; poll < maximumPolls && statusHas(OBF); ++poll) {
        inp32Func(EC_DATA_PORT);
        sleepFor(pollInterval);
    }
    for (int poll = 0; poll < maximumPolls; ++poll) {
        if (statusHas(IBF)) {
            sleepFor(pollInterval);
            continue;
        }
        sleepFor(pollInterval);
        out32Func(EC_CMD_STATUS_PORT, command);
        sleepFor(pollInterval);
        return 0;
    }
    return -1;
}

int EcDirverControllerHal::writeData(quint8 byte)
{
    for (int poll = 0; poll < maximumPolls; ++poll) {
        if (!statusHas(IBF)) {
            out32Func(EC_DATA_PORT, byte);
            return 0;
        }
        sleepFor(pollInterval);
    }
    return -1;
}

int EcDirverControllerHal::readData(quint8 *byte)
{
    for (int poll = 0; poll < maximumPolls; ++poll) {
        if (statusHas(OBF)) {
            ecAnswered = true;
            *byte = lowByte(static_cast<quint16>(inp32Func(EC_DATA_PORT)));
            return 0;
        }
        sleepFor(pollInterval);
    }
    // The EC counts as stuck. This read fails; the next one starts on a reloaded library.
    qDebug() << "ec reader not normal, begin to reload dll.";
    reloadDLL();
    return -1;
}

int EcDirverControllerHal::sendReadRequest(quint16 address)
{
    if (sendCommand(XDATA_READ_CMD) != 0)
        return -1;
    sleepFor(pollInterval);
    if (writeData(highByte(address)) != 0)
        return -1;
    sleepFor(pollInterval);
    return writeData(lowByte(address));
}

bool EcDirverControllerHal::statusHas(quint8 bit) const
{
    return (inp32Func(EC_CMD_STATUS_PORT) & bit) != 0;
}

int EcDirverControllerHal::readEepromStatus(quint8 *status)
{
    return readXdata(EEP_STATUS, status);
}

// The results are ignored. A failed write need not show later either: if the command was not written, the
// status and the data byte that follow are those of the operation before.
void EcDirverControllerHal::startEepromOperation(quint16 offset, quint8 command)
{
    writeXdata(EEP_ADDR_LO, lowByte(offset));
    writeXdata(EEP_ADDR_HI, highByte(offset));
    writeXdata(EEP_LEN, 1);
    writeXdata(EEP_CMD, command);
}

void EcDirverControllerHal::awaitEeprom(quint8 *status)
{
    for (int attempt = 0; *status == EEP_STATUS_BUSY && attempt < maximumEepromPolls; ++attempt) {
        readEepromStatus(status);
        sleepFor(pollInterval);
    }
}

} // namespace tarnDeviceInfos
