// The controller's memory as its engine functions read it: interpolated tables and parameters in engineering units,
// for one operating point. Read afresh on every step, so that whatever the console writes acts at once.
#pragma once

#include "controller/memory.h"

#include <array>
#include <cstdint>

namespace ecu::controller {

// Where the engine runs, in engineering units.
struct OperatingPoint {
    double rpm = 0;
    double manifold_kpa = 100;
    double baro_kpa = 100;
    double throttle_percent = 0;
    double coolant = 20; // degrees C
    double air = 20;
    double battery = 12.5; // volts
    double aux_volts = 0;
    double iac_position = 0;
    int gear = 0;
};

struct Fuelling {
    double map_gain = 0; // ratio of the fuel map
    double tps_mix = 0;  // 0 to 1, share of the throttle's map
    double clt_gain = 0; // ratio of the coolant's table
    double pulse_ms = 0; // injector opening, oxygen feedback not counted
};

// How the first channel drives the wastegate at one operating point; the other channels drive nothing here.
struct BoostControl {
    bool open_loop = false;
    bool inverted = false;
    double map_duty = 0;   // of the map, 0 to 1; open loop
    double target_kpa = 0; // of the map; closed loop
    double enable_kpa = 0; // the loop is closed above it
    double preset = 0;     // duty with which closing the loop begins
    double p = 0, i = 0, d = 0;
    double seconds = 0.01; // between two runs of the servo
};

class EngineCalibration {
public:
    explicit EngineCalibration(const ControllerMemory& memory) : memory_(memory) {}

    double full_scale_rpm() const;
    double map_span() const;
    double map_base() const;
    // Places along the axes, held to 0 to 1.
    double rpm_position(double rpm) const;
    double map_position(double kpa) const;

    Fuelling fuelling(const OperatingPoint& at) const;
    double lambda_setpoint(const OperatingPoint& at) const;
    double timing(const OperatingPoint& at) const; // degrees before top dead centre
    double dwell_ms(const OperatingPoint& at) const;
    double idle_rpm(const OperatingPoint& at) const;
    double accel_gain(const OperatingPoint& at) const; // ratio of acceleration enrichment
    // What the throttle sensor's share of its full scale stands for, by the closed and opened values.
    double throttle_percent(double sensor) const;
    std::array<double, 4> gpo_duties(const OperatingPoint& at) const; // 0 to 1
    BoostControl boost_control(const OperatingPoint& at) const;
    // The gear whose range holds the ratio, 0 for none.
    int gear_of(double rpm_per_mph) const;

    double raw(std::size_t slot) const { return memory_.value(slot); }
    // As the console shows it: milliseconds, per cent, degrees, by the parameter's row.
    double value(const calibration::Parameter& row, std::size_t element = 0) const;
    bool wideband() const { return (memory_.value(slot("EGO_FLGS")) & 3U) != 0; }
    bool sensor_on_can() const { return (memory_.value(slot("EGO_FLGS")) & 3U) == 2; }

private:
    double nine(std::size_t base, double position) const;
    double square(std::size_t base, std::size_t side, double x, double y) const;
    double gpo_duty(std::size_t channel, const OperatingPoint& at) const;

    const ControllerMemory& memory_;
};

} // namespace ecu::controller
