#include "controller/wheel_capture.h"

#include <algorithm>
#include <cmath>
#include <numbers>
#include <utility>

namespace ecu::controller {

namespace {

constexpr int broken_tooth = 18;         // half a turn from the gap
constexpr double stray_edge_rate = 0.06; // of the periods

} // namespace

void WheelCapture::capture(double rpm, Noise& noise, WheelFault fault) {
    period_.fill(0);
    if (rpm < 1 || fault == WheelFault::dead) {
        return;
    }
    const double tick = 1.6e-6;
    const double step = 60 / rpm / wheel_positions / tick;
    int tooth = 7;    // the gap stands inside the first revolution
    double stray = 0; // what a stray edge has left of a tooth's period
    for (std::uint16_t& period : period_) {
        if (stray > 0) {
            period = static_cast<std::uint16_t>(std::min(std::exchange(stray, 0), 65535.0));
            continue;
        }
        const double turn = static_cast<double>(tooth) / wheel_positions;
        const double firing = 1 + 0.04 * std::cos(2 * 2 * std::numbers::pi * turn); // twice a turn
        const bool gap = tooth == wheel_teeth - 1;
        double ticks = step * firing * (1 + 0.004 * noise.centred()) * (gap ? 2 : 1);
        if (fault == WheelFault::missing_tooth && tooth == broken_tooth) {
            ticks *= 2;
            tooth = (tooth + 1) % wheel_teeth; // that one's edge never came
        }
        if (fault == WheelFault::noise && noise.uniform() < stray_edge_rate) {
            const double whole = ticks;
            ticks *= 0.1 + 0.8 * noise.uniform();
            stray = whole - ticks;
        }
        period = static_cast<std::uint16_t>(std::min(ticks, 65535.0));
        tooth = (tooth + 1) % wheel_teeth;
    }
}

} // namespace ecu::controller
