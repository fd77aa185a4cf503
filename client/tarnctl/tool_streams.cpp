#include "tool_streams.h"

namespace tarnctl {

bool ToolStreams::printLine(const QByteArray &line)
{
    // Flushed line by line: a script behind a pipe needs each notification when it happens.
    output.write(line.constData(), line.size()).put('\n').flush();
    return output.good();
}

bool ToolStreams::printLine(const QString &line)
{
    return printLine(line.toUtf8());
}

void ToolStreams::complain(const QString &text)
{
    errors << "tarnctl: " << text.toStdString() << std::endl;
}

void ToolStreams::remark(const QString &text)
{
    errors << text.toStdString() << std::endl;
}

} // namespace tarnctl
