// The engine that the controller seems to run: idling, cruising, pulling through the revs, or these in turn. It moves
// in fixed steps, so the same seed and calibration give the same engine however often the console asks. Fuelling and
// timing come from the calibration in the controller's memory: a richer map makes the lambda fall, the oxygen feedback
// works against it.
#pragma once

#include "controller/engine_calibration.h"
#include "controller/noise.h"

#include <array>
#include <cstdint>

namespace ecu::controller {

enum class Driving : std::uint8_t { idle, cruise, pull, cycle };

inline constexpr double engine_step = 0.01; // seconds

// The state of the idle air valve, numbered as it travels.
enum class IacState : std::uint8_t { shutdown = 1, home, start_position, opening, closing, closed };

struct EngineState {
    double time = 0; // seconds since the start of the engine
    OperatingPoint at;
    double tps_sensor = 0; // share of the sensor's full scale
    Fuelling fuel;
    double injector_ms = 0;
    double accel_ms = 0;
    double lambda = 1;
    double lambda_setpoint = 1;
    double ego_correction = 1;
    double timing = 10; // degrees before top dead centre
    double dwell_ms = 3;
    double egt = 200;
    double speed_mph = 0;
    double rpm_per_mph = 0;
    std::array<double, 4> gpo_duty{};
    IacState iac_state = IacState::home;
    double idle_setpoint = 900;
    double teeth = 0; // of the crank wheel, since the start of the firmware
    double cams = 0;
    double can_frames = 0;
    double firmware_seconds = 0;
};

class EngineModel {
public:
    // `memory` stays the caller's and is read on every step.
    EngineModel(const ControllerMemory& memory, Driving driving, std::uint64_t seed);

    void step();
    const EngineState& state() const { return state_; }
    const EngineCalibration& calibration() const { return calibration_; }

    // The controller restarts under the running engine: what it counts begins again, its latches are open.
    void restart_firmware();
    void hold_timing_at_zero(bool on) { timing_held_ = on; }
    void set_oxygen_feedback(bool on) { oxygen_feedback_ = on; }

private:
    enum class Phase : std::uint8_t { idle, cruise, coast, pull };

    void choose_phase();
    void move_throttle();
    void move_crank();
    void control_boost();
    void fill_manifold();
    void warm_up();
    void control_idle_air();
    void inject();
    void ignite();
    void count();
    double flicker(double size) { return size * noise_.centred(); }

    EngineCalibration calibration_;
    ControllerMemory healthy_memory_; // the calibration that this engine wants
    EngineCalibration healthy_;
    Driving driving_;
    Noise noise_;
    EngineState state_;
    Phase phase_;
    bool pulled_ = false; // the coming end of coasting leads to the next phase of the cycle, not into a pull
    double phase_time_ = 0;
    double throttle_ = 0; // 0 to 1, the pedal itself
    double throttle_rate_ = 0;
    double boost_ = 0;       // kPa
    double boost_duty_ = 0;  // as map or servo ask for it, 0 to 1
    double wastegate_ = 0;   // what its valve gets of it: more holds more boost
    double boost_sum_ = 0;   // what the servo has added up
    double boost_error_ = 0; // at its last run, share of the pressure span
    double servo_waits_ = 0; // seconds to its next run
    bool boost_active_ = false;
    double hunting_ = 0;
    bool timing_held_ = false;
    bool oxygen_feedback_ = true;
};

} // namespace ecu::controller
