#include "simulator/shared_mapping.h"

#include <utility>

namespace tarnSimulator {

SharedMapping::SharedMapping(SharedMapping &&other) noexcept
    : start(std::exchange(other.start, nullptr))
    , length(std::exchange(other.length, 0))
{ }

SharedMapping &SharedMapping::operator=(SharedMapping &&other) noexcept
{
    std::swap(start, other.start);
    std::swap(length, other.length);
    return *this;
}

} // namespace tarnSimulator
