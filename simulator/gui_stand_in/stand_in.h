#pragma once

#include <iosfwd>
#include <string_view>

namespace tarnSimulator {

inline constexpr int wrongSwitch = 2;

// Stands in for the GUI program: says on the terminal what a user would be asked, and answers with the exit
// code that the control tool has set, or waits until it is set. `program` is the path that it was started by;
// the machine is the one of the service, whose folder holds the program's folder.
int runStandIn(std::string_view programSwitch, std::string_view program, std::ostream &terminal);

} // namespace tarnSimulator
