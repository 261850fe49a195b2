#include "controller/engine_calibration.h"

#include <algorithm>
#include <cmath>

namespace ecu::controller {

namespace {

constexpr double tick_ms = 1.6e-3;  // the unit of injection times
constexpr double full_battery = 20; // volts of a full scale
constexpr double full_aux = 3.3;
constexpr std::uint16_t fuel_offset_zero = 16384;

struct Sensor {
    double span, base; // kPa
};
constexpr std::array<Sensor, 4> sensors{{{115, 10}, {255, 10}, {551, 79}, {394, 10}}};

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

EngineCalibration::EngineCalibration(const ControllerMemory& memory) : memory_(memory) {
    const auto slot = [](std::string_view key) { return ControllerMemory::slot_of(key); };
    const auto table = [](std::string_view key) { return ControllerMemory::table_at(key); };
    slots_ = {
        .fs_rpm = slot("FS_RPM"),
        .map_type = slot("MAP_TYPE"),
        .fuel_b = slot("FUEL_B"),
        .fuel_mx = slot("FUEL_MX"),
        .tps_rpm = slot("TPS_RPM"),
        .bat_comp = slot("BAT_COMP"),
        .acc_rate = slot("ACC_RATE"),
        .acc_sen = slot("ACC_SEN"),
        .acc_minp = slot("ACC_MINP"),
        .acc_maxp = slot("ACC_MAXP"),
        .ego_secs = slot("EGO_SECS"),
        .ego_flgs = slot("EGO_FLGS"),
        .ego_a_lo = slot("EGO_A_LO"),
        .ego_a_hi = slot("EGO_A_HI"),
        .tps_base = slot("TPS_BASE"),
        .tps_fs = slot("TPS_FS"),
        .tps_ego = slot("TPS_EGO"),
        .tps_enr = slot("TPS_ENR"),
        .ign_tdwl = slot("IGN_TDWL"),
        .iac_clos = slot("IAC_CLOS"),
        .iac_open = slot("IAC_OPEN"),
        .iac_tpse = slot("IAC_TPSE"),
        .iac_dead = slot("IAC_DEAD"),
        .rli_hrd1 = slot("RLI_HRD1"),
        .rlf_hrd1 = slot("RLF_HRD1"),
        .gpos = slot("GPOS"),
        .gpov = slot("GPOV"),
        .rpms = slot("RPMS"),
        .ggpo = slot("GGPO"),
        .rpsl = slot("RPSL"),
        .rpsh = slot("RPSH"),
    };
    tables_ = {
        .egol = table("EGOL"),
        .cltm = table("CLTM"),
        .matm = table("MATM"),
        .auxm = table("AUXM"),
        .mapm = table("MAPM"),
        .ignm = table("IGNM"),
        .ignr = table("IGNR"),
        .barg = table("BARG"),
        .idle = table("IDLE"),
        .ignt = table("IGNT"),
        .dwel = table("DWEL"),
        .bari = table("BARI"),
        .ignc = table("IGNC"),
        .igna = table("IGNA"),
        .accc = table("ACCC"),
        .batd = table("BATD"),
        .ign3 = table("IGN3"),
        .tpfm = table("TPFM"),
        .tpfp = table("TPFP"),
        .gpo = {table("GPO1"), table("GPO2"), table("GPO3"), table("GPO4")},
    };
}

double EngineCalibration::full_scale_rpm() const { return std::max(raw(slots_.fs_rpm), 1.0); }
double EngineCalibration::map_span() const { return sensors[bits(slots_.map_type) & 3U].span; }
double EngineCalibration::map_base() const { return sensors[bits(slots_.map_type) & 3U].base; }
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
    fuel.map_gain = square(tables_.mapm, 16, x, map_position(at.manifold_kpa)) / 128;
    if (at.rpm >= full_scale_rpm() * raw(slots_.tps_rpm) / 1023) {
        fuel.tps_mix = std::min(square(tables_.tpfp, 16, x, throttle) / 64, 1.0);
    }
    const double tps_gain = square(tables_.tpfm, 16, x, throttle) / 128;
    const double load = at.manifold_kpa / (map_span() + map_base());
    fuel.clt_gain = nine(tables_.cltm, temperature_position(at.coolant)) / 64;
    const double corrections = fuel.clt_gain * nine(tables_.matm, temperature_position(at.air)) / 64 *
                               nine(tables_.barg, baro_position(at.baro_kpa)) / 128 *
                               nine(tables_.auxm, share(at.aux_volts, 0, full_aux)) / 64;
    const double gain = fuel.map_gain * (1 - fuel.tps_mix) + tps_gain * fuel.tps_mix;
    const double offset = (raw(slots_.fuel_b) - fuel_offset_zero) + raw(slots_.bat_comp) * (13.5 - at.battery);
    fuel.pulse_ms = std::max(0.0, tick_ms * (raw(slots_.fuel_mx) * load * gain * corrections + offset));
    return fuel;
}

double EngineCalibration::lambda_setpoint(const OperatingPoint& at) const {
    return square(tables_.egol, 9, rpm_position(at.rpm), map_position(at.manifold_kpa)) / 128;
}

double EngineCalibration::timing(const OperatingPoint& at) const {
    const double x = rpm_position(at.rpm);
    const double y = map_position(at.manifold_kpa);
    return degrees(square(tables_.ign3, 16, x, y)) + degrees(nine(tables_.ignm, y)) + degrees(nine(tables_.ignr, x)) +
           degrees(nine(tables_.ignt, temperature_position(at.air))) +
           degrees(nine(tables_.ignc, temperature_position(at.coolant))) +
           degrees(nine(tables_.bari, baro_position(at.baro_kpa))) +
           degrees(nine(tables_.igna, share(at.aux_volts, 0, full_aux)));
}

double EngineCalibration::dwell_ms(const OperatingPoint& at) const {
    return raw(slots_.ign_tdwl) / 100 * nine(tables_.dwel, map_position(at.manifold_kpa)) / 64 *
           nine(tables_.batd, share(at.battery, 0, full_battery)) / 64;
}

double EngineCalibration::idle_rpm(const OperatingPoint& at) const {
    return nine(tables_.idle, temperature_position(at.coolant)) * 8;
}

double EngineCalibration::accel_gain(const OperatingPoint& at) const {
    return nine(tables_.accc, temperature_position(at.coolant)) / 64;
}

double EngineCalibration::throttle_percent(double sensor) const {
    const double closed = raw(slots_.tps_base) / 255;
    const double opened = raw(slots_.tps_fs) / 255;
    return opened - closed < 0.02 ? sensor * 100 : (sensor - closed) / (opened - closed) * 100;
}

int EngineCalibration::gear_of(double rpm_per_mph) const {
    for (std::size_t n = 0; n < 8; ++n) {
        if (rpm_per_mph >= raw(slots_.rpsl, n) / 16 && rpm_per_mph <= raw(slots_.rpsh, n) / 16) {
            return static_cast<int>(n) + 1;
        }
    }
    return 0;
}

double EngineCalibration::gpo_duty(std::size_t channel, const OperatingPoint& at) const {
    const double rpm = rpm_position(at.rpm);
    const double load = map_position(at.manifold_kpa);
    const double air = temperature_position(at.air);
    const auto table = [&](double x, double y) { return square(tables_.gpo[channel], 9, x, y) / 256; };
    switch (static_cast<GpoMode>(bits(slots_.gpos, channel) & 0xFU)) {
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
        return at.coolant >= raw(slots_.gpov, channel) ? 1 : 0;
    case GpoMode::gear:
        return at.gear > 0 && bits(slots_.ggpo, static_cast<std::size_t>(at.gear - 1)) == channel ? 1 : 0;
    case GpoMode::rpm_above:
        return at.rpm >= raw(slots_.rpms, channel) ? 1 : 0;
    case GpoMode::two_wire_idle:
        return table(0, share(at.iac_position, 0, 256));
    }
    return 0; // the codes 11 to 15 drive nothing
}

std::array<double, 4> EngineCalibration::gpo_duties(const OperatingPoint& at) const {
    return {gpo_duty(0, at), gpo_duty(1, at), gpo_duty(2, at), gpo_duty(3, at)};
}

} // namespace ecu::controller
