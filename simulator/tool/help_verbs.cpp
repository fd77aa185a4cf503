#include "simulator/tool/tool_text.h"
#include "simulator/tool/verbs.h"

#include <algorithm>

namespace tarnSimulator {

namespace {

struct NameList
{
    const char *name;
    QStringList (*names)();
};

constexpr NameList nameLists[] = {
    {"verbs", verbNames},
    {"accessories", accessoryNames},
    {"values", valueNames},
    {"faults", faultNames},
    {"registers", allRegisterNames},
};

void printOverview(QTextStream &out)
{
    out << "tarnsim - do to the simulated computer what a person would do to a real one\n\n"
        << "Usage: tarnsim [--state FILE] VERB [ARGUMENTS]\n\nVerbs:\n";
    for (const Verb &verb : verbTable())
        out << "  " << QString::fromLatin1(verb.name).leftJustified(15) << verb.summary << '\n';
    out << "\nThe state file is the one given with --state, else the one in TARN_SIMULATOR_STATE, else the "
           "first\n"
        << "that is there: ./function/simulated_computer.state, ./simulated_computer.state, or\n"
        << "function/simulated_computer.state beside this program.\n"
        << "\nNumbers are decimal, or hexadecimal after 0x. The exit code is 0 when it was done, 1 when it "
           "could\n"
        << "not be done, 2 when the command line is wrong.\n";
}

void printVerb(QTextStream &out, const Verb &verb)
{
    const QString line = QStringLiteral("Usage: tarnsim [--state FILE] %1 %2")
                             .arg(QString::fromLatin1(verb.name), QString::fromLatin1(verb.syntax));
    out << line.trimmed() << "\n\n" << verb.summary << '\n';
    if (*verb.details != '\0')
        out << '\n' << verb.details << '\n';
}

} // namespace

ExitCode listNames(ToolContext &context, const QStringList &arguments)
{
    QStringList lists;
    for (const NameList &list : nameLists) {
        lists << QString::fromLatin1(list.name);
        if (lists.last() == arguments.first()) {
            context.out << list.names().join(QLatin1Char('\n')) << '\n';
            return Done;
        }
    }
    return complainAboutName(context, QStringLiteral("list"), arguments.first(), lists);
}

ExitCode showHelp(ToolContext &context, const QStringList &arguments)
{
    if (arguments.isEmpty()) {
        printOverview(context.out);
        return Done;
    }
    const Verb *verb = findVerb(arguments.first());
    if (verb == nullptr)
        return complainAboutName(context, QStringLiteral("verb"), arguments.first(), verbNames());
    printVerb(context.out, *verb);
    return Done;
}

} // namespace tarnSimulator
