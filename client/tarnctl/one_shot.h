#pragma once

#include "command_check.h"
#include "session.h"

namespace tarnClient {

// Sends one command and waits for its answer.
class OneShot : public Session
{
    Q_OBJECT

public:
    OneShot(const ToolOptions &options, ToolStreams &streams, TypedCommand command);

    [[nodiscard]] ExitCode run();

private:
    [[nodiscard]] ExitCode runSilently();
    void remarkWaiting();
    void handleDocument(const QByteArray &bytes);
    void handleExpiry();
    void handleServiceGone();

    TypedCommand command;
    // Null for an unknown command, sent because of --force.
    const CommandEntry *entry;
    QString tag;
};

} // namespace tarnClient
