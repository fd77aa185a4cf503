#include "simulator/ec_tool/ec_tool.h"

#include <iostream>

int main()
{
    return tarnSimulator::runEcTool(".", std::cout, std::cerr);
}
