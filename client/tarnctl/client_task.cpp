#include "client_task.h"

#include "answer_text.h"
#include "connect_failure.h"

namespace tarnctl {

namespace {

using tarn::Client;

} // namespace

ClientTask::ClientTask(
    const ToolOptions &toolOptions, ToolStreams &toolStreams, const tarn::ClientTimes &times)
    : Task(toolOptions, toolStreams)
    , client(options.pipeName, times)
{
    // Before its owner is destroyed: to close ends the requests, and their replies are handled.
    connect(this, &Task::finished, &client, &Client::close);
}

QFuture<tarn::Reply> ClientTask::send(const TypedCommand &command)
{
    return client.send(command.name, command.data.value_or(QString()), options.timeout);
}

void ClientTask::remarkOtherMessages()
{
    const QLatin1StringView label("meanwhile: ");
    connect(
        &client, &Client::notificationReceived, this, [this, label](const tarn::Notification &notification) {
            remark(label + notificationLine(notification));
        });
    connect(&client, &Client::otherMessageReceived, this, [this, label](const QJsonObject &message) {
        remark(label + QString::fromUtf8(compactJson(message)));
    });
    connect(&client, &Client::garbageReceived, this, &ClientTask::remarkGarbage);
}

void ClientTask::finishWithoutService()
{
    streams.complain(connectFailureText(options.pipeName, client.problem(), client.problemText()));
    finish(ExitCode::NoService);
}

} // namespace tarnctl
