#pragma once

#include <QByteArray>
#include <QString>

#include <istream>
#include <memory>
#include <ostream>

namespace tarnctl {

// Where the tool reads and writes. Standard output carries answers only, so that it can be piped; messages to
// the user go to the error output.
struct ToolStreams
{
    // Shared, because a thread that still waits for a line may outlive the run.
    std::shared_ptr<std::istream> input;
    std::ostream &output;
    std::ostream &errors;
    // The input is a terminal: greet the user, and treat the end of the input as "quit".
    bool interactive = false;
    // The error output is a terminal, on which a progress line may be overwritten.
    bool errorsAreTerminal = false;

    // False once the reader of the output has closed it.
    [[nodiscard]] bool printLine(const QByteArray &line);
    [[nodiscard]] bool printLine(const QString &line);
    // A message to the user; further lines of the text are kept as they are.
    void complain(const QString &text);
    // Side information, without the program's name in front.
    void remark(const QString &text);
};

} // namespace tarnctl
