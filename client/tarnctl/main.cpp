#include "stdin_reader.h"
#include "tarnctl.h"
#include "terminal.h"

#include <QCoreApplication>

#include <cstdlib>
#include <iostream>

int main(int argc, char *argv[])
{
    const QCoreApplication application(argc, argv);
    // Not owned: the standard input lives as long as the process.
    const std::shared_ptr<std::istream> input(&std::cin, [](std::istream *) {});
    const int code = tarnctl::runTarnctl(QCoreApplication::arguments(),
        tarnctl::ToolStreams {
            input, std::cout, std::cerr, tarnctl::inputIsTerminal(), tarnctl::errorsAreTerminal()});
    std::cout.flush();
    if (tarnctl::StdinReader::hasThreadLeftBehind()) {
        // A normal exit locks and closes the standard input, and would wait for a thread that still reads.
        std::_Exit(code);
    }
    return code;
}
