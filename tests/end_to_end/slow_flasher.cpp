// Stands in for the flasher of the MCU where a test wants to see it at work: it flashes until the file "go"
// is in its folder, notes in slow_flasher.log when it begins and when it has done its work, and complains
// with the bytes of the file "complaint".

#include "simulator/ec_tool/flashing_work.h"

#include <fstream>
#include <iostream>
#include <iterator>
#include <string>

int main()
{
    std::ofstream log("slow_flasher.log", std::ios::binary | std::ios::app);
    log << "begun" << std::endl;
    if (!tarnSimulator::flash(std::chrono::milliseconds(0), "go", std::cout))
        return 1;
    std::ifstream complaint("complaint", std::ios::binary);
    std::cerr << std::string(std::istreambuf_iterator<char>(complaint), {});
    log << "done" << std::endl;
    return 0;
}
