#pragma once

#include <QByteArray>

#include <cstddef>
#include <cstdint>

namespace tarnFuzz {

// Ends the process and names the rule that does not hold, which the fuzzer takes for a finding.
void require(bool holds, const char *rule);

// Drops what is logged from now on; fatal messages are still printed and end the process. The texts are made
// all the same, so that they are tried as well.
void silenceLog();

[[nodiscard]] inline QByteArray bytesOf(const std::uint8_t *data, std::size_t size)
{
    return {reinterpret_cast<const char *>(data), static_cast<qsizetype>(size)};
}

} // namespace tarnFuzz

// Each target's own.
extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t *data, std::size_t size);
