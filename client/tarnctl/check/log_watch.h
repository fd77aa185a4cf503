#pragma once

#include <QString>
#include <QStringList>

namespace tarnctl {

// What is worth quoting among the lines that the service has logged since the last look: warnings, and lines
// that tell that the EC did not answer or did not finish a command.
class LogWatch
{
public:
    explicit LogWatch(const QString &logFolder);

    [[nodiscard]] QStringList newTellingLines();

private:
    [[nodiscard]] QStringList newLines();

    const QString folder;
    QString last; // line that was seen
};

} // namespace tarnctl
