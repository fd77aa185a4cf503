#pragma once

#include "client/tarnctl/interrupt_poll.h"
#include "client/tarnctl/stdin_reader.h"
#include "client/tarnctl/tool_streams.h"

#include <QString>
#include <QStringList>

#include <chrono>
#include <functional>

namespace tarnctl {

// The person in front of the computer: is told what happens, and answers by lines. Keeps all that was said,
// for the report. After the end of the input and after Ctrl+C every question is answered at once.
class Person
{
public:
    enum class Answer { Yes, No, Skip };
    enum class Wait { Happened, Skipped, TimedOut, Interrupted };

    explicit Person(ToolStreams &streams);

    // A failed write is ignored: the check goes on to put back what it has changed.
    void say(const QString &text);
    // False at the end of the input.
    [[nodiscard]] bool waitForEnter(const QString &text);
    [[nodiscard]] Answer ask(const QString &question);
    // Waits for something that the person does, or for the line "s".
    [[nodiscard]] Wait waitFor(const std::function<bool()> &condition, std::chrono::milliseconds longest);
    [[nodiscard]] bool hasInterrupted() const { return interrupt.isRaised(); }
    // From now on, says at once that Ctrl+C has been noticed.
    void announceInterrupt();
    // Says it now, if it was not said before.
    void tellInterrupt();
    [[nodiscard]] const QStringList &transcript() const { return said; }

private:
    [[nodiscard]] bool isGone() const;
    [[nodiscard]] std::optional<QString> nextLine();

    ToolStreams &streams;
    StdinReader reader;
    InterruptPoll interrupt;
    QStringList said;
    bool hasToldInterrupt = false;
};

} // namespace tarnctl
