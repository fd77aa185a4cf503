#include "service_talk.h"

#include "event_wait.h"

#include "client/tarnctl/answer_text.h"
#include "client/tarnctl/connect_failure.h"
#include "client/tarnctl/no_answer_text.h"

#include <QJsonObject>

namespace tarnctl {

namespace {

using tarn::Client;
using tarn::Outcome;

const QString accessoryQuery = QStringLiteral("getAccessoryType");
const QString accessoryChange = QStringLiteral("changeAccessoryType");
const QString boxRelease = QStringLiteral("disengagedGraphics");

std::string requestText(const QString &command, const QString &data)
{
    return compactJson(QJsonObject {{QStringLiteral("command"), command}, {QStringLiteral("data"), data}})
        .toStdString();
}

QString textOf(const tarn::Reply &reply)
{
    switch (reply.outcome()) {
    case Outcome::Answered:
    case Outcome::Failed:
        return answerText(reply.command(), reply.answer()).replace(u'\n', QStringLiteral(", "));
    case Outcome::Sent:
        return sentText.toString();
    case Outcome::NoAnswer:
        return noAnswerText(reply.command(), reply.reason());
    case Outcome::ServiceGone:
    case Outcome::Refused:
        break;
    }
    return reply.reason();
}

} // namespace

// The library's own question after a minute of silence would not be in the journal, and draw the answers of
// an application that was started meanwhile.
ServiceTalk::ServiceTalk(const QString &pipe, const tarn::ClientTimes &times,
    std::optional<std::chrono::milliseconds> longest, tarnRecording::RequestJournal &requestJournal)
    : pipeName(pipe)
    , limit(longest)
    , journal(requestJournal)
    , client(pipe, times)
{
    client.setLooksForSilence(false);
    connect(&client, &Client::notificationReceived, this, &ServiceTalk::note);
    connect(&client, &Client::stateChanged, this, &ServiceTalk::noteState);
    connect(&client, &Client::otherMessageReceived, this, [this] { ++messages; });
}

QString ServiceTalk::connectToService()
{
    bool hasFailed = false;
    connect(&client, &Client::connectingFailed, this, [&hasFailed] { hasFailed = true; });
    client.open();
    waitUntilHolds([&] { return hasFailed || client.state() == Client::State::Connected; });
    disconnect(&client, &Client::connectingFailed, this, nullptr);
    return hasFailed ? connectFailureText(pipeName, client.problem(), client.problemText()) : QString();
}

Exchange ServiceTalk::ask(const QString &command, const QString &data)
{
    messages = 0;
    std::optional<tarn::Reply> reply;
    journal.note(tarnRecording::RequestRecord::Kind::Request, requestText(command, data));
    client.send(command, data.isEmpty() ? QString() : data, limit)
        .then(this, [&reply](const tarn::Reply &came) { reply = came; });
    waitUntilHolds([&reply] { return reply.has_value(); }); // the library ends each request
    if (command == accessoryQuery && reply->isAnswered())
        attached = reply->value();
    return {*reply, textOf(*reply), messages};
}

bool ServiceTalk::isAnswered()
{
    return ask(accessoryQuery).reply.isAnswered() && !hasFallenSilent;
}

// The library then connects again, and its next question is answered.
void ServiceTalk::noteState(Client::State state)
{
    hasFallenSilent = hasFallenSilent
        || (state != Client::State::Connected && client.problem() == Client::Problem::Silence);
}

void ServiceTalk::note(const tarn::Notification &notification)
{
    ++messages;
    arrived << notification;
    if (notification.name == accessoryChange) {
        attached = notification.data;
        hasReleased = false;
    } else if (notification.name == boxRelease) {
        hasReleased = true;
    }
}

} // namespace tarnctl
