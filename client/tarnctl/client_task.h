#pragma once

#include "client/client_times.h"
#include "command_check.h"
#include "task.h"

#include "tarn/client.h"

namespace tarnctl {

// A task that sends commands. Its client is closed when it has finished.
class ClientTask : public Task
{
    Q_OBJECT

public:
    ClientTask(const ToolOptions &options, ToolStreams &streams,
        const tarn::ClientTimes &times = tarn::ClientTimes());

protected:
    // With the user's time limit.
    [[nodiscard]] QFuture<tarn::Reply> send(const TypedCommand &command);
    // Shows everything that is no answer, for --verbose.
    void remarkOtherMessages();
    // Says why there is no connection, and what the user can do about it.
    void finishWithoutService();

    tarn::Client client;
};

} // namespace tarnctl
