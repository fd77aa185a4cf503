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
    // If set, makes the reply after the handler, in the lane that waits for the EC: for a reply that needs
    // the EC and a handler whose own lane must not wait for it.
    Handler answer = nullptr;
};

// By subject; each in the file of that name.
[[nodiscard]] std::span<const Command> accessoryCommands();
[[nodiscard]] std::span<const Command> lightingCommands();
[[nodiscard]] std::span<const Command> firmwareCommands();
[[nodiscard]] std::span<const Command> powerCommands();

} // namespace tarnPipeServer
