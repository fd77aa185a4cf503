#pragma once

#include <chrono>
#include <cstdint>

// Every EC port, channel command, xdata address, EEPROM offset and special value, grouped by what it serves.
// Registers are one byte wide; xdata addresses are 16-bit and are sent high byte first.
// No Qt here: the simulated computer is built from the same map. A wrong value would therefore pass every
// test of the two together, so ec_registers_test.cpp compares each value with a literal.
// Named in upper case as in the documents of such controllers.
// NOLINTBEGIN(readability-identifier-naming)
namespace tarnDeviceInfos {

// Second host channel of the EC.
inline constexpr std::uint16_t EC_DATA_PORT = 0x68; // address, data and answer bytes
inline constexpr std::uint16_t EC_CMD_STATUS_PORT = 0x6C; // read: status, write: command
inline constexpr std::uint8_t OBF = 0x01; // an answer byte waits for the host
inline constexpr std::uint8_t IBF = 0x02; // the EC has not yet taken the last byte
inline constexpr std::uint8_t XDATA_READ_CMD = 0x92; // then address high, address low; one byte comes back
inline constexpr std::uint8_t XDATA_WRITE_CMD = 0x93; // then address high, address low, value

// EEPROM mailbox. EEP_CMD is written last and starts the operation.
inline constexpr std::uint16_t EEP_DATA = 0x0620;
inline constexpr std::uint16_t EEP_STATUS = 0x0640;
inline constexpr std::uint16_t EEP_CMD = 0x0641;
inline constexpr std::uint16_t EEP_ADDR_LO = 0x0642;
inline constexpr std::uint16_t EEP_ADDR_HI = 0x0643;
inline constexpr std::uint16_t EEP_LEN = 0x0644; // always 1
inline constexpr std::uint8_t EEP_STATUS_BUSY = 0; // any value but busy and done is an error
inline constexpr std::uint8_t EEP_STATUS_DONE = 1;
inline constexpr std::uint8_t EEP_CMD_READ = 1;
inline constexpr std::uint8_t EEP_CMD_WRITE = 2;

// EEPROM offsets and their values.
inline constexpr std::uint16_t EEP_SMART_CHARGING = 0x33;
inline constexpr std::uint8_t SMART_CHARGING_ON = 0x50;
inline constexpr std::uint8_t SMART_CHARGING_OFF = 0x00;

// Accessory identity and versions, read only.
inline constexpr std::uint16_t MCU_LINK_STATUS = 0x06A0; // link status and handshake status in one
inline constexpr std::uint8_t MCU_LINKED = 4; // anything else: no accessory
inline constexpr std::uint16_t MCU_VERSION_MINOR = 0x06A4;
inline constexpr std::uint16_t MCU_VERSION_PATCH = 0x06A5;
inline constexpr std::uint16_t ACCESSORY_CODE = 0x06A6;
inline constexpr std::uint16_t HARDWARE_VERSION = 0x06A7;
inline constexpr std::uint16_t MCU_VERSION_MAJOR = 0x06C2;
inline constexpr std::uint8_t ACCESSORY_NONE = 0;
inline constexpr std::uint8_t ACCESSORY_DOCK = 1;
inline constexpr std::uint8_t ACCESSORY_GRAPHICS = 2;
inline constexpr std::uint8_t ACCESSORY_GRAPHICS_16G = 3;
inline constexpr std::uint8_t ACCESSORY_KVANE = 4;

// Application command mailbox: one set of bytes under two families of names. The command byte is written
// last and the EC clears it when it has finished; RGB, LED, serial-number and GPU-state commands share it.
inline constexpr std::uint16_t XEC_APP_CMD = 0x04B0;
inline constexpr std::uint16_t XEC_APP_CMD_DATA0 = 0x04B1;
inline constexpr std::uint16_t XEC_RGB_CMD = XEC_APP_CMD;
inline constexpr std::uint16_t XEC_RGB_RED = XEC_APP_CMD_DATA0; // also dock LED state and KVane LED value
inline constexpr std::uint16_t XEC_RGB_GREEN = 0x04B2;
inline constexpr std::uint16_t XEC_RGB_BLUE = 0x04B3;
inline constexpr std::uint16_t KVANE_SN_BYTES = 0x04B1; // first of KVANE_SN_LENGTH bytes
inline constexpr std::uint16_t KVANE_SN_LENGTH = 7;
inline constexpr std::uint8_t APP_CMD_PEG_STATE = 0x10; // data byte: gpuDriverData
inline constexpr std::uint8_t APP_EC_RGB_READ = 0x11;
inline constexpr std::uint8_t APP_EC_RGB_WRITE = 0x12;
inline constexpr std::uint8_t APP_EC_KVANE_SN_READ = 0x13;
inline constexpr std::uint8_t APP_EC_KVANE_LED_READ = 0x15;
inline constexpr std::uint8_t APP_EC_KVANE_LED_WRITE = 0x16;

// gpuDriverData, the data byte of APP_CMD_PEG_STATE: 1 no driver, 3 not started, 7 active.
inline constexpr std::uint8_t GPU_PRESENT = 0x01;
inline constexpr std::uint8_t GPU_DRIVER_INSTALLED = 0x02;
inline constexpr std::uint8_t GPU_STARTED = 0x04;

// Events of the graphics box.
inline constexpr std::uint16_t XEC_APP_EVENT = 0x04A4; // cleared by the host in every cycle
inline constexpr std::uint16_t XEC_APP_EVENT_DATA = 0x04A5;
inline constexpr std::uint8_t APP_EVENT_NONE = 0x00;
inline constexpr std::uint8_t APP_EVENT_GPU_KEY = 0x11;
inline constexpr std::uint8_t APP_EVENT_GRAPHICS_CONNECTED = 0x12;
inline constexpr std::uint8_t APP_EVENT_BAN_GPU = 0x13;
inline constexpr std::uint8_t APP_EVENT_DATA_DISENGAGE = 0x04; // the EC asks the host to release the GPU

// Power management. Limits are in watts.
inline constexpr std::uint16_t EC_FAN_MODE = 0x046E;
inline constexpr std::uint16_t EC_POWERMODE_PL_CTRL = 0x04A7;
inline constexpr std::uint16_t EC_POWERMODE_PL1 = 0x04A8;
inline constexpr std::uint16_t EC_POWERMODE_PL2 = 0x04A9;
inline constexpr std::uint16_t EC_POWERMODE_PL4 = 0x04AA;
inline constexpr std::uint16_t EC_POWERMODE_PL1_CHECK = 0x04AB;
inline constexpr std::uint16_t EC_POWERMODE_PL2_CHECK = 0x04AC;
inline constexpr std::uint16_t EC_POWERMODE_PL4_CHECK = 0x04AD;
inline constexpr std::uint16_t EC_POWER_SUPPLY_MODE = 0x04FC;
inline constexpr std::uint16_t EC_TARN_POWER_MODE = 0x04FE;
inline constexpr std::chrono::milliseconds EC_LATCH_TIME {10}; // until the EC has acted on a write
inline constexpr std::uint8_t PL_CTRL_AUTO = 0;
inline constexpr std::uint8_t PL_CTRL_MANUAL = 1;
inline constexpr std::uint8_t PL_CTRL_UNLIMITED = 2;
inline constexpr std::uint8_t TARN_POWER_MODE_BALANCE = 1;
inline constexpr std::uint8_t TARN_POWER_MODE_LOW = 2;
inline constexpr std::uint8_t TARN_POWER_MODE_HIGH = 4;
inline constexpr std::uint8_t TARN_POWER_MODE_UNKNOWN = 0x64;

// Batteries and charging, read only.
inline constexpr std::uint16_t EC_TARN_BATTERY_NUM = 0x050F;
inline constexpr std::uint16_t EC_TARN_CHARGING_STATUS = 0x0570;
inline constexpr std::uint16_t EC_KVANE_CHARGING_STATUS = 0x06CC;
inline constexpr std::uint16_t EC_KVANE_BATTERY_NUM = 0x06CD;
inline constexpr std::uint8_t TARN_CHARGING_BIT = 0x01;
inline constexpr std::uint8_t KVANE_CHARGING_BIT = 0x02;

// Accessory MCU update control.
inline constexpr std::uint16_t EC_MCU_UPDATE_CTRL = 0x06C1;
inline constexpr std::uint8_t MCU_UPDATE_ON = 0x20;
inline constexpr std::uint8_t MCU_BOOT_LOADER_SELECT = 0x08;
inline constexpr std::uint8_t MCU_RESET_PULSE = 0x10; // set, then cleared

} // namespace tarnDeviceInfos
// NOLINTEND(readability-identifier-naming)
