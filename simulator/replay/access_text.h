#pragma once

#include "device/recording/ec_record.h"
#include "simulator/recording/channel_decoder.h"

#include <string>

namespace tarnSimulator {

// "a read of port 0x6C that gave 0x01", "a write of 0x92 to port 0x6C", "a load of the port library".
[[nodiscard]] std::string accessText(const tarnRecording::EcRecord &access);
// Without what it gave.
[[nodiscard]] std::string requestedText(const tarnRecording::EcRecord &access);
// "read of 0x06A0 MCU_LINK_STATUS = 0x04"
[[nodiscard]] std::string registerAccessText(const DecodedAccess &access);

} // namespace tarnSimulator
