#include "simulator/gui_stand_in/stand_in.h"

#include <iostream>

int main(int argumentCount, char *arguments[])
{
    const std::string_view programSwitch = argumentCount == 2 ? arguments[1] : "";
    return tarnSimulator::runStandIn(programSwitch, arguments[0], std::cerr);
}
