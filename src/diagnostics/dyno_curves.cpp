#include "diagnostics/dyno_curves.h"

#include "platform/rounding.h"

#include <algorithm>

namespace ecu::diagnostics {

namespace {

constexpr float usual_scale = 1000;
constexpr float power_divisor = 5252;
// The circles are 20 drawing units of 1/15 pixel: they mark the points and do not bury the curves.
constexpr double circle_radius = 20 / 15.0;
constexpr int farthest = 100000; // no drawing surface takes more; far beyond any window

int place(float value) { return std::clamp(platform::round_to_even(value), -farthest, farthest); }

} // namespace

DynoCurves dyno_curves(std::span<const DynoSample> samples, DynoLimits limits, float torque_scale, int width,
                       int height) {
    const float scale = torque_scale == 0 ? usual_scale : torque_scale;
    const auto w = static_cast<float>(width);
    const auto h = static_cast<float>(height);
    const auto rpm0 = static_cast<float>(limits.trigger_rpm);
    const auto span = static_cast<float>(limits.end_rpm - limits.trigger_rpm);
    DynoCurves curves;
    curves.points.reserve(samples.size());
    DynoSample before;
    float torque = 0;
    int torque_y_before = 0;
    for (const DynoSample& sample : samples) {
        const float dt = sample.seconds - before.seconds;
        const float rise = torque_y_before == 0 ? 0 : sample.rpm - before.rpm;
        if (dt != 0) {
            torque = rise / dt;
        }
        const float k = sample.rpm / power_divisor;
        const float power = k * torque;
        if (power > curves.power_max) {
            curves.power_max = power;
            curves.power_max_rpm = sample.rpm;
        }
        if (torque > curves.torque_max) {
            curves.torque_max = torque;
            curves.torque_max_rpm = sample.rpm;
        }
        const int torque_y = place(h - torque / scale * h);
        curves.points.push_back({.rpm = sample.rpm,
                                 .torque = torque,
                                 .power = power,
                                 .x = span == 0 ? 0 : place((sample.rpm - rpm0) / span * w),
                                 .torque_y = torque_y,
                                 .power_y = place(h - torque / scale * k * h)});
        before = sample;
        torque_y_before = torque_y;
    }
    return curves;
}

void draw(const DynoCurves& curves, DynoLimits limits, platform::Picture& picture, platform::Colour torque,
          platform::Colour power) {
    if (limits.end_rpm == limits.trigger_rpm) {
        return;
    }
    picture.set_line_width(1);
    const DynoPoint* before = nullptr;
    for (const DynoPoint& point : curves.points) {
        // A point without a predecessor, which is also what one on the upper edge counts as, starts where it is.
        const DynoPoint& from = before == nullptr || before->torque_y == 0 ? point : *before;
        picture.line(from.x, from.torque_y, point.x, point.torque_y, torque);
        picture.circle(point.x, point.torque_y, circle_radius, torque);
        picture.line(from.x, from.power_y, point.x, point.power_y, power);
        picture.circle(point.x, point.power_y, circle_radius, power);
        before = &point;
    }
    picture.refresh();
}

} // namespace ecu::diagnostics
