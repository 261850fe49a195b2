// The 21 channels of the plotter's chart. A channel's place on the chart is a fraction of full scale, 1.0 at the top;
// `offset` and `span` bring a fraction back to the channel's own unit (offset + fraction * span), for reading off.
// The spans of rpm and manifold pressure are the controller's, so those two carry 0 here.
#pragma once

#include "messages/live_fields.h"
#include "platform/colour.h"

#include <array>
#include <string_view>

namespace ecu::logging {

inline constexpr std::size_t channel_count = 21;
inline constexpr std::size_t rpm_channel = 0;
inline constexpr std::size_t manifold_channel = 4;
inline constexpr std::size_t injector_duty_channel = 9;
inline constexpr std::size_t ignition_duty_channel = 10;
inline constexpr std::size_t wheel_channel = 11;
// The chart runs while one of the first 16 is ticked; the wideband channels behind them do not start it.
inline constexpr std::size_t starting_channels = 16;
// Dark in every theme: the channels' colours are bright.
inline constexpr platform::Colour chart_paper{0x12, 0x16, 0x1C};

namespace live_of = messages::live;

struct ChartChannel {
    std::string_view caption; // of the check box; the two above show their span from the first activation on
    platform::Colour colour;
    float offset;
    float span;
    const messages::LiveField* field; // what the channel draws, in the unit of `offset` and `span`
    int decimals;                     // of a value read off
};

inline constexpr std::array<ChartChannel, channel_count> chart_channels{{
    {"RPM [0 to Max RPM]", {0xFF, 0xFF, 0x00}, 0, 0, &live_of::engine_rpm, 0},
    {"Air Fuel [0.6 to 1.4 lamda]", {0x80, 0x80, 0xFF}, 0.6F, 0.8F, &live_of::lambda, 3},
    {"Coolant [0 to 125 °C]", {0xFF, 0x00, 0x00}, 0, 125, &live_of::coolant_temp, 0},
    {"TPS [0 to 100%]", {0x00, 0x80, 0x80}, 0, 100, &live_of::held_throttle, 1},
    {"Manifold Pressure", {0x80, 0xFF, 0xFF}, 0, 0, &live_of::manifold_kpa, 1},
    {"Air Temp [0 to 125 °C]", {0xC0, 0x00, 0xC0}, 0, 125, &live_of::air_temp, 0},
    {"Inj PW [0 to 25 ms]", {0xFF, 0x80, 0x00}, 0, 25, &live_of::injector_pw, 3},
    {"EGO Correction [0 to 2]", {0x00, 0x80, 0x00}, 0, 2, &live_of::ego_correction, 3},
    {"IGN Timing [-50° to +50°]", {0xFF, 0xC0, 0xC0}, -50, 100, &live_of::ignition_timing, 2},
    {"#1 Inj Duty [0 to 100%]", {0xC0, 0xC0, 0x00}, 0, 100, &live_of::inj_duty, 0},
    {"#1 Ign Duty [0 to 100%]", {0xC0, 0xFF, 0xC0}, 0, 100, &live_of::ign_duty, 0},
    {"WDB Tooth [0 to 255]", {0xFF, 0xC0, 0x80}, 0, 255, &live_of::wheel_idx_num, 0},
    // 101 keeps a full duty visible under the chart's upper edge.
    {"GPO#1 Duty [0 to 100%]", {0xDE, 0xEE, 0xBD}, 0, 101, &live_of::gpo_duty[0], 1},
    {"GPO#2 Duty [0 to 100%]", {0xFC, 0xD7, 0xBE}, 0, 101, &live_of::gpo_duty[1], 1},
    {"GPO#3 Duty [0 to 100%]", {0xFF, 0x9F, 0x9F}, 0, 101, &live_of::gpo_duty[2], 1},
    {"GPO#4 Duty [0 to 100%]", {0x80, 0x80, 0x00}, 0, 101, &live_of::gpo_duty[3], 1},
    {"WB Feedback V", {0xFF, 0xFF, 0x00}, 0, 1000, &live_of::wb_feedback, 0},
    {"WB Pump Current", {0xFF, 0x00, 0x00}, 0, 5000, &live_of::wb_pump_current, 0},
    {"WB Pump DAC", {0xFF, 0xFF, 0xFF}, 0, 4096, &live_of::wb_pump_dac, 0},
    {"WB Heater Temp", {0x00, 0xFF, 0x00}, 0, 900, &live_of::wb_heater_temp, 0},
    {"WB Heater PW", {0x80, 0x80, 0xFF}, 0, 256, &live_of::wb_heater_pw, 0},
}};

constexpr std::array<std::string_view, channel_count> channel_captions() {
    std::array<std::string_view, channel_count> captions;
    for (std::size_t i = 0; i < channel_count; ++i) {
        captions[i] = chart_channels[i].caption;
    }
    return captions;
}

} // namespace ecu::logging
