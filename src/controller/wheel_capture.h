// The tooth periods of the crank wheel, 120 of them, in ticks of 1.6 microseconds: a wheel of 36 teeth with one
// missing, whose gap shows as a double period, on an engine that slows down before each firing.
#pragma once

#include "controller/noise.h"

#include <array>
#include <cstdint>

namespace ecu::controller {

inline constexpr int wheel_positions = 36;
inline constexpr int wheel_teeth = 35;

// What is wrong with the wheel or its sensor: a tooth broken off beside the gap's, stray edges between teeth, or no
// signal at all.
enum class WheelFault : std::uint8_t { none, missing_tooth, noise, dead };

class WheelCapture {
public:
    static constexpr std::size_t periods = 120;

    // Captures at this speed; a standing engine gives zeros.
    void capture(double rpm, Noise& noise, WheelFault fault = WheelFault::none);
    std::uint16_t period(std::size_t index) const { return period_[index]; }

private:
    std::array<std::uint16_t, periods> period_{};
};

} // namespace ecu::controller
