// The commands that are not values of the calibration: what each asks of the controller and the payload count of its
// reply, which is what send_ecu_message expects. Values are read and written by calibration/parameters.h, cells of
// table memory by calibration/tables.h; the one reading of values that screens ask for by itself is named here.
#pragma once

#include "calibration/parameters.h"

#include <array>
#include <cstdint>

namespace ecu::messages {

struct Command {
    std::uint8_t code;
    std::uint8_t reply;
};

// Live data, without arguments
inline constexpr Command live_block{'A', 63};
inline constexpr Command live_block_two{129, 30};
inline constexpr Command live_block_three{207, 37};
inline constexpr Command live_counts{178, 18};    // the first ten fields of block two; nothing asks for it
inline constexpr Command live_idle_valve{152, 9}; // nothing asks for it

// Who the controller is, without arguments
inline constexpr Command firmware_revision{'R', 5};
inline constexpr Command serial_number{'-', 6};
inline constexpr Command capability_word{179, 5};
inline constexpr Command compatibility_word{180, 5};

// The sensor spans and the rpm range, by which others are shown; without arguments
inline constexpr Command scales_block{calibration::read_request('C').command, calibration::read_request('C').reply};

// What the controller is to do
inline constexpr Command fire_injectors{1, 5};       // mask low, mask high, 0
inline constexpr Command fire_ignition{2, 5};        // mask low, mask high, 0
inline constexpr Command dyno_setup{3, 6};           // 0 trigger or 1 end, rpm low, rpm high
inline constexpr Command dyno_control{4, 4};         // 1 arm or 0 disarm, 0, 0
inline constexpr Command oxygen_control_off{'D', 3}; // no arguments; 'd' puts it on again
inline constexpr Command oxygen_control_on{'d', 3};
inline constexpr Command session_latch{169, 4};   // 165 to arm or 0 to disarm, 0, 0
inline constexpr Command restart{174, 4};         // 165 restarts, 90 stops and awaits new firmware, 0, 0
inline constexpr Command closed_throttle{215, 4}; // 0, 0, 0: measure and keep TPS_BASE
inline constexpr Command open_throttle{216, 4};   // 0, 0, 0: measure and keep TPS_FS
inline constexpr Command arm_capture{247, 4};
inline constexpr Command wheel_block{248, 34}; // n, 0 to 7

inline constexpr std::uint8_t restart_now = 165;
inline constexpr std::uint8_t restart_for_flash = 90;

// The controller measures the value by itself, keeps it, and answers with it in one byte.
struct Measured {
    Command command;
    const calibration::Parameter& row;
};
inline constexpr std::array measured{Measured{closed_throttle, calibration::parameter("TPS_BASE")},
                                     Measured{open_throttle, calibration::parameter("TPS_FS")}};

// Answered though nothing asks: taken and dropped
inline constexpr std::array<Command, 4> unasked{{{'X', 6}, {'x', 6}, {'F', 7}, {'+', 4}}};

// The compatibility word that this console speaks.
inline constexpr int protocol_revision = 20003;

} // namespace ecu::messages
