#include "client_core.h"

#include "command_catalogue.h"
#include "notification_table.h"
#include "pipe_problem.h"
#include "request.h"

#include <QJsonDocument>

#include <algorithm>
#include <utility>

namespace tarn {

namespace {

using std::chrono::milliseconds;

// Answered from the service's memory, so that a stuck EC cannot delay it.
constexpr QLatin1StringView checkCommand("getAccessoryType");
constexpr qsizetype mostLateQuestions = 10;

} // namespace

ClientCore::ClientCore(Client &owner, const QString &pipeName, const ClientTimes &clientTimes)
    : QObject(&owner)
    , client(owner)
    , name(pipeName)
    , times(clientTimes)
    , connection(pipeName, this)
    , policy(clientTimes)
    , retryTimer(this)
    , waiting(this)
    , line(connection, clientTimes, this)
    , silence(
          clientTimes, [this] { return looksForSilence && client.isListened(); }, this)
    , secondLook(this)
{
    clock.start();
    retryTimer.setSingleShot(true);
    secondLook.setSingleShot(true);
    connect(&connection, &PipeConnection::opened, this, &ClientCore::handleOpened);
    connect(&connection, &PipeConnection::openFailed, this, &ClientCore::handleOpenFailed);
    connect(&connection, &PipeConnection::documentReceived, this, &ClientCore::handleDocument);
    connect(&connection, &PipeConnection::garbageReceived, &client, &Client::garbageReceived);
    connect(&connection, &PipeConnection::serviceGone, this, &ClientCore::handleServiceGone);
    connect(&retryTimer, &QTimer::timeout, this, &ClientCore::connectNow);
    connect(&waiting, &WaitingRequests::arrived, this, &ClientCore::handleArrival);
    connect(&line, &RequestLine::hasWritten, &client, &Client::requestWritten);
    connect(&line, &RequestLine::expired, this, &ClientCore::handleUnanswered);
    connect(&line, &RequestLine::isSent, this, &ClientCore::handleSent);
    connect(&line, &RequestLine::freed, this, &ClientCore::sendNext);
    connect(&secondLook, &QTimer::timeout, this, &ClientCore::lookAgain);
    connect(&silence, &SilenceWatch::due, this, &ClientCore::sendNext);
}

ClientCore::~ClientCore() = default;

Client::State ClientCore::state() const
{
    return currentState;
}

// The connection itself is opened by the event loop.
void ClientCore::open()
{
    policy.forget();
    waiting.open();
    const bool isAtWork = connection.isOpen() || connection.isOpening();
    if (isAtWork) {
        if (state() == Client::State::TakenOver)
            setState(Client::State::Waiting);
        return;
    }
    const milliseconds sinceLast(sinceClosed.isValid() ? sinceClosed.elapsed() : times.leavePause.count());
    retryTimer.start(std::max(times.leavePause - sinceLast, milliseconds(0)));
    setState(Client::State::Waiting);
}

// A continuation or a slot may open the client again.
void ClientCore::close()
{
    const bool wasOpen = currentState.exchange(Client::State::Closed) != Client::State::Closed;
    lastFailure = {};
    leave();
    endRequests(waiting.shut());
    forgetValues();
    if (wasOpen && state() == Client::State::Closed)
        emit client.stateChanged(Client::State::Closed);
}

void ClientCore::shut()
{
    currentState = Client::State::Closed;
    leave();
    endRequests(waiting.shut());
}

void ClientCore::endRequests(const Requests &unwritten)
{
    const std::optional<WrittenRequest> written = line.take();
    if (written && written->request) {
        finish(written->request,
            written->reply().ended(
                Outcome::NoAnswer, QStringLiteral("The client was closed before the answer came.")));
    }
    finishAll(
        unwritten, Outcome::Refused, QStringLiteral("The client was closed before the request was sent."));
}

// Nothing goes on by itself any more.
void ClientCore::leave()
{
    if (connection.isOpen())
        sinceClosed.start();
    retryTimer.stop();
    connection.close();
    line.stopPause();
    silence.stop();
    secondLook.stop();
    isProven = hasLookedTwice = false;
}

void ClientCore::add(RequestQueue::Request request)
{
    waiting.add(std::move(request));
}

void ClientCore::noteListeners()
{
    QMetaObject::invokeMethod(this, &ClientCore::lookAtListeners, Qt::QueuedConnection);
}

// --- the connection

void ClientCore::connectNow()
{
    connection.open();
}

void ClientCore::handleOpened()
{
    lastFailure = {};
    isProven = false;
    waiting.noteConnection();
    // Nobody is told of a connection until it has proven better than those before.
    if (policy.isTakenOver())
        silence.demand();
    else
        setState(Client::State::Connected);
    if (!connection.isOpen()) // closed by a slot
        return;
    silence.begin();
    sendNext();
}

void ClientCore::handleOpenFailed(const PipeFailure &failure)
{
    lastFailure = {problemOf(failure.kind), failure.text};
    retryAfter(policy.pauseAfterFailure(), Client::State::Waiting);
    if (state() == Client::State::Waiting)
        emit client.connectingFailed(lastFailure.problem);
}

void ClientCore::handleServiceGone()
{
    const std::optional<WrittenRequest> written = line.take();
    lastFailure = {Client::Problem::ServiceGone};
    retryAfter(policy.pauseAfterFailure(), Client::State::Waiting);
    if (written && written->request) {
        finish(written->request,
            written->reply().ended(Outcome::ServiceGone,
                QStringLiteral("The service went away before it answered %1.").arg(written->command)));
    }
}

// The service sends nothing to any client from the moment that one of them leaves until the next one
// connects.
void ClientCore::handleSilence()
{
    lastFailure = {Client::Problem::Silence};
    const milliseconds pause = policy.pauseAfterSilence(milliseconds(clock.elapsed()));
    if (!policy.isTakenOver()) {
        retryAfter(pause, Client::State::Waiting);
        return;
    }
    const Requests unwritten = waiting.takeAll();
    retryAfter(pause, Client::State::TakenOver);
    finishWithoutConnection(unwritten);
}

void ClientCore::retryAfter(milliseconds pause, Client::State newState)
{
    leave();
    sinceClosed.start(); // the service may have closed it
    retryTimer.start(pause);
    waiting.waitForConnection(times.connectionWait);
    // The application may close the client in each of these signals.
    const bool isChanged = currentState.exchange(newState) != newState;
    forgetValues();
    if (isChanged && currentState == newState)
        emit client.stateChanged(newState);
}

void ClientCore::setState(Client::State newState)
{
    if (currentState.exchange(newState) != newState)
        emit client.stateChanged(newState);
}

// --- requests

void ClientCore::handleArrival()
{
    if (connection.isOpen())
        sendNext();
    else if (state() == Client::State::TakenOver)
        finishWithoutConnection(waiting.takeAll());
    else if (state() == Client::State::Waiting)
        waiting.waitForConnection(times.connectionWait);
}

void ClientCore::sendNext()
{
    while (connection.isOpen() && line.isFree()) {
        if (silence.takeDue()) {
            askWhetherItIsThere();
            continue;
        }
        if (RequestQueue::Request request = waiting.takeNext()) {
            write(std::move(request));
            continue;
        }
        if (const std::optional<KeptValue> value = values.nextToRead()) {
            values.noteRequest(*value);
            ask(rowOf(*value).query, value);
            continue;
        }
        // Without an answer old notifications cannot be told from new ones.
        if (isProven || !client.mustKnowOld())
            return;
        ask(checkCommand, std::nullopt);
    }
}

// After the slots and continuations of what has ended, so an application that closes the client in them has
// sent nothing more.
void ClientCore::sendNextLater()
{
    QMetaObject::invokeMethod(this, &ClientCore::sendNext, Qt::QueuedConnection);
}

void ClientCore::write(RequestQueue::Request request)
{
    const QString data = request->data;
    WrittenRequest next {std::move(request)};
    next.command = next.request->command;
    next.limit = next.request->limit.value_or(usualLimit(next.command));
    next.isNeverAnswered = isNeverAnswered(next.command, data);
    if (const std::optional<Reply> refusal = line.write(next, data))
        finish(next.request, *refusal);
}

void ClientCore::ask(QLatin1StringView command, std::optional<KeptValue> value)
{
    WrittenRequest next {nullptr, value, command.toString()};
    next.limit = times.questionLimit;
    const std::optional<Reply> refusal = line.write(next, {});
    Q_ASSERT(!refusal); // it is short
}

// The answer is a value that the application may listen to, and that another client may have been told.
void ClientCore::askWhetherItIsThere()
{
    const bool isWanted = values.isWanted(KeptValue::Accessory);
    if (isWanted)
        values.noteRequest(KeptValue::Accessory);
    ask(checkCommand, isWanted ? std::optional(KeptValue::Accessory) : std::nullopt);
}

void ClientCore::handleSent()
{
    const std::optional<WrittenRequest> written = line.take();
    sendNextLater();
    finish(written->request, written->reply().ended(Outcome::Sent));
}

void ClientCore::handleUnanswered()
{
    const std::optional<WrittenRequest> unanswered = line.take();
    if (!unanswered->request)
        noteLateQuestion(unanswered->tag);
    if (provesSilence(*unanswered)) {
        handleSilence();
    } else {
        silence.noteUnanswered();
        line.pauseAfter(*unanswered);
    }
    if (unanswered->request) {
        finish(unanswered->request,
            unanswered->reply().ended(Outcome::NoAnswer,
                QStringLiteral("No answer to %1 within %2.")
                    .arg(unanswered->command, durationText(unanswered->limit))));
    }
}

void ClientCore::noteLateQuestion(const QString &tag)
{
    lateQuestions << tag;
    if (lateQuestions.size() > mostLateQuestions)
        lateQuestions.removeFirst();
}

// A query that needs no EC is answered from memory, whatever the EC does.
bool ClientCore::provesSilence(const WrittenRequest &unanswered) const
{
    if (!unanswered.request)
        return true;
    const CommandEntry *entry = findCommand(unanswered.command);
    return entry != nullptr && !entry->needsEc && !entry->answerKeys.isEmpty()
        && unanswered.limit >= times.questionLimit;
}

// --- messages

void ClientCore::handleDocument(const QByteArray &bytes)
{
    const QJsonDocument document = QJsonDocument::fromJson(bytes);
    if (!document.isObject()) {
        emit client.garbageReceived(bytes);
        return;
    }
    const QJsonObject message = document.object();
    silence.noteMessage();
    if (line.isAnswer(message)) {
        handleAnswer(message, bytes);
        return;
    }
    line.extend();
    if (std::optional<Notification> notification = notificationIn(message)) {
        handleNotification(*std::move(notification));
        return;
    }
    if (lateQuestions.removeOne(message.value(tagKey).toString()))
        emit client.answerReceived(bytes);
    else
        emit client.otherMessageReceived(withoutMark(message));
}

void ClientCore::handleAnswer(const QJsonObject &answer, const QByteArray &bytes)
{
    const std::optional<WrittenRequest> answered = line.take();
    const Reply reply = answered->reply().answered(answer);
    policy.noteAnswer();
    isProven = true;
    sendNextLater();
    setState(Client::State::Connected);
    emit client.answerReceived(bytes);
    if (answered->request)
        finish(answered->request, reply);
    else if (answered->value && connection.isOpen())
        takeValue(*answered->value, reply.value());
}

void ClientCore::takeValue(KeptValue value, const QString &text)
{
    const KeptValueRow &row = rowOf(value);
    const std::optional<int> answer = row.parse(text);
    const bool isNothing = value == KeptValue::Accessory && asAccessory(answer) == Accessory::Disconnected;
    if (isNothing && !std::exchange(hasLookedTwice, true))
        secondLook.start(times.secondLook);
    if (values.takeAnswer(value, answer))
        row.announce(client, values.now(value));
}

void ClientCore::lookAgain()
{
    values.readAgain(KeptValue::Accessory);
    sendNext();
}

// A slot may close the client.
void ClientCore::handleNotification(Notification notification)
{
    notification.isOld = !isProven;
    if (isProven)
        takeAnnounced(notification);
    if (notification.name == graphicsNotification && connection.isOpen())
        emit client.graphicsDisengaged(notification.isOld);
    if (notification.name == smartChargingNotification && connection.isOpen())
        emit client.smartChargingRestored(notification.isOld);
    if (connection.isOpen())
        emit client.notificationReceived(notification);
}

void ClientCore::takeAnnounced(const Notification &notification)
{
    for (const KeptValueRow &row : keptValueRows()) {
        if (row.notification == notification.name
            && values.takeNotification(row.value, row.parse(notification.data)))
            row.announce(client, values.now(row.value));
    }
}

// --- values and silence

void ClientCore::lookAtListeners()
{
    for (const KeptValueRow &row : keptValueRows()) {
        const bool wasForgotten = values.setWanted(row.value, client.isSignalConnected(row.signal()));
        static_cast<void>(wasForgotten); // nobody listens to it
    }
    if (!connection.isOpen())
        return;
    silence.noteListeners();
    sendNext();
}

void ClientCore::forgetValues()
{
    for (const KeptValueRow &row : keptValueRows()) {
        if (values.forget(row.value))
            row.announce(client, std::nullopt);
    }
}

} // namespace tarn
