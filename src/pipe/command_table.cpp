#include "pipe/command_table.h"

#include <QHash>

namespace tarnPipeServer {
namespace {

QHash<QString, const Command *> allCommands()
{
    QHash<QString, const Command *> table;
    for (const auto commands :
        {accessoryCommands(), lightingCommands(), firmwareCommands(), powerCommands()}) {
        for (const Command &command : commands)
            table.insert(QString::fromLatin1(command.name), &command);
    }
    return table;
}

const QHash<QString, const Command *> &commandTable()
{
    static const QHash<QString, const Command *> table = allCommands();
    return table;
}

} // namespace

const Command *findCommand(const QString &name)
{
    return commandTable().value(name);
}

QStringList commandNames()
{
    QStringList names = commandTable().keys();
    names.sort();
    return names;
}

} // namespace tarnPipeServer
