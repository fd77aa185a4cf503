#pragma once

#include <QLibrary>
#include <QObject>
#include <QString>

#include <atomic>

namespace tarnPlatform {
template <typename Object> class ProcessWide;
}

namespace tarnRecording {
class EcRecorder;
}

namespace tarnDeviceInfos {

// The only code that touches hardware ports: one byte of EC memory (xdata) or of EC EEPROM at a time, over
// the EC's second host channel. Any thread may call it, but it has no lock of its own: whole exchanges run
// under ecAccessMutex, which the callers hold. All waits block the calling thread.
class EcDirverControllerHal : public QObject
{
    Q_OBJECT

public:
    // Loads the port library at the first call; ends the process when it cannot.
    static EcDirverControllerHal *instance();
    ~EcDirverControllerHal() override;

    // 0 with the byte in *value, or -1 with *value untouched (callers rely on their initial value).
    virtual int readXdata(quint16 address, quint8 *value);
    // 0 or -1.
    virtual int writeXdata(quint16 address, quint8 value);
    // The byte; -1 mailbox stayed busy, -2 mailbox error. 255 also when the data could not be read.
    int readEeprom(quint16 offset);
    // 0; -1 mailbox stayed busy, -2 mailbox error.
    int writeEeprom(quint16 offset, quint8 value);

    // True once any byte was read from the data port: the EC has answered since the start.
    [[nodiscard]] bool hasEcAnswered() const { return ecAnswered; }

public Q_SLOTS:
    void reloadDLL();

Q_SIGNALS:
    void reloadDllSignal();

protected:
    EcDirverControllerHal();

private:
    friend class tarnPlatform::ProcessWide<EcDirverControllerHal>;
    using Out32 = void (*)(quint16 port, qint16 value);
    using Inp32 = qint16 (*)(quint16 port);

    bool loadLibrary();
    void recordLoad(bool isLoaded);
    int sendCommand(quint8 command);
    int writeData(quint8 byte);
    int readData(quint8 *byte);

    int sendReadRequest(quint16 address);
    [[nodiscard]] bool statusHas(quint8 bit) const;
    int readEepromStatus(quint8 *status);
    void startEepromOperation(quint16 offset, quint8 command);
    void awaitEeprom(quint8 *status);

    std::atomic<bool> ecAnswered {false};
    Out32 out32Func = nullptr;
    Inp32 inp32Func = nullptr;
    QString libraryPath;
    QLibrary library;
    tarnRecording::EcRecorder *const recorder; // null when nothing is recorded
};

} // namespace tarnDeviceInfos
