// One captured crank revolution: the tooth periods, filled block by block from the replies to 248.
#pragma once

#include <array>

namespace ecu::messages {

inline constexpr int wheel_blocks = 8;
inline constexpr int wheel_block_samples = 15;
inline constexpr int wheel_samples_used = wheel_blocks * wheel_block_samples; // 0 to 119

struct WheelSamples {
    std::array<float, 201> periods{};
};

} // namespace ecu::messages
