#pragma once

#include <QByteArray>
#include <QString>

#include <istream>
#include <memory>
#include <ostream>

namespace tarnClient {

// Where the tool reads and writes. Standard output carries answers only, so that it can be piped; everything
// meant for a person goes to the errors.
struct ToolStreams
{
    // Shared, because a thread that still waits for a line may outlive the run.
    std::shared_ptr<std::istream> input;
    std::ostream &output;
    std::ostream &errors;
    // A person types at a terminal: greet, and take the end of the input for "quit".
    bool interactive = false;
    // The errors go to a terminal: progress may be shown in place.
    bool errorsAreTerminal = false;

    // False once the reader of the output has gone away.
    [[nodiscard]] bool printLine(const QByteArray &line);
    [[nodiscard]] bool printLine(const QString &line);
    // A message to the user; further lines of the text are kept as they are.
    void complain(const QString &text);
    // Side information, without the program's name in front.
    void remark(const QString &text);
};

} // namespace tarnClient
