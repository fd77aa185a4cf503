#include "simulator/machine_state_file.h"
#include "simulator/serial_line/port_link.h"
#include "simulator/serial_line/pseudo_terminal.h"
#include "simulator/serial_line/serve_line.h"
#include "simulator/tool/state_choice.h"

#include <QCommandLineParser>
#include <QCoreApplication>

#include <cstdio>
#include <optional>

using namespace tarnSimulator;

namespace {

enum ExitCode { Served = 0, Failed = 1, WrongUsage = 2 };

// The name of the port on Windows; elsewhere a file called that, beside the flasher that asks for it.
constexpr const char *usualLink = R"(function/MCU/\\.\COM1)";

struct Request
{
    QString stateFile;
    QString link;
};

int complain(ExitCode code, const std::string &sentence)
{
    std::fprintf(stderr, "tarnserial: %s\n", sentence.c_str());
    return code;
}

// Ends the process on --help. Empty, and says why, when the command line is wrong.
std::optional<Request> parse(const QCoreApplication &application)
{
    QCommandLineParser parser;
    parser.setApplicationDescription(QStringLiteral("The serial port at which the KVane's MCU of the "
                                                    "simulated computer answers while its boot loader runs.\n"
                                                    "Serves until Ctrl+C."));
    const QCommandLineOption state(QStringLiteral("state"),
        QStringLiteral("State file; else chosen as by tarnsim."), QStringLiteral("FILE"));
    parser.addOption(state);
    const QCommandLineOption help = parser.addHelpOption();
    parser.addPositionalArgument(QStringLiteral("LINK"),
        QStringLiteral(
            "Name for the port; without one it is \"%1\" in the current folder or, failing that, in "
            "the one of this program.")
            .arg(QString::fromLatin1(usualLink)),
        QStringLiteral("[LINK]"));
    const bool understood = parser.parse(application.arguments());
    if (parser.isSet(help))
        parser.showHelp(Served);
    const QStringList links = parser.positionalArguments();
    const bool namesNoFile = parser.isSet(state) && parser.value(state).isEmpty();
    const QString objection = !understood ? parser.errorText()
        : namesNoFile                     ? QStringLiteral("--state needs the name of a file.")
        : links.size() > 1 ? QStringLiteral("There is one port, \"%1\" is a second name.").arg(links.at(1))
                           : QString();
    if (!objection.isEmpty()) {
        complain(WrongUsage, objection.toStdString() + " \"tarnserial --help\" tells the usage.");
        return std::nullopt;
    }
    return Request {parser.value(state), links.value(0)};
}

std::filesystem::path chooseLink(const QString &named)
{
    if (!named.isEmpty())
        return named.toStdString();
    const std::filesystem::path here = usualLink;
    std::error_code ignored;
    return std::filesystem::is_directory(here.parent_path(), ignored)
        ? here
        : QCoreApplication::applicationDirPath().toStdString() / here;
}

} // namespace

int main(int argc, char **argv)
{
    // First of all, so that a signal does not end the process before it has cleaned up.
    const int stop = openStopSignals();
    const QCoreApplication application(argc, argv);
    const auto request = parse(application);
    if (!request)
        return WrongUsage;

    const StateChoice choice = chooseStateFile(request->stateFile);
    std::error_code ignored;
    if (!std::filesystem::exists(choice.file, ignored))
        return complain(Failed, missingStateText(choice).toStdString());
    std::string error;
    const auto machine = MachineStateFile::open(choice.file, MachineStateFile::Missing::IsAnError, error);
    if (!machine)
        return complain(Failed, error);
    const auto line = PseudoTerminal::open(error);
    if (!line || stop < 0)
        return complain(Failed, "The serial port cannot be made: " + error + ".");
    const std::filesystem::path link = chooseLink(request->link);
    const auto name = PortLink::make(link, line->terminalName(), error);
    if (!name)
        return complain(Failed, error);
    std::printf("%s is %s\n", link.c_str(), line->terminalName().c_str());
    std::fflush(stdout);
    serveLine(machine->state(), *line, stop);
    return Served;
}
