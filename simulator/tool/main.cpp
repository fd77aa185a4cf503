#include "simulator/tool/run_tool.h"

#include <QCoreApplication>

#include <cstdio>

int main(int argumentCount, char *arguments[])
{
    const QCoreApplication application(argumentCount, arguments);
    QTextStream out(stdout);
    QTextStream err(stderr);
    return tarnSimulator::runTool(QCoreApplication::arguments(), out, err);
}
