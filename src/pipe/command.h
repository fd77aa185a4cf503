#pragma once

#include "pipe/handler_threads.h"

#include <QJsonObject>
#include <QString>

#include <span>

namespace tarnPipeServer {

// Performs a request on a thread of its lane, adds the answer to the request object and returns it as text.
// Empty: no reply.
using Handler = QString (*)(QJsonObject &request);

// A command of the protocol.
struct Command
{
    const char *name;
    Handler handler;
    Lane lane;
    // Makes the reply in the handler's place, where the handler's lane must not wait for what it needs.
    Handler answer = nullptr;
};

// By subject; each in the file of that name.
[[nodiscard]] std::span<const Command> accessoryCommands();
[[nodiscard]] std::span<const Command> lightingCommands();
[[nodiscard]] std::span<const Command> firmwareCommands();
[[nodiscard]] std::span<const Command> powerCommands();

} // namespace tarnPipeServer
