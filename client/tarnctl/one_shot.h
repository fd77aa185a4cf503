#pragma once

#include "client_task.h"

namespace tarnctl {

// Sends one command and waits for its answer.
class OneShot : public ClientTask
{
    Q_OBJECT

public:
    OneShot(const ToolOptions &options, ToolStreams &streams, TypedCommand command);

    [[nodiscard]] ExitCode run();

private:
    void remarkWaiting();
    void handleReply(const tarn::Reply &reply);
    void showAnswer(const tarn::Reply &reply);

    TypedCommand command;
};

} // namespace tarnctl
