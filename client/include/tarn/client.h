#pragma once

#include <tarn/reply.h>
#include <tarn/values.h>

#include <QFuture>
#include <QObject>

#include <chrono>
#include <cstdint>
#include <optional>

namespace tarn {

class ClientCore;
struct ClientTimes;

// A message that the service sends without a request.
struct Notification
{
    QString name;
    QString data;
    // It came before the first answer on its connection, so the service may have kept it for a long time. An
    // application that only listens, and only to notificationReceived(), may never get an answer.
    bool isOld = false;
};

// A connection to Tarn Service that is kept: it waits for the service, comes back after a restart of the
// service and after another client has made the service fall silent, and writes one request at a time.
//
// Threads: the object lives on one thread, which needs an event loop, and may be moved to another while it is
// closed. All signals are emitted there. send(), the operations that are named like commands, and state() may
// be called from any thread; everything else from the object's own thread only. Nothing blocks, and nothing
// runs an event loop. Do not wait for a future on the object's own thread: its answer could never come. No
// other thread may be in a call when the object is destroyed.
//
// Slots and continuations may call everything, run an event loop, and close the object. To destroy it there,
// use deleteLater(). No lock is held while they run. A continuation that names no context runs on the
// object's thread, or at once where the future has ended already.
//
// While anything is connected to one of its signals, the client asks the service for something that needs no
// EC whenever it has heard nothing for a minute and no request is on its way; so that is how long it may take
// to notice that the service has fallen silent, and the limit of the request that is on its way (15 min for
// an update) where there is one. The answer is the accessory, so accessoryChanged() then also follows a
// change of which another client was told. It also asks after a request without an answer, at most once a
// minute.
class Client : public QObject
{
    Q_OBJECT
    Q_PROPERTY(State state READ state NOTIFY stateChanged)

public:
    enum class State {
        // Not opened, or closed again.
        Closed,
        // There is no connection. The client tries again by itself; problem() tells what is in the way.
        Waiting,
        // There is a connection, and nothing has shown that the service does not talk to it.
        Connected,
        // The service has fallen silent three times in a row, as it does when another client comes and
        // goes, or when it hangs. The client tries again after a minute, or when open() is called.
        TakenOver,
    };
    Q_ENUM(State)

    // Why there is no connection.
    enum class Problem {
        NoProblem,
        // No service has the pipe open.
        NoService,
        // The service's pipe does not let this user in. On Windows an administrator is needed.
        AccessDenied,
        // The pipe's name is too long for the system, so no service can have it.
        NameTooLong,
        // The service has closed the connection.
        ServiceGone,
        // The client has closed it, because the service had fallen silent; see State::TakenOver.
        Silence,
        // See problemText().
        SystemError,
    };
    Q_ENUM(Problem)

    explicit Client(QObject *parent = nullptr);
    // For a service on a pipe with another name.
    explicit Client(const QString &pipeName, QObject *parent = nullptr);
    // For tests of this library, with other waiting times.
    Client(const QString &pipeName, const ClientTimes &times, QObject *parent = nullptr);
    // Ends every request: what was written with NoAnswer, the rest with Refused.
    ~Client() override;

    // Connects and keeps the connection until close(). Returns at once. While no connection is there, it also
    // tries again at once instead of later, and forgets how often the service has fallen silent.
    void open();
    // Disconnects, and ends every request as the destructor does.
    void close();
    // Whether the client looks for silence, as it does unless it is told otherwise. Its question draws the
    // service's messages here, also those that another program waits for; so a program that only looks on
    // turns it off, and does not notice that the service has fallen silent before a request is not answered.
    void setLooksForSilence(bool isOn);
    [[nodiscard]] State state() const;
    [[nodiscard]] Problem problem() const;
    // The system's own words for a SystemError.
    [[nodiscard]] QString problemText() const;
    // The full name of the pipe on this system, for messages to the user.
    [[nodiscard]] QString pipePath() const;

    // Sends any command; a null `data`: none. One request is on its way at a time, the others wait in order,
    // at most 1000.
    //
    // The limit counts from the writing of the request, and grows by 0.6 s for each message that comes before
    // the answer. Without one, that of the command holds: 10 s for what the service has in memory, 30 s for
    // what needs the EC, 45 s for entering and leaving the update mode, 60 s for
    // requestBeginGraphicsMcuUpdate, 15 min for an update, 10 s for an unknown command.
    //
    // A request that finds no connection waits up to 10 s for one and then ends with ServiceGone; in the
    // state TakenOver it ends so at once. A limit of the caller's own is at most seven days. Every future
    // that is not cancelled ends with exactly one Reply. Cancelling takes a request that has not been written
    // out of the queue; one that has been written is carried out all the same: its future has the progress
    // value 1.
    [[nodiscard]] QFuture<Reply> send(const QString &command, const QString &data = {},
        std::optional<std::chrono::milliseconds> limit = {});

    // One operation for each command, under its name. A firmware name that the service would not take is
    // Refused.

    [[nodiscard]] QFuture<ReplyWith<Accessory>> getAccessoryType();
    // As the service gives it: "1.23" may stand for 1, 2 and 3 as well as for 1 and 23. Empty answers have no
    // result.
    [[nodiscard]] QFuture<ReplyWith<QString>> getMcuVersion();
    [[nodiscard]] QFuture<ReplyWith<int>> getHardwareVersion();
    // The code by which the EC names the accessory.
    [[nodiscard]] QFuture<ReplyWith<int>> getAccessoryCode();
    [[nodiscard]] QFuture<ReplyWith<McuUpdateParameters>> getMcuUpdateParameters();

