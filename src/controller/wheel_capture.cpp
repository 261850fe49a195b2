#include "controller/wheel_capture.h"

#include <algorithm>
#include <cmath>
#include <numbers>

namespace ecu::controller {

void WheelCapture::capture(double rpm, Noise& noise) {
    period_.fill(0);
    if (rpm < 1) {
        return;
    }
    const double tick = 1.6e-6;
    const double step = 60 / rpm / wheel_positions / tick;
    int tooth = 7; // the gap stands inside the first revolution
    for (std::uint16_t& period : period_) {
        const double turn = static_cast<double>(tooth) / wheel_positions;
        const double firing = 1 + 0.04 * std::cos(2 * 2 * std::numbers::pi * turn); // twice a turn
        const bool gap = tooth == wheel_teeth - 1;
        const double ticks = step * firing * (1 + 0.004 * noise.centred()) * (gap ? 2 : 1);
        period = static_cast<std::uint16_t>(std::min(ticks, 65535.0));
        tooth = (tooth + 1) % wheel_teeth;
    }
}

} // namespace ecu::controller
