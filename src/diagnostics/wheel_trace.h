// The drawing of a crank wheel capture, point by point: each tooth's period as a share of their mean, in a band of 50 %
// to both sides of it over the whole height. A period beyond the band is a fault of the signal, the gap of a missing
// tooth among them, and stands in red at the mean's height, not at its value.
#pragma once

#include "messages/wheel_samples.h"
#include "platform/picture.h"

#include <array>

namespace ecu::diagnostics {

struct WheelTrace {
    struct Point {
        int x = 0;
        int y = 0;
        bool fault = false;
        float percent = 0; // of the mean, as it is
    };
    int start_y = 0;
    std::array<Point, messages::wheel_samples_used> points;
};

float mean_period(const messages::WheelSamples& samples); // never 0
WheelTrace wheel_trace(const messages::WheelSamples& samples, int width, int height);
// Clears the picture and draws.
void draw(const WheelTrace& trace, platform::Picture& picture);

} // namespace ecu::diagnostics
