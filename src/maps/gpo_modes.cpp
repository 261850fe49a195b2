#include "maps/gpo_modes.h"

#include "calibration/parameters.h"
#include "platform/display_mask.h"

#include <algorithm>
#include <array>

namespace ecu::maps {

namespace {

constexpr double coldest = -13; // of the temperature axes, degrees
constexpr double temperature_span = 128;
constexpr double idle_valve_span = 256;
constexpr std::string_view no_title = "---";
constexpr std::string_view blank_title = "   "; // an axis without a name, of a map that shows

struct Axis {
    std::string_view title;
    double base;
    double span;
    AxisSource source;
};

std::string number(std::string_view text) { return text.empty() ? "?" : std::string(text); }

std::string map_in_words(int mode, bool dont_interpolate) {
    constexpr std::array<std::string_view, 6> sources{"",
                                                      "engine speed and manifold pressure",
                                                      "engine speed and coolant temperature",
                                                      "engine speed and throttle",
                                                      "engine speed and air temperature",
                                                      "air temperature and manifold pressure"};
    return "Duty in percent from the map, by " + std::string(sources[static_cast<std::size_t>(mode)]) +
           (dont_interpolate ? "; it steps from cell to cell." : "; smooth between the cells.");
}

} // namespace

ModeAxes mode_axes(int mode, const calibration::Scales& scales) {
    const auto axes = [](const Axis& x, const Axis& y) {
        return ModeAxes{.x_title = x.title,
                        .x_from = x.base,
                        .x_to = x.span,
                        .y_title = y.title,
                        .y_base = y.base,
                        .y_span = y.span,
                        .x_source = x.source,
                        .y_source = y.source};
    };
    const Axis none{no_title, 0, 0, AxisSource::none};
    const Axis rpm{"RPM", 0, scales.full_scale_rpm, AxisSource::rpm};
    const Axis pressure{"MAP", scales.map_base, scales.map_span, AxisSource::map};
    // As an X axis the air temperature ends where as a Y axis its span does: at 128, not at 115.
    const Axis air{"MAT", coldest, temperature_span, AxisSource::air};
    switch (mode & calibration::output_mode_mask) {
    case 1:
        return axes(rpm, pressure);
    case 2:
        return axes(rpm, {"CLT", coldest, temperature_span, AxisSource::coolant});
    case 3:
        return axes(rpm, {"TPS", 0, 100, AxisSource::tps});
    case 4:
        return axes(rpm, air);
    case 5:
        return axes(air, pressure);
    case two_wire_idle:
        return axes({blank_title, 0, 0, AxisSource::none}, {"IAC", 0, idle_valve_span, AxisSource::idle_valve});
    default:
        return axes(none, none);
    }
}

ModeAxes boost_axes(bool as_pwm, const calibration::Scales& scales) { return mode_axes(as_pwm ? 1 : 4, scales); }

double place_on_axis(AxisSource source, double from, double span, const messages::EcuLiveData& live) {
    const auto value = [&]() -> double {
        switch (source) {
        case AxisSource::none:
            return from;
        case AxisSource::rpm:
            return live.engine_rpm;
        case AxisSource::map:
            return live.manifold_kpa;
        case AxisSource::tps:
            return live.throttle_percent;
        case AxisSource::coolant:
            return live.coolant_temp;
        case AxisSource::air:
            return live.air_temp;
        case AxisSource::idle_valve:
            return live.iac_position;
        }
        return from;
    }();
    return span == 0 ? 0 : std::clamp((value - from) / span, 0.0, 1.0);
}

std::string output_in_words(int mode, bool dont_interpolate, std::string_view relay_temperature,
                            std::string_view switch_rpm) {
    switch (mode & calibration::output_mode_mask) {
    case 0:
        return "Off at all times.";
    case 1:
    case 2:
    case 3:
    case 4:
    case 5:
        return map_in_words(mode & calibration::output_mode_mask, dont_interpolate);
    case 6:
        return "Switches the fuel pump.";
    case coolant_fan:
        return "Switches the coolant fan: on from " + number(relay_temperature) + " degrees of coolant.";
    case 8:
        return "On in the gears that the configuration page gives to this output.";
    case rpm_switch_above:
        return "Fully on at or above " + number(switch_rpm) + " rpm, off below.";
    case two_wire_idle:
        return "Duty in percent for a two-wire idle valve, by its position, from the one column of the map.";
    default:
        return "Mode " + std::to_string(mode & calibration::output_mode_mask) +
               " is not known to this console. The controller keeps it until you choose another one.";
    }
}

std::string output_now_in_words(float duty_percent, float rpm) {
    const std::string state = duty_percent <= 0     ? "off"
                              : duty_percent >= 100 ? "fully on"
                                                    : "at " + platform::masked(duty_percent, "##0.0") + " % duty";
    return "Now " + state + ", at " + platform::masked(rpm, "####0") + " rpm.";
}

std::string boost_in_words(const BoostState& boost) {
    const std::string cells = boost.cells_are_duty ? "Cells are duty in percent" : "Cells are pressure in kPa";
    const std::string flag = boost.first_channel ? " by what the controller holds of \"Use open loop as PWM\""
                                                 : " in all four maps, by that box of GPO 1";
    std::string text = boost.as_pwm ? "Open loop: the map gives the duty, by engine speed and manifold pressure. "
                                    : "Closed loop: the servo holds the pressure of the map, by engine speed and air "
                                      "temperature, while MAP is above " +
                                          number(boost.enable_pressure) + " kPa. ";
    if (boost.invert) {
        text += "Its duty is inverted. ";
    }
    text += cells + flag;
    text += boost.as_pwm != boost.cells_are_duty && boost.first_channel ? ", until an Update has sent it." : ".";
    return text;
}

} // namespace ecu::maps
