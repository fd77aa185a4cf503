#pragma once

#include "exit_code.h"
#include "tool_options.h"
#include "tool_streams.h"

#include <QEventLoop>
#include <QObject>

#include <optional>

namespace tarnctl {

// A use of the pipe: it runs the event loop until it knows the exit code.
class Task : public QObject
{
    Q_OBJECT

public:
    Task(const ToolOptions &options, ToolStreams &streams);

signals:
    // Nothing may be printed from now on.
    void finished();

protected:
    // Runs the event loop until finish().
    [[nodiscard]] ExitCode waitForFinish();
    // The first call counts.
    void finish(ExitCode code);
    [[nodiscard]] bool isFinished() const;
    // Ends the run when the reader of the output has closed it.
    void print(const QByteArray &line);
    void print(const QString &line);
    // Side information on the error output.
    virtual void remark(const QString &text);
    void remarkGarbage(const QByteArray &bytes);

    const ToolOptions &options;
    ToolStreams &streams;

private:
    QEventLoop loop;
    std::optional<ExitCode> exitCode;
};

} // namespace tarnctl
