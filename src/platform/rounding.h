// A float goes to an integer by rounding with ties to even, everywhere in the console.
#pragma once

#include <cstdint>

namespace ecu::platform {

// Held to the range of the result instead of overflowing; not a number gives 0.
std::int32_t round_to_even(double value);

// The two bytes of a 16-bit message argument.
constexpr std::uint8_t byte_low(std::int32_t value) { return static_cast<std::uint8_t>(value & 0xFF); }
constexpr std::uint8_t byte_high(std::int32_t value) {
    return static_cast<std::uint8_t>(((value & ~0xFF) / 256) & 0xFF);
}

} // namespace ecu::platform
