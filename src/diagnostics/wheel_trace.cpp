#include "diagnostics/wheel_trace.h"

#include "platform/rounding.h"

#include <span>

namespace ecu::diagnostics {

namespace {

constexpr float highest_percent = 150;
constexpr float lowest_percent = 50;
constexpr float mean_percent = 100;
constexpr float standstill_mean = 0.000001F;
constexpr int line_width = 2;

std::span<const float> used(const messages::WheelSamples& samples) {
    return std::span(samples.periods).first<messages::wheel_samples_used>();
}

} // namespace

float mean_period(const messages::WheelSamples& samples) {
    float sum = 0;
    for (const float period : used(samples)) {
        sum += period;
    }
    const float mean = sum / messages::wheel_samples_used;
    return mean == 0 ? standstill_mean : mean;
}

WheelTrace wheel_trace(const messages::WheelSamples& samples, int width, int height) {
    const auto w = static_cast<float>(width);
    const auto h = static_cast<float>(height);
    const float mean = mean_period(samples);
    constexpr float last = messages::wheel_samples_used - 1;
    WheelTrace trace;
    trace.start_y = platform::round_to_even(h - h * 0.5F);
    for (std::size_t i = 0; i < trace.points.size(); ++i) {
        const float percent = used(samples)[i] / mean * 100;
        const bool fault = percent > highest_percent || percent < lowest_percent;
        const float share = ((fault ? mean_percent : percent) - mean_percent) / 100 + 0.5F;
        trace.points[i] = {.x = platform::round_to_even(static_cast<float>(i) / last * w),
                           .y = platform::round_to_even(h - h * share),
                           .fault = fault,
                           .percent = percent};
    }
    return trace;
}

void draw(const WheelTrace& trace, platform::Picture& picture) {
    picture.clear();
    picture.set_line_width(line_width);
    picture.point(0, trace.start_y, platform::yellow);
    int x = 0;
    int y = trace.start_y;
    for (const WheelTrace::Point& point : trace.points) {
        picture.line(x, y, point.x, point.y, point.fault ? platform::light_red : platform::yellow);
        x = point.x;
        y = point.y;
    }
    picture.refresh();
}

} // namespace ecu::diagnostics
