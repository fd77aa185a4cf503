#pragma once

namespace tarnClient {

// What a script can tell from the end of the process.
enum class ExitCode {
    Done = 0,
    ServiceFailed = 1,
    Usage = 2,
    NoService = 3,
    NoAnswer = 4,
};

} // namespace tarnClient
