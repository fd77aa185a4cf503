#include "simulator/machine_state_file.h"
#include "simulator/serial_line/port_link.h"
#include "simulator/serial_line/pseudo_terminal.h"
#include "simulator/serial_line/serve_line.h"
#include "simulator/tool/state_choice.h"

#include <QCommandLineParser>
#include <QCoreApplication>

#include <cstdio>

using namespace tarnSimulator;

namespace {

enum ExitCode { Served = 0, Failed = 1 };

// The name of the port on Windows; elsewhere a file called that, beside the flasher that asks for it.
constexpr const char *USUAL_LINK = R"(function/MCU/\\.\COM1)";

struct Request
{
    QString stateFile;
    QString link;
};

// Ends the process on --help and on a wrong command line.
Request parse(const QCoreApplication &application)
{
    QCommandLineParser parser;
    parser.setApplicationDescription(QStringLiteral("The serial port at which the KVane's MCU of the "
                                                    "simulated computer answers while its boot loader runs.\n"
                                                    "Serves until Ctrl+C."));
    const QCommandLineOption state(QStringLiteral("state"),
        QStringLiteral("State file; else chosen as by tarnsim."), QStringLiteral("FILE"));
    parser.addOption(state);
    parser.addHelpOption();
    parser.addPositionalArgument(QStringLiteral("LINK"),
        QStringLiteral(
            "Name for the port; without one it is \"%1\" in the current folder or, failing that, in "
            "the one of this program.")
            .arg(QString::fromLatin1(USUAL_LINK)),
        QStringLiteral("[LINK]"));
    parser.process(application);
    return {parser.value(state), parser.positionalArguments().value(0)};
}

std::filesystem::path chooseLink(const QString &named)
{
    if (!named.isEmpty()) {
        return named.toStdString();
    }
    const std::filesystem::path here = USUAL_LINK;
    std::error_code ignored;
    return std::filesystem::is_directory(here.parent_path(), ignored)
        ? here
        : QCoreApplication::applicationDirPath().toStdString() / here;
}

int complain(const std::string &sentence)
{
    std::fprintf(stderr, "tarnserial: %s\n", sentence.c_str());
    return Failed;
}

} // namespace

int main(int argc, char **argv)
{
    // First of all, so that whatever is made from here on is taken back.
    const int stop = openStopSignals();
    const QCoreApplication application(argc, argv);
    const Request request = parse(application);

    std::string error;
    const auto line = PseudoTerminal::open(error);
    if (!line || stop < 0) {
        return complain("The serial port cannot be made: " + error + ".");
    }
    const std::filesystem::path link = chooseLink(request.link);
    const auto name = PortLink::make(link, line->terminalName(), error);
    if (!name) {
        return complain(error);
    }
    const auto machine = MachineStateFile::open(
        chooseStateFile(request.stateFile).file, MachineStateFile::Missing::IsCreated, error);
    if (!machine) {
        return complain(error);
    }
    std::printf("%s is %s\n", link.c_str(), line->terminalName().c_str());
    std::fflush(stdout);
    serveLine(machine->state(), *line, stop);
    return Served;
}
