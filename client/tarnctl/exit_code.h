#pragma once

namespace tarnctl {

// The exit codes of tarnctl, for scripts.
enum class ExitCode {
    Done = 0,
    ServiceFailed = 1,
    Usage = 2,
    NoService = 3,
    NoAnswer = 4,
};

} // namespace tarnctl
