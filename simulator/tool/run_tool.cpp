#include "simulator/tool/run_tool.h"

#include "simulator/machine_state_file.h"
#include "simulator/tool/state_choice.h"
#include "simulator/tool/tool_text.h"
#include "simulator/tool/verbs.h"

namespace tarnSimulator {

namespace {

const QString stateOption = QStringLiteral("--state");

struct CommandLine
{
    QString stateFile;
    bool helpWanted = false;
    QStringList words; // the verb and its arguments
};

// --state and --help may stand anywhere; all other words belong to the verb. False when --state has no file.
bool splitCommandLine(const QStringList &arguments, CommandLine &line)
{
    for (qsizetype i = 1; i < arguments.size(); ++i) {
        const QString &argument = arguments.at(i);
        if (argument == QLatin1String("--help") || argument == QLatin1String("-h")) {
            line.helpWanted = true;
        } else if (argument == stateOption) {
            line.stateFile = arguments.value(++i);
        } else if (argument.startsWith(stateOption + QLatin1Char('='))) {
            line.stateFile = argument.mid(stateOption.size() + 1);
        } else {
            line.words << argument;
            continue;
        }
        if (!line.helpWanted && line.stateFile.isEmpty())
            return false;
    }
    return true;
}

ExitCode runOnMachine(
    ToolContext &context, const Verb &verb, const QStringList &arguments, const QString &named)
{
    const StateChoice choice = chooseStateFile(named);
    const bool mayCreate = verb.need == StateNeed::IsCreated;
    std::error_code ignored;
    if (!mayCreate && !std::filesystem::exists(choice.file, ignored))
        return complain(context, Failed, missingStateText(choice));
    std::string error;
    const auto missing =
        mayCreate ? MachineStateFile::Missing::IsCreated : MachineStateFile::Missing::IsAnError;
    const auto file = MachineStateFile::open(choice.file, missing, error);
    if (!file)
        return complain(context, Failed, toQString(error));
    ComputerControl computer(file->state());
    context.computer = &computer;
    context.stateFile = file->path();
    return verb.run(context, arguments);
}

} // namespace

int runTool(const QStringList &arguments, QTextStream &out, QTextStream &err)
{
    ToolContext context {out, err, nullptr, {}};
    CommandLine line;
    if (!splitCommandLine(arguments, line))
        return complain(context, WrongUsage, QStringLiteral("--state needs the name of a file"));
    if (line.helpWanted)
        return showHelp(context, line.words.mid(0, 1));
    if (line.words.isEmpty()) {
        return complain(context, WrongUsage,
            QStringLiteral("a verb is missing; there are: %1").arg(verbNames().join(QLatin1String(", "))));
    }
    const QString name = line.words.takeFirst();
    const Verb *verb = findVerb(name);
    if (verb == nullptr)
        return complainAboutName(context, QStringLiteral("verb"), name, verbNames());
    if (line.words.size() < verb->fewestArguments || line.words.size() > verb->mostArguments) {
        const QString usage = QStringLiteral("%1 %2").arg(name, QString::fromLatin1(verb->syntax)).trimmed();
        return complain(context, WrongUsage, QStringLiteral("wrong arguments; usage: tarnsim %1").arg(usage));
    }
    if (verb->need == StateNeed::None)
        return verb->run(context, line.words);
    return runOnMachine(context, *verb, line.words, line.stateFile);
}

} // namespace tarnSimulator
