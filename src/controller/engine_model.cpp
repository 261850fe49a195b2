#include "controller/engine_model.h"

#include "controller/wheel_capture.h"

#include <algorithm>
#include <cmath>
#include <numbers>
#include <utility>

namespace ecu::controller {

using calibration::parameter;

namespace {

constexpr double idle_seconds = 15;
constexpr double cruise_seconds = 20;
constexpr double pull_from_rpm = 1900;
constexpr double pull_to_rpm = 8300;
constexpr double throttle_speed = 4; // of its travel a second
constexpr double start_steps = 60;   // of the idle air valve
constexpr double lean_out = 1.98;    // lambda of an engine without fuel
// What the throttle sensor reads when closed, and how much more when opened.
constexpr double sensor_closed = 0.12;
constexpr double sensor_travel = 0.70;
// Boost with the wastegate's valve off, and what full duty adds.
constexpr double gate_open_kpa = 45;
constexpr double gate_range_kpa = 120;
constexpr double servo_share = 0.5; // of the integral's gain in each run
// Engine speed for each mile per hour.
constexpr double fourth_gear = 42;
constexpr double third_gear = 55;

// Moves `value` towards `target` as a first-order lag of `seconds`.
void follow(double& value, double target, double seconds) { value += (target - value) * engine_step / seconds; }

// As std::clamp, but limits that the tuner has crossed are no error: the upper one holds.
double held(double value, double low, double high) { return std::min(std::max(value, low), high); }

double wave(double time, double period) { return std::sin(2 * std::numbers::pi * time / period); }

} // namespace

EngineModel::EngineModel(const ControllerMemory& memory, Driving driving, std::uint64_t seed)
    : calibration_(memory), healthy_(healthy_memory_), driving_(driving), noise_(seed),
      phase_(driving == Driving::cruise ? Phase::cruise : Phase::idle) {
    state_.at = {.rpm = 1100, .manifold_kpa = 45, .baro_kpa = 100.2, .coolant = 24, .air = 21, .battery = 13.9};
    state_.at.aux_volts = 1.2;
    state_.at.iac_position = start_steps;
    step();
}

void EngineModel::step() {
    state_.time += engine_step;
    state_.firmware_seconds += engine_step;
    phase_time_ += engine_step;
    choose_phase();
    move_throttle();
    move_crank();
    control_boost();
    fill_manifold();
    warm_up();
    control_idle_air();
    inject();
    ignite();
    count();
}

void EngineModel::restart_firmware() {
    state_.firmware_seconds = 0;
    state_.teeth = 0;
    state_.cams = 0;
    state_.can_frames = 0;
    state_.ego_correction = 1;
    timing_held_ = false;
    oxygen_feedback_ = true;
}

void EngineModel::choose_phase() {
    const Phase before = phase_;
    switch (driving_) {
    case Driving::idle:
        phase_ = Phase::idle;
        break;
    case Driving::cruise:
        phase_ = Phase::cruise;
        break;
    case Driving::pull:
    case Driving::cycle:
        if (phase_ == Phase::pull && state_.at.rpm >= std::min(pull_to_rpm, calibration_.raw(slot("RLI_HRD1")))) {
            phase_ = Phase::coast;
            pulled_ = true;
        } else if (phase_ == Phase::coast && state_.at.rpm <= pull_from_rpm) {
            phase_ = pulled_ && driving_ == Driving::cycle ? Phase::idle : Phase::pull;
            pulled_ = false;
        } else if (phase_ == Phase::idle &&
                   (driving_ == Driving::pull ? phase_time_ > 2 : phase_time_ > idle_seconds)) {
            phase_ = driving_ == Driving::pull ? Phase::pull : Phase::cruise;
        } else if (phase_ == Phase::cruise && phase_time_ > cruise_seconds) {
            phase_ = Phase::coast;
        }
        break;
    }
    if (phase_ != before) {
        phase_time_ = 0;
    }
}

void EngineModel::move_throttle() {
    double target = 0;
    if (phase_ == Phase::pull) {
        target = 1;
    } else if (phase_ == Phase::cruise) {
        target =
            0.17 + 0.04 * wave(phase_time_, 9) + (std::fmod(phase_time_, 6) > 5 ? 0.12 : 0); // now and then a tip-in
    }
    const double reach = throttle_speed * engine_step;
    const double moved = std::clamp(target - throttle_, -reach, reach);
    throttle_ += moved;
    throttle_rate_ = moved / engine_step;
    state_.tps_sensor = sensor_closed + sensor_travel * throttle_ + flicker(0.0006);
    state_.at.throttle_percent = calibration_.throttle_percent(state_.tps_sensor);
}

void EngineModel::move_crank() {
    double& rpm = state_.at.rpm;
    follow(hunting_, flicker(60), 0.15);
    switch (phase_) {
    case Phase::idle:
        follow(rpm, state_.idle_setpoint + 10 * wave(state_.time, 2.3) + hunting_, 0.7);
        break;
    case Phase::cruise:
        follow(rpm, 2900 + 6000 * (throttle_ - 0.17), 2.5);
        break;
    case Phase::coast:
        rpm = std::max(rpm - (600 + rpm * 0.15) * engine_step, state_.idle_setpoint);
        break;
    case Phase::pull: {
        const double off_peak = (rpm - 5200) / 6500;
        rpm += (420 * state_.at.manifold_kpa / 100 * (1 - off_peak * off_peak) + hunting_) * engine_step;
        break;
    }
    }
    const bool in_gear = phase_ != Phase::idle;
    const double ratio = phase_ == Phase::cruise ? fourth_gear : third_gear;
    follow(state_.speed_mph, in_gear ? rpm / ratio : 0, in_gear ? 0.6 : 2.5);
    state_.rpm_per_mph = state_.speed_mph > 1 ? rpm / state_.speed_mph : 0;
    state_.at.gear = in_gear ? calibration_.gear_of(state_.rpm_per_mph) : 0;
}

void EngineModel::control_boost() {
    const BoostControl control = calibration_.boost_control(state_.at);
    const bool was_active =
        std::exchange(boost_active_, control.open_loop || state_.at.manifold_kpa > control.enable_kpa);
    if (control.open_loop) {
        boost_duty_ = control.map_duty;
    } else if (!boost_active_) {
        boost_duty_ = 0;
    } else if (servo_waits_ -= engine_step; !was_active || servo_waits_ <= 0) {
        servo_waits_ = control.seconds;
        const double error = (control.target_kpa - state_.at.manifold_kpa) / calibration_.map_span();
        const double turn = was_active ? error - boost_error_ : 0;
        boost_error_ = error;
        const bool at_its_end = error > 0 ? boost_duty_ >= 1 : boost_duty_ <= 0; // more would only wind it up
        const double sum = at_its_end ? boost_sum_ : boost_sum_ + servo_share * control.i * error;
        boost_sum_ = was_active ? std::clamp(sum, 0.0, 1.0) : control.preset;
        boost_duty_ = boost_sum_ + control.p * error + control.d * turn;
    }
    boost_duty_ = std::clamp(boost_duty_, 0.0, 1.0);
    wastegate_ = control.inverted ? 1 - boost_duty_ : boost_duty_;
}

void EngineModel::fill_manifold() {
    OperatingPoint& at = state_.at;
    const double opening = 0.014 + 0.00013 * at.iac_position + std::pow(throttle_, 1.4);
    const double supply = 2.6 * opening / (at.rpm / 6500);
    const double natural = std::max(0.2, supply / std::sqrt(1 + supply * supply));
    const double spool = std::clamp((at.rpm - 2200) / 2300, 0.0, 1.0);
    const double full_boost = gate_open_kpa + wastegate_ * gate_range_kpa;
    follow(boost_, throttle_ > 0.5 ? full_boost * (throttle_ - 0.5) * 2 * spool : 0, 0.5);
    follow(at.manifold_kpa, at.baro_kpa * natural + boost_ + flicker(0.8), 0.08);
}

void EngineModel::warm_up() {
    OperatingPoint& at = state_.at;
    const double work = at.manifold_kpa * at.rpm / 1e6; // about 0.03 at idle, 1.5 at full power
    follow(at.coolant, 87 + 8 * work + 2 * wave(state_.time, 70), 50);
    follow(at.air, 27 + 14 * work, 40);
    const double charging = phase_ == Phase::idle ? 13.9 : 14.2;
    follow(at.battery, charging + flicker(0.4), 0.3);
    follow(at.baro_kpa, 100.2 + flicker(1.5), 5);
    at.aux_volts = 1.2 + 0.3 * wave(state_.time, 23);
    follow(state_.egt, 330 + 380 * std::min(work, 1.4) + (state_.injector_ms > 0 ? 60 : -120), 2.5);
    state_.gpo_duty = calibration_.gpo_duties(at);
}

void EngineModel::control_idle_air() {
    OperatingPoint& at = state_.at;
    state_.idle_setpoint = calibration_.idle_rpm(at);
    const double error = state_.idle_setpoint - at.rpm;
    const bool throttle_closed = at.throttle_percent < calibration_.value(parameter("IAC_TPSE"));
    double target = start_steps;
    if (state_.firmware_seconds < 1) {
        state_.iac_state = IacState::home;
    } else if (state_.firmware_seconds < 2) {
        state_.iac_state = IacState::start_position;
    } else if (!throttle_closed) {
        state_.iac_state = IacState::closed;
        target = calibration_.raw(slot("IAC_CLOS")) * 0.1;
    } else {
        if (state_.iac_state < IacState::opening || std::abs(error) > calibration_.raw(slot("IAC_DEAD"))) {
            state_.iac_state = error > 0 ? IacState::opening : IacState::closing;
        }
        target =
            std::clamp(40 + (state_.idle_setpoint - 800) * 0.12 + error * 0.1, 0.0, calibration_.raw(slot("IAC_OPEN")));
    }
    follow(at.iac_position, target, 0.8);
}

void EngineModel::inject() {
    const OperatingPoint& at = state_.at;
    state_.fuel = calibration_.fuelling(at);
    state_.lambda_setpoint = calibration_.lambda_setpoint(at);

    // Volts of throttle movement a second; slower movements than ACC_RATE enrich nothing.
    const double volts = throttle_rate_ * sensor_travel * 5;
    double enrichment = 0;
    if (volts > calibration_.value(parameter("ACC_RATE"))) {
        const double full = calibration_.value(parameter("ACC_SEN")) * volts * 0.1 * calibration_.accel_gain(at);
        enrichment = held(full, calibration_.value(parameter("ACC_MINP")), calibration_.value(parameter("ACC_MAXP")));
    }
    state_.accel_ms = std::max(enrichment, state_.accel_ms * (1 - engine_step / 0.25));
    if (state_.accel_ms < 0.002) {
        state_.accel_ms = 0;
    }

    const bool cut =
        phase_ == Phase::coast && at.rpm > 1500 && at.throttle_percent < calibration_.value(parameter("TPS_ENR"));
    state_.injector_ms = cut ? 0 : state_.fuel.pulse_ms * state_.ego_correction + state_.accel_ms;
    // This engine wants the fuel of its own calibration; more makes it richer. Enrichment makes up for wet walls.
    const double wanted = healthy_.fuelling(at).pulse_ms;
    const double given = state_.fuel.pulse_ms * state_.ego_correction + 0.15 * state_.accel_ms;
    const double target =
        cut ? lean_out : std::clamp(healthy_.lambda_setpoint(at) * wanted / std::max(given, 0.01), 0.5, lean_out);
    follow(state_.lambda, target + flicker(0.04) + 0.02 * wave(state_.time, 1.3), cut ? 0.4 : 0.12);

    // Behind a fuel cut the sensor has to find its way back first.
    const bool settled = !cut && std::abs(state_.lambda - state_.lambda_setpoint) < 0.25;
    const bool closed_loop = oxygen_feedback_ && settled && state_.accel_ms == 0 &&
                             calibration_.raw(slot("EGO_SECS")) > 0 &&
                             state_.firmware_seconds > calibration_.raw(slot("EGO_SECS")) &&
                             at.throttle_percent < calibration_.value(parameter("TPS_EGO"));
    if (closed_loop) {
        const double corrected = state_.ego_correction + (state_.lambda - state_.lambda_setpoint) * 2 * engine_step;
        state_.ego_correction =
            held(corrected, calibration_.value(parameter("EGO_A_LO")), calibration_.value(parameter("EGO_A_HI")));
    } else {
        follow(state_.ego_correction, 1, 0.3);
    }
}

void EngineModel::ignite() {
    const double steadying = phase_ == Phase::idle ? (state_.idle_setpoint - state_.at.rpm) * 0.03 : 0;
    state_.timing = timing_held_ ? 0 : calibration_.timing(state_.at) + steadying;
    state_.dwell_ms = calibration_.dwell_ms(state_.at);
}

void EngineModel::count() {
    const double turns = state_.at.rpm / 60 * engine_step;
    state_.teeth += turns * wheel_teeth;
    state_.cams += turns / 2;
    state_.can_frames += calibration_.sensor_on_can() ? 100 * engine_step : 0;
}

} // namespace ecu::controller
