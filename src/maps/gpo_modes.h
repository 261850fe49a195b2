// What the modes of a general purpose output mean: the axes of its map, the live values that run along them, and the
// words in which the page tells what an output and its boost control do. Pure.
#pragma once

#include "calibration/scales.h"
#include "messages/live_data.h"

#include <cstdint>
#include <string>
#include <string_view>

namespace ecu::maps {

// The live value that an axis stands for.
enum class AxisSource : std::uint8_t { none, rpm, map, tps, coolant, air, idle_valve };

struct ModeAxes {
    std::string_view x_title; // "---": the mode has no map
    double x_from, x_to;
    std::string_view y_title;
    double y_base, y_span;
    AxisSource x_source, y_source;

    bool has_map() const { return x_title != "---"; }
    bool one_column() const { return y_title == "IAC"; }
};

inline constexpr int two_wire_idle = 10; // the highest mode that there is
inline constexpr int coolant_fan = 7;
inline constexpr int rpm_switch_above = 9;

// By the low four bits of the mode byte. A mode beyond the known ones has no map.
ModeAxes mode_axes(int mode, const calibration::Scales& scales);
// A boost map stands over engine speed, and over pressure as an open loop or else over air temperature.
ModeAxes boost_axes(bool as_pwm, const calibration::Scales& scales);

// Where the value lies along an axis, 0 to 1; 0 on an axis of no length.
double place_on_axis(AxisSource source, double from, double span, const messages::EcuLiveData& live);

// What an output does in a mode. The two texts are those of its boxes.
std::string output_in_words(int mode, bool dont_interpolate, std::string_view relay_temperature,
                            std::string_view switch_rpm);
// What the output did at the last reply: "Now off at 3210 rpm".
std::string output_now_in_words(float duty_percent, float rpm);

struct BoostState {
    bool as_pwm;         // the channel's own box
    bool invert;         // the channel's own box
    bool cells_are_duty; // the first channel's stored flag, which holds for the cells of all four maps
    bool first_channel;
    std::string_view enable_pressure; // the text of its box
};
std::string boost_in_words(const BoostState& boost);

} // namespace ecu::maps
