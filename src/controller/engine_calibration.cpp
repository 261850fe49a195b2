#include "controller/engine_calibration.h"

#include "calibration/encoding.h"

#include <algorithm>
#include <cmath>

namespace ecu::controller {

using calibration::parameter;

namespace {

constexpr double full_battery = 20; // volts of a full scale
constexpr double full_aux = 3.3;
constexpr double compensated_battery = 13.5; // at which no opening time is added
constexpr std::array<std::size_t, 4> gpo_tables{table_base("GPO1"), table_base("GPO2"), table_base("GPO3"),
                                                table_base("GPO4")};

// How a general purpose output is driven, the low four bits of its mode byte.
enum class GpoMode : std::uint8_t {
    off = 0,
    rpm_map = 1,
    rpm_coolant = 2,
    rpm_throttle = 3,
    rpm_air = 4,
    air_map = 5,
    fuel_pump = 6,
    coolant_fan = 7,
    gear = 8,
    rpm_above = 9,
    two_wire_idle = 10,
};

double share(double value, double base, double span) { return std::clamp((value - base) / span, 0.0, 1.0); }
double temperature_position(double celsius) { return share(celsius, -13, 128); }
double baro_position(double kpa) { return share(kpa, 10, 115); }
double degrees(double raw) { return raw / 4 - 16; }

} // namespace

double EngineCalibration::value(const calibration::Parameter& row, std::size_t element) const {
    const calibration::Scales scales{.map_span = static_cast<float>(map_span()),
                                     .map_base = static_cast<float>(map_base()),
                                     .full_scale_rpm = static_cast<float>(full_scale_rpm())};
    return calibration::shown_value(row.shown, memory_.value(calibration::first_element(row) + element), scales);
}

double EngineCalibration::full_scale_rpm() const { return std::max(raw(slot("FS_RPM")), 1.0); }
double EngineCalibration::map_span() const {
    return calibration::pressure_sensors[memory_.value(slot("MAP_TYPE")) & 3U].span;
}
double EngineCalibration::map_base() const {
    return calibration::pressure_sensors[memory_.value(slot("MAP_TYPE")) & 3U].base;
}
double EngineCalibration::rpm_position(double rpm) const { return share(rpm, 0, full_scale_rpm()); }
double EngineCalibration::map_position(double kpa) const { return share(kpa, map_base(), map_span()); }

// Nine cells, the first at 0 and the last at 1.
double EngineCalibration::nine(std::size_t base, double position) const {
    const double place = position * 8;
    const auto cell = std::min<std::size_t>(static_cast<std::size_t>(place), 7);
    const double rest = place - static_cast<double>(cell);
    return memory_.cell(base + cell) * (1 - rest) + memory_.cell(base + cell + 1) * rest;
}

// A square table, column by column from the left, each from the bottom up. Sixteen cells a side stand for sixteenths,
// so that the last one holds on to the end of the axis; nine stand for eighths.
double EngineCalibration::square(std::size_t base, std::size_t side, double x, double y) const {
    const double scale = side == 16 ? 16 : 8;
    const double x_place = std::min(x * scale, static_cast<double>(side - 1));
    const double y_place = std::min(y * scale, static_cast<double>(side - 1));
    const auto column = std::min(static_cast<std::size_t>(x_place), side - 2);
    const auto row = std::min(static_cast<std::size_t>(y_place), side - 2);
    const double x_rest = x_place - static_cast<double>(column);
    const double y_rest = y_place - static_cast<double>(row);
    const std::size_t at = base + column * side + row;
    const double left = memory_.cell(at) * (1 - y_rest) + memory_.cell(at + 1) * y_rest;
    const double right = memory_.cell(at + side) * (1 - y_rest) + memory_.cell(at + side + 1) * y_rest;
    return left * (1 - x_rest) + right * x_rest;
}

Fuelling EngineCalibration::fuelling(const OperatingPoint& at) const {
    const double x = rpm_position(at.rpm);
    const double throttle = share(at.throttle_percent, 0, 100);
    Fuelling fuel;
    fuel.map_gain = square(table_base("MAPM"), 16, x, map_position(at.manifold_kpa)) / 128;
    if (at.rpm >= value(parameter("TPS_RPM"))) {
        fuel.tps_mix = std::min(square(table_base("TPFP"), 16, x, throttle) / 64, 1.0);
    }
    const double tps_gain = square(table_base("TPFM"), 16, x, throttle) / 128;
    const double load = at.manifold_kpa / (map_span() + map_base());
    fuel.clt_gain = nine(table_base("CLTM"), temperature_position(at.coolant)) / 64;
    const double corrections = fuel.clt_gain * nine(table_base("MATM"), temperature_position(at.air)) / 64 *
                               nine(table_base("BARG"), baro_position(at.baro_kpa)) / 128 *
                               nine(table_base("AUXM"), share(at.aux_volts, 0, full_aux)) / 64;
    const double gain = fuel.map_gain * (1 - fuel.tps_mix) + tps_gain * fuel.tps_mix;
    const double us_a_volt = value(parameter("BAT_COMP"));
    const double offset = value(parameter("FUEL_B")) + us_a_volt * 1e-3 * (compensated_battery - at.battery);
    fuel.pulse_ms = std::max(0.0, value(parameter("FUEL_MX")) * load * gain * corrections + offset);
    return fuel;
}

double EngineCalibration::lambda_setpoint(const OperatingPoint& at) const {
    return square(table_base("EGOL"), 9, rpm_position(at.rpm), map_position(at.manifold_kpa)) / 128;
}

double EngineCalibration::timing(const OperatingPoint& at) const {
    const double x = rpm_position(at.rpm);
    const double y = map_position(at.manifold_kpa);
    return degrees(square(table_base("IGN3"), 16, x, y)) + degrees(nine(table_base("IGNM"), y)) +
           degrees(nine(table_base("IGNR"), x)) + degrees(nine(table_base("IGNT"), temperature_position(at.air))) +
           degrees(nine(table_base("IGNC"), temperature_position(at.coolant))) +
           degrees(nine(table_base("BARI"), baro_position(at.baro_kpa))) +
           degrees(nine(table_base("IGNA"), share(at.aux_volts, 0, full_aux)));
}

double EngineCalibration::dwell_ms(const OperatingPoint& at) const {
    return value(parameter("IGN_TDWL")) * nine(table_base("DWEL"), map_position(at.manifold_kpa)) / 64 *
           nine(table_base("BATD"), share(at.battery, 0, full_battery)) / 64;
}

double EngineCalibration::idle_rpm(const OperatingPoint& at) const {
    return nine(table_base("IDLE"), temperature_position(at.coolant)) * 8;
}

double EngineCalibration::accel_gain(const OperatingPoint& at) const {
    return nine(table_base("ACCC"), temperature_position(at.coolant)) / 64;
}

double EngineCalibration::throttle_percent(double sensor) const {
    const double closed = value(parameter("TPS_BASE")) / 100;
    const double opened = value(parameter("TPS_FS")) / 100;
    return opened - closed < 0.02 ? sensor * 100 : (sensor - closed) / (opened - closed) * 100;
}

int EngineCalibration::gear_of(double rpm_per_mph) const {
    for (std::size_t n = 0; n < 8; ++n) {
        if (rpm_per_mph >= value(parameter("RPSL"), n) && rpm_per_mph <= value(parameter("RPSH"), n)) {
            return static_cast<int>(n) + 1;
        }
    }
    return 0;
}

double EngineCalibration::gpo_duty(std::size_t channel, const OperatingPoint& at) const {
    const double rpm = rpm_position(at.rpm);
    const double load = map_position(at.manifold_kpa);
    const double air = temperature_position(at.air);
    const auto table = [&](double x, double y) { return square(gpo_tables[channel], 9, x, y) / 256; };
    switch (static_cast<GpoMode>(memory_.value(slot("GPOS") + channel) & calibration::output_mode_mask)) {
    case GpoMode::off:
        return 0;
    case GpoMode::rpm_map:
        return table(rpm, load);
    case GpoMode::rpm_coolant:
        return table(rpm, temperature_position(at.coolant));
    case GpoMode::rpm_throttle:
        return table(rpm, share(at.throttle_percent, 0, 100));
    case GpoMode::rpm_air:
        return table(rpm, air);
    case GpoMode::air_map:
        return table(air, load);
    case GpoMode::fuel_pump:
        return at.rpm > 0 ? 1 : 0;
    case GpoMode::coolant_fan:
        return at.coolant >= raw(slot("GPOV") + channel) ? 1 : 0;
    case GpoMode::gear:
        return at.gear > 0 && memory_.value(slot("GGPO") + static_cast<std::size_t>(at.gear - 1)) == channel ? 1 : 0;
    case GpoMode::rpm_above:
        return at.rpm >= value(parameter("RPMS"), channel) ? 1 : 0;
    case GpoMode::two_wire_idle:
        return table(0, share(at.iac_position, 0, 256));
    }
    return 0; // the codes 11 to 15 drive nothing
}

std::array<double, 4> EngineCalibration::gpo_duties(const OperatingPoint& at) const {
    return {gpo_duty(0, at), gpo_duty(1, at), gpo_duty(2, at), gpo_duty(3, at)};
}

// Its map stands over pressure as an open loop, else over air temperature.
BoostControl EngineCalibration::boost_control(const OperatingPoint& at) const {
    const unsigned flags = memory_.value(slot("BOFG"));
    const bool open_loop = (flags & 2U) != 0;
    const double cell = square(table_base("BMP0"), 9, rpm_position(at.rpm),
                               open_loop ? map_position(at.manifold_kpa) : temperature_position(at.air));
    return {.open_loop = open_loop,
            .inverted = (flags & 1U) != 0,
            .map_duty = cell / 256,
            .target_kpa = cell * map_span() / 255 + map_base(),
            .enable_kpa = value(parameter("BOEN")),
            .preset = value(parameter("BOIS")) / 100,
            .p = value(parameter("BO_P")),
            .i = value(parameter("BO_I")),
            .d = value(parameter("BO_D")),
            .seconds = 0.01 * std::max(raw(slot("BORT")), 1.0)};
}

} // namespace ecu::controller
