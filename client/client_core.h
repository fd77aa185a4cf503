#pragma once

#include "client_times.h"
#include "kept_values.h"
#include "pipe_connection.h"
#include "reconnect_policy.h"
#include "request_line.h"
#include "silence_watch.h"
#include "waiting_requests.h"

#include "tarn/client.h"

#include <QElapsedTimer>

#include <atomic>

namespace tarn {

// What a Client does: it keeps the connection and writes one request at a time. Requests of the application
// come first, then the values that are kept; the question whether the service still talks to this client goes
// before both.
class ClientCore : public QObject
{
    Q_OBJECT

public:
    ClientCore(Client &owner, const QString &pipeName, const ClientTimes &clientTimes);
    ~ClientCore() override;

    void open();
    void close();
    // Ends every request, and every later one, without a signal.
    void shut();
    void setLooksForSilence(bool isOn) { looksForSilence = isOn; }
    // From any thread.
    void add(RequestQueue::Request request);
    void noteListeners();
    [[nodiscard]] Client::State state() const;

    [[nodiscard]] Client::Problem problem() const { return lastFailure.problem; }
    [[nodiscard]] QString problemText() const { return lastFailure.text; }
    [[nodiscard]] QString pipeName() const { return name; }
    [[nodiscard]] std::optional<int> kept(KeptValue value) const { return values.now(value); }

private:
    struct Failure
    {
        Client::Problem problem = Client::Problem::NoProblem;
        QString text {};
    };
    using Requests = std::vector<RequestQueue::Request>;

    void connectNow();
    void handleOpened();
    void handleOpenFailed(const PipeFailure &failure);
    void handleServiceGone();
    void handleSilence();
    void leave();
    void endRequests(const Requests &unwritten);
    void retryAfter(std::chrono::milliseconds pause, Client::State newState);
    void setState(Client::State newState);

    void handleArrival();
    void sendNext();
    void sendNextLater();
    void write(RequestQueue::Request request);
    void askWhetherItIsThere();
    void ask(QLatin1StringView command, std::optional<KeptValue> value);
    void handleSent();
    void handleUnanswered();
    void noteLateQuestion(const QString &tag);
    [[nodiscard]] bool provesSilence(const WrittenRequest &unanswered) const;

    void handleDocument(const QByteArray &bytes);
    void handleAnswer(const QJsonObject &answer, const QByteArray &bytes);
    void handleNotification(Notification notification);

    void takeAnnounced(const Notification &notification);
    void takeValue(KeptValue value, const QString &text);
    void lookAgain();
    void lookAtListeners();
    void forgetValues();

    Client &client;
    const QString name;
    const ClientTimes times;
    std::atomic<Client::State> currentState = Client::State::Closed;
    Failure lastFailure;
    PipeConnection connection;
    ReconnectPolicy policy;
    QTimer retryTimer;

    WaitingRequests waiting;
    RequestLine line;
    SilenceWatch silence;
    bool looksForSilence = true;
    // The client's own questions without an answer: one that comes late is of no use to the application.
    QStringList lateQuestions;

    KeptValues values;
    // For the accessory; it runs once on each connection.
    QTimer secondLook;
    bool hasLookedTwice = false;
    QElapsedTimer clock;
    QElapsedTimer sinceClosed;
    // The service has answered on this connection.
    bool isProven = false;
};

} // namespace tarn
