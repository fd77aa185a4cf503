#pragma once

#include <QObject>

#include <atomic>

namespace tarnPlatform {

// Marks the process as ending: flashing, opening windows and switching devices are not begun any more. Any
// thread; cannot be undone.
void beginProcessEnd();
[[nodiscard]] bool isProcessEnding();

// Lives during a step that must not be left half done, such as switching a device off and on again, or
// switching one and telling the EC. The end of the process waits for it longer than for anything else. Make
// one before asking isProcessEnding(): in the other order the end could begin in between and not wait.
class UnfinishedStep
{
public:
    UnfinishedStep() { ++count; }
    ~UnfinishedStep() { --count; }
    UnfinishedStep(const UnfinishedStep &) = delete;
    UnfinishedStep &operator=(const UnfinishedStep &) = delete;

    [[nodiscard]] static bool any() { return count > 0; }

private:
    static inline std::atomic<int> count {0};
};

// Signals that the system or the user at the terminal asks the process to end: SIGTERM, SIGINT and SIGHUP, or
// the console's Ctrl+C, Ctrl+Break and closing. The signal comes on the thread that made the object, which
// needs an event loop. From the first use on such a request no longer ends the process by itself.
class StopRequests : public QObject
{
    Q_OBJECT

public:
    // The one object of the process. It is never destroyed, because a request may come until the very end.
    static StopRequests &ofProcess();

    // True from the first request on.
    [[nodiscard]] bool isRequested() const { return requested; }
    // For the handler of the system's request, on any thread or in a Unix signal.
    static void noteRequest() { requested = true; }

Q_SIGNALS:
    void stopRequested();

private:
    StopRequests(); // lets the system call the handler

    static inline std::atomic<bool> requested {false};
};

// Ends the process at once with this code: no destructor, no exit handler, and no wait for any thread,
// whatever it holds. What is still in the buffers of the C library is lost.
[[noreturn]] void exitAtOnce(int code);

} // namespace tarnPlatform
