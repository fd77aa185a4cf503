#pragma once

#include "command_check.h"
#include "exit_code.h"
#include "message.h"
#include "pipe_client.h"
#include "reply_deadline.h"
#include "tool_options.h"
#include "tool_streams.h"

#include <QEventLoop>

#include <optional>

namespace tarnClient {

// After a request that gets no answer: how long the connection stays open and no other request is sent, so
// that the service reads the request alone and before it sees the disconnection.
inline constexpr std::chrono::milliseconds unansweredPause(300);
// Shown in place of an answer to such a request.
inline constexpr QLatin1StringView sentText("sent");

// True for a command to which the service never sends an answer.
[[nodiscard]] bool getsNoAnswer(const TypedCommand &command);
// Says that no answer has come, with the possible reasons.
[[nodiscard]] QString noAnswerText(const QString &command, std::chrono::milliseconds timeout);

// The common part of all uses of the pipe: the connection, the deadline, the event loop and the exit code.
class Session : public QObject
{
    Q_OBJECT

public:
    Session(const ToolOptions &options, ToolStreams &streams);

protected:
    // Says why when it fails.
    [[nodiscard]] bool connectService();
    // Runs the event loop until finish().
    [[nodiscard]] ExitCode waitForFinish();
    void finish(ExitCode code);
    [[nodiscard]] bool isFinished() const;
    // The message if it is the answer with this tag. Any other message extends the deadline, and is shown
    // with --verbose.
    [[nodiscard]] std::optional<Message> takeAnswer(const QString &tag, const QByteArray &bytes);
    // Ends the run when the reader of the output has closed it.
    void print(const QByteArray &line);
    void print(const QString &line);
    void printAnswer(const Message &message, const CommandEntry *entry);
    void remarkGarbage(const QByteArray &bytes);
    [[nodiscard]] std::chrono::milliseconds timeoutFor(const CommandEntry *entry) const;

    const ToolOptions &options;
    ToolStreams &streams;
    PipeClient client;
    ReplyDeadline deadline;

private:
    QEventLoop loop;
    std::optional<ExitCode> exitCode;
};

} // namespace tarnClient
