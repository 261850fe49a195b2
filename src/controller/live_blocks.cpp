#include "controller/live_blocks.h"

#include "controller/wheel_capture.h"

#include <algorithm>
#include <cmath>

namespace ecu::controller {

namespace {

constexpr double tick_ms = 1.6e-3; // unit of pulse widths
constexpr int cylinders = 4;
constexpr int channels = 8;

// Bits of the input flags.
constexpr unsigned input_aux = 1;
constexpr unsigned input_trigger_b = 4;
constexpr unsigned input_rev_limit_1 = 32;

double held_round(double value, double low, double high) { return std::clamp(std::round(value), low, high); }

// A place along an axis of 16 cells: the cell, and the rest in 128ths of it.
void put_position(Data& data, double position) {
    const auto place = static_cast<unsigned>(std::clamp(position, 0.0, 1.0) * 16 * 128);
    const unsigned cell = std::min(place / 128, 15U);
    put_byte(data, cell);
    put_byte(data, std::min(place - cell * 128, 127U));
}

void put_counter(Data& data, double count) { put_word(data, static_cast<unsigned>(std::fmod(count, 65536))); }

} // namespace

void put_byte(Data& data, unsigned value) { data.push_back(static_cast<std::uint8_t>(value & 0xFFU)); }

void put_word(Data& data, unsigned value) {
    put_byte(data, value);
    put_byte(data, value >> 8U);
}

void put_byte(Data& data, double value) { put_byte(data, static_cast<unsigned>(held_round(value, 0, 255))); }
void put_word(Data& data, double value) { put_word(data, static_cast<unsigned>(held_round(value, 0, 65535))); }

void put_signed_byte(Data& data, double value) {
    put_byte(data, static_cast<unsigned>(static_cast<int>(held_round(value, -128, 127))));
}

void put_signed_word(Data& data, double value) {
    put_word(data, static_cast<unsigned>(static_cast<int>(held_round(value, -32768, 32767))));
}

Data live_block(const EngineState& state, const EngineCalibration& calibration, const DynoRun& dyno) {
    const OperatingPoint& at = state.at;
    const bool reads_lambda = calibration.wideband();
    const double oxygen_percent = state.lambda > 1 ? 20.9 * (state.lambda - 1) / state.lambda : 0;
    const double lean = state.lambda - 1;
    const unsigned blinking = std::fmod(state.time, 4) < 2 ? input_trigger_b : 0;
    Data data;
    data.reserve(60);
    put_byte(data, 0U);
    put_counter(data, state.can_frames);         // 4
    put_word(data, reads_lambda ? 1U : 0U);      // 6
    put_byte(data, state.lambda_setpoint * 128); // 8
    put_byte(data, reads_lambda ? state.lambda * 128 : oxygen_percent * 10);
    put_byte(data, state.fuel.tps_mix * 64);     // 10
    put_word(data, state.injector_ms / tick_ms); // 11
    put_signed_byte(data, at.coolant);           // 13
    put_signed_byte(data, at.air);
    put_byte(data, at.battery / 20 * 255); // 15
    put_byte(data, state.ego_correction * 64);
    put_byte(data, state.fuel.map_gain * 128);                // 17
    put_word(data, state.accel_ms / 104.856 * 65535);         // 18
    put_byte(data, state.fuel.clt_gain * 64);                 // 20
    put_word(data, (at.baro_kpa - 10) / 115 * 1023);          // 21
    put_signed_word(data, state.timing * 4);                  // 23
    put_byte(data, input_aux | input_rev_limit_1 | blinking); // 25
    put_word(data, at.manifold_kpa * 4);                      // 26
    put_word(data, 0U);
    put_word(data, at.rpm); // 30
    data.resize(data.size() + 7);
    put_signed_word(data, at.throttle_percent / 100 * 1023);       // 39
    put_position(data, calibration.map_position(at.manifold_kpa)); // 41
    put_position(data, calibration.rpm_position(at.rpm));
    put_position(data, at.throttle_percent / 100);
    put_byte(data, static_cast<unsigned>(dyno.state())); // 47
    put_word(data, unsigned{dyno.samples()});
    put_byte(data, 0U);
    put_word(data, 512 + lean * 120);                                   // 51: feedback of the wideband sensor
    put_word(data, 2048 + lean * 3000);                                 // its pump current
    put_word(data, 2048 + lean * 2900);                                 // what drives the pump
    put_word(data, 5200 - state.egt * 2);                               // its heater's pulses
    put_word(data, std::min(780.0, 100 + state.firmware_seconds * 40)); // its heater's temperature
    put_word(data, state.egt * 16);                                     // 61
    return data;
}

Data trigger_block(const EngineState& state) {
    Data data;
    put_byte(data, 0U); // the first map is in use
    put_counter(data, state.teeth);
    put_counter(data, state.cams);
    put_byte(data, static_cast<unsigned>(std::fmod(state.teeth, wheel_teeth))); // tooth within the turn
    put_byte(data, static_cast<unsigned>(std::fmod(state.cams, 2)));
    put_counter(data, state.firmware_seconds);
    put_byte(data, 0U); // no trigger errors
    put_word(data, state.speed_mph * 16);
    put_word(data, state.rpm_per_mph * 16);
    put_byte(data, static_cast<unsigned>(state.at.gear));
    return data;
}

Data second_block(const EngineState& state) {
    Data data = trigger_block(state);
    for (const double duty : state.gpo_duty) {
        put_byte(data, duty * 255);
    }
    put_word(data, state.at.aux_volts / 3.3 * 1024);
    const Data idle = idle_block(state);
    data.insert(data.end(), idle.begin(), idle.end());
    return data;
}

Data idle_block(const EngineState& state) {
    Data data;
    put_byte(data, static_cast<unsigned>(state.iac_state));
    put_byte(data, 0U); // no errors
    put_word(data, state.at.iac_position);
    put_word(data, state.idle_setpoint);
    return data;
}

Data channel_block(const EngineState& state) {
    const double cycle_ms = 120000 / std::max(state.at.rpm, 1.0); // two turns; each channel fires once
    Data data;
    for (int channel = 0; channel < cylinders; ++channel) {
        put_word(data, state.injector_ms * (1 + 0.004 * channel) / tick_ms); // the injectors are not quite alike
        put_word(data, state.dwell_ms * 100);
    }
    for (const double on_ms : {state.injector_ms, state.dwell_ms}) {
        for (int channel = 0; channel < channels; ++channel) {
            put_byte(data, channel < cylinders ? on_ms / cycle_ms * 255 : 0.0);
        }
    }
    put_word(data, 0U);
    return data;
}

} // namespace ecu::controller
