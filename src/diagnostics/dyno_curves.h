// The curves of a dyno run. What is called torque is the engine's rate of rpm rise in rpm per second, and power that
// figure times rpm / 5252; no weight, gearing or inertia enters. Both stand on one scale.
#pragma once

#include "diagnostics/dyno_file.h"
#include "platform/picture.h"

#include <span>

namespace ecu::diagnostics {

struct DynoLimits {
    int trigger_rpm = 2500;
    int end_rpm = 8000;
};

struct DynoPoint {
    float rpm = 0;
    float torque = 0;
    float power = 0;
    int x = 0;
    int torque_y = 0;
    int power_y = 0;
};

struct DynoCurves {
    std::vector<DynoPoint> points;
    // The greatest figures, 0 at least, and the speeds at which they stand.
    float torque_max = 0;
    float power_max = 0;
    float torque_max_rpm = 0;
    float power_max_rpm = 0;
};

// A scale of 0 counts as 1000. The first point, and any whose predecessor stands exactly on the upper edge, has no
// rise.
DynoCurves dyno_curves(std::span<const DynoSample> samples, DynoLimits limits, float torque_scale, int width,
                       int height);

// Both curves, a small circle on each point. Limits between which there is nothing leave no room for any of it.
void draw(const DynoCurves& curves, DynoLimits limits, platform::Picture& picture, platform::Colour torque,
          platform::Colour power);

} // namespace ecu::diagnostics