    // Takes manual power control and applies the saved profile, which is the result. When the EC refuses
    // manual control, the service applies nothing and answers with the profile of the last time.
    [[nodiscard]] QFuture<ReplyWith<Profile>> powerModeControlFirst();
    [[nodiscard]] QFuture<Reply> powerModeControl(Profile profile);
    // Gives power control back. The service never answers, so this ends as Sent, one second after it was
    // written: by then the service has read it, and the connection may be closed.
    [[nodiscard]] QFuture<Reply> powerModeControlLast();
    // The profile that the user chose, as the EC remembers it; it changes no limits.
    [[nodiscard]] QFuture<ReplyWith<Profile>> getTarnPowerMode();
    [[nodiscard]] QFuture<Reply> setTarnPowerMode(Profile profile);

    // True: on.
    [[nodiscard]] QFuture<ReplyWith<bool>> getDockLedStatus();
    [[nodiscard]] QFuture<Reply> setDockLedStatus(bool isOn);
    [[nodiscard]] QFuture<ReplyWith<Colour>> getGraphicsRGB();
    [[nodiscard]] QFuture<Reply> setGraphicsRGB(Colour colour);
    // Brings back the last colour that was not off, which is the result.
    [[nodiscard]] QFuture<ReplyWith<Colour>> setGraphicsRGBOn();
    // Disables the GPU of the graphics box. Whether that worked is only in the service's log.
    [[nodiscard]] QFuture<Reply> requestBeginGraphicsMcuUpdate();

    // True: on. An answer of "failed" has no result.
    [[nodiscard]] QFuture<ReplyWith<bool>> getSmartChargingStatus();
    [[nodiscard]] QFuture<Reply> setSmartChargingStatus(bool isOn);

    // 14 hexadecimal digits.
    [[nodiscard]] QFuture<ReplyWith<QString>> getTarnKvaneSnCode();
    // The service answers whether it worked or not.
    [[nodiscard]] QFuture<Reply> setKVaneLedLight(std::uint8_t light);
    // The next five are values as the service last announced them; it looks for changes while a KVane is
    // attached.
    [[nodiscard]] QFuture<ReplyWith<int>> getKVaneLedLight(); // 0 to 255
    [[nodiscard]] QFuture<ReplyWith<bool>> getKvaneChargingStatus();
    [[nodiscard]] QFuture<ReplyWith<int>> getKvaneBatteryNum(); // per cent
    [[nodiscard]] QFuture<ReplyWith<bool>> getTarnChargingStatus();
    [[nodiscard]] QFuture<ReplyWith<int>> getTarnBatteryNum(); // per cent

    // See tarn::FirmwareUpdate for a whole update. The result is the version that runs now.
    [[nodiscard]] QFuture<ReplyWith<QString>> requestMcuUpdate(const QString &fileName);
    [[nodiscard]] QFuture<Reply> requestEnterMcuUpdateMode();
    // The result is the version that runs now.
    [[nodiscard]] QFuture<ReplyWith<QString>> requestLeaveMcuUpdateMode();
    [[nodiscard]] QFuture<Reply> requestStartEcUpdate();
    [[nodiscard]] QFuture<Reply> requestEcUpdate(const QString &fileName);

    // Values that the client keeps while something is connected to their signals: it reads them when it has
    // connected, and follows the service's notifications. Nothing while there is no connection, until they
    // have been read anew, and where the service does not know them. Levels and charging are as the service
    // last announced them: it looks for changes while a KVane is attached.
    [[nodiscard]] std::optional<Accessory> accessory() const;
    [[nodiscard]] std::optional<int> batteryLevel() const; // per cent
    [[nodiscard]] std::optional<bool> isCharging() const;
    [[nodiscard]] std::optional<int> kvaneBatteryLevel() const; // per cent
    [[nodiscard]] std::optional<bool> isKvaneCharging() const;
    [[nodiscard]] std::optional<int> kvaneLight() const; // 0 to 255

Q_SIGNALS:
    void stateChanged(tarn::Client::State state);
    // An attempt to connect has failed; the next one follows by itself.
    void connectingFailed(tarn::Client::Problem problem);

    void accessoryChanged(std::optional<tarn::Accessory> accessory);
    void batteryLevelChanged(std::optional<int> level);
    void chargingChanged(std::optional<bool> isCharging);
    void kvaneBatteryLevelChanged(std::optional<int> level);
    void kvaneChargingChanged(std::optional<bool> isCharging);
    void kvaneLightChanged(std::optional<int> light);
    // Stop using the GPU of the graphics box: it is disabled 2 s after the service queued this message.
    // `isOld` as in Notification.
    void graphicsDisengaged(bool isOld);
    // Five days after it was switched off, the service has switched smart charging on again.
    void smartChargingRestored(bool isOld);

    // Every notification of the service, those with a signal of their own included.
    void notificationReceived(const tarn::Notification &notification);
    // Every other message, without the mark by which answers are recognised: a late answer, or the answer to
    // another program.
    void otherMessageReceived(const QJsonObject &message);
    // Bytes that are no message.
    void garbageReceived(const QByteArray &bytes);

    // For a program that shows all that passes. As it is on the pipe, with the mark by which answers are
    // recognised: each request that was written, the client's own questions included, and each answer to one.
    // What else comes is in the signals above.
    void requestWritten(const QByteArray &request);
    void answerReceived(const QByteArray &answer);

protected:
    void connectNotify(const QMetaMethod &signal) override;
    void disconnectNotify(const QMetaMethod &signal) override;

private:
    friend class ClientCore;

    // Whether anything is connected to a signal, and to one that an old notification would mislead.
    [[nodiscard]] bool isListened() const;
    [[nodiscard]] bool mustKnowOld() const;

    ClientCore *core; // a child, so that it moves to another thread with the client
};

} // namespace tarn
