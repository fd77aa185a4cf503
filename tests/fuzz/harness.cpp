#include "harness.h"

#include <QCoreApplication>

#include <cstdio>
#include <cstdlib>

namespace {

void drop(QtMsgType type, const QMessageLogContext &, const QString &text)
{
    if (type == QtFatalMsg)
        std::fprintf(stderr, "%s\n", qPrintable(text));
}

} // namespace

namespace tarnFuzz {

void require(bool holds, const char *rule)
{
    if (holds)
        return;
    std::fprintf(stderr, "Does not hold: %s\n", rule);
    std::abort();
}

void silenceLog()
{
    qInstallMessageHandler(drop);
}

} // namespace tarnFuzz

extern "C" int LLVMFuzzerInitialize(int *argc, char ***argv)
{
    // Never destroyed, like everything else here, because findings end the process at any place.
    new QCoreApplication(*argc, *argv);
    tarnFuzz::silenceLog();
    return 0;
}
