// The live values as a table: what each is called, its unit, the mask it is read by, and how it is taken from the
// record. The command line, the log and the chart walk these rows or name one by its key; where a file or a screen has
// a format of its own, that format stands with it and the value still comes from here.
#pragma once

#include "messages/live_data.h"
#include "platform/display_mask.h"

#include <span>
#include <string>
#include <string_view>

namespace ecu::messages {

struct LiveField {
    std::string_view key; // as programs read it: "coolant_temp", and "gpo_duty(2)" for the third of an array
    std::string_view label;
    std::string_view unit; // empty for a ratio, a count or a state
    std::string_view mask;
    float (*value)(const EcuLiveData& live);

    std::string text(const EcuLiveData& live) const { return platform::masked(value(live), mask); }
};

namespace live {

using Live = const EcuLiveData&;

constexpr LiveField field(std::string_view key, std::string_view label, std::string_view unit, std::string_view mask,
                          float (*value)(Live)) {
    return {key, label, unit, mask, value};
}
// A plain member of the record.
template <auto Member>
constexpr LiveField of(std::string_view key, std::string_view label, std::string_view unit, std::string_view mask) {
    return {key, label, unit, mask, [](Live d) { return static_cast<float>(d.*Member); }};
}
template <auto Member, std::size_t I>
constexpr LiveField element(std::string_view key, std::string_view label, std::string_view unit,
                            std::string_view mask) {
    return {key, label, unit, mask, [](Live d) { return static_cast<float>((d.*Member)[I]); }};
}

using D = EcuLiveData;

inline constexpr LiveField engine_rpm = of<&D::engine_rpm_raw>("engine_rpm", "Engine speed", "rpm", "####0");
inline constexpr LiveField filtered_rpm =
    of<&D::engine_rpm>("filtered_rpm", "Engine speed, smoothed for the eye", "rpm", "####0");
inline constexpr LiveField lambda = of<&D::lambda>("lambda", "Mixture", "lambda", "0.000");
inline constexpr LiveField oxygen_percent = of<&D::oxygen_percent>("oxygen_percent", "Oxygen", "%O2", "#0.0");
inline constexpr LiveField ego_lambda_setpoint =
    of<&D::ego_lambda_setpoint>("ego_lambda_setpoint", "Mixture set point", "lambda", "0.000");
inline constexpr LiveField coolant_temp = of<&D::coolant_temp>("coolant_temp", "Coolant", "°C", "##0");
inline constexpr LiveField air_temp = of<&D::air_temp>("air_temp", "Intake air", "°C", "##0");
inline constexpr LiveField throttle_percent =
    of<&D::throttle_raw_percent>("throttle_percent", "Throttle, as calibrated", "%", "##0.0");
inline constexpr LiveField held_throttle =
    of<&D::throttle_percent>("held_throttle", "Throttle, held to 0 to 100", "%", "##0.0");
inline constexpr LiveField tps_pcnt = of<&D::tps_pcnt>("tps_pcnt", "Throttle on the map's axis", "%", "0.00");
inline constexpr LiveField manifold_kpa = of<&D::manifold_kpa>("manifold_kpa", "Manifold pressure", "kPa", "##0.0");
inline constexpr LiveField baro_kpa = of<&D::baro_kpa>("baro_kpa", "Barometric pressure", "kPa", "##0.0");
inline constexpr LiveField injector_pw =
    field("injector_pw_ms", "Injection time", "ms", "#0.000", [](Live d) { return d.injector_pw * 1000.0F; });
inline constexpr LiveField ego_correction =
    of<&D::ego_correction>("ego_correction", "Closed loop correction", "", "0.000");
inline constexpr LiveField map_enrichment = of<&D::map_enrichment>("map_enrichment", "Map gain", "", "0.000");
inline constexpr LiveField accel_enrichment =
    of<&D::accel_enrichment>("accel_enrichment_ms", "Acceleration enrichment", "ms", "#0.000");
inline constexpr LiveField clt_enrichment = of<&D::clt_enrichment>("clt_enrichment", "Warm-up gain", "", "0.000");
inline constexpr LiveField ignition_timing =
    of<&D::ignition_timing>("ignition_timing", "Ignition before top dead centre", "°", "##0.00");
inline constexpr LiveField battery_volts = of<&D::battery_volts>("battery_volts", "Battery", "V", "#0.00");
inline constexpr LiveField speed_MPH = of<&D::speed_MPH>("speed_MPH", "Road speed", "mph", "##0.00");
inline constexpr LiveField gear_number = of<&D::gear_number>("gear_number", "Gear", "", "#0");
inline constexpr LiveField err_flgs = of<&D::err_flgs>("err_flgs", "Trigger errors", "", "##0");
inline constexpr LiveField wheel_idx_num = of<&D::wheel_idx_num>("wheel_idx_num", "Wheel tooth", "", "##0");
inline constexpr LiveField cam_idx_num = of<&D::cam_idx_num>("cam_idx_num", "Cam tooth", "", "##0");
inline constexpr LiveField num_trigs = of<&D::num_trigs>("num_trigs", "Wheel triggers", "", "####0");
inline constexpr LiveField num_cams = of<&D::num_cams>("num_cams", "Cam triggers", "", "####0");
inline constexpr LiveField map_num = of<&D::map_num>("map_num", "Map in use", "", "0");
inline constexpr LiveField cpu_secs =
    of<&D::cpu_secs>("cpu_secs", "Seconds since the controller's start", "s", "####0");
inline constexpr LiveField inj_duty = element<&D::inj_duty, 0>("inj_duty(0)", "Injector 1 duty", "%", "##0");
inline constexpr LiveField ign_duty = element<&D::ign_duty, 0>("ign_duty(0)", "Ignition 1 duty", "%", "##0");
inline constexpr std::array<LiveField, 4> gpo_duty{
    element<&D::gpo_duty, 0>("gpo_duty(0)", "Output 1 duty", "%", "##0.0"),
    element<&D::gpo_duty, 1>("gpo_duty(1)", "Output 2 duty", "%", "##0.0"),
    element<&D::gpo_duty, 2>("gpo_duty(2)", "Output 3 duty", "%", "##0.0"),
    element<&D::gpo_duty, 3>("gpo_duty(3)", "Output 4 duty", "%", "##0.0")};
inline constexpr LiveField wb_feedback = of<&D::wb_feedback>("wb_feedback", "Wideband feedback", "", "####0");
inline constexpr LiveField wb_pump_current =
    of<&D::wb_pump_current>("wb_pump_current", "Wideband pump current", "", "####0");
inline constexpr LiveField wb_pump_dac = of<&D::wb_pump_dac>("wb_pump_dac", "Wideband pump output", "", "####0");
inline constexpr LiveField wb_heater_pw = of<&D::wb_heater_pw>("wb_heater_pw", "Wideband heater duty", "", "####0");
inline constexpr LiveField wb_heater_temp =
    of<&D::wb_heater_temp>("wb_heater_temp", "Wideband heater temperature", "", "0");
inline constexpr LiveField egt = of<&D::egt>("egt", "Exhaust gas", "°C", "###0.0");
inline constexpr LiveField aux_volts = of<&D::aux_volts>("aux_volts", "Auxiliary input", "V", "0.000");
inline constexpr LiveField map_cell = of<&D::map_cell>("map_cell", "Pressure cell", "", "#0");
inline constexpr LiveField rpm_cell = of<&D::rpm_cell>("rpm_cell", "Speed cell", "", "#0");
inline constexpr LiveField tps_cell = of<&D::tps_cell>("tps_cell", "Throttle cell", "", "#0");
// How far into its cell, 0 to 1.
inline constexpr LiveField map_rem =
    field("map_rem", "Within the pressure cell", "", "0.00", [](Live d) { return d.map_rem / 128.0F; });
inline constexpr LiveField rpm_rem =
    field("rpm_rem", "Within the speed cell", "", "0.00", [](Live d) { return d.rpm_rem / 128.0F; });
inline constexpr LiveField tps_rem =
    field("tps_rem", "Within the throttle cell", "", "0.00", [](Live d) { return d.tps_rem / 128.0F; });

} // namespace live

// Every single value in the order in which programs are given them; the values of the eight channels and the four
// outputs travel as arrays beside them.
inline constexpr std::array live_fields{
    live::engine_rpm,
    live::of<&EcuLiveData::status_flags>("status_flags", "Sensor status", "", "####0"),
    live::ego_lambda_setpoint,
    live::lambda,
    live::oxygen_percent,
    live::injector_pw,
    live::coolant_temp,
    live::air_temp,
    live::battery_volts,
    live::ego_correction,
    live::map_enrichment,
    live::accel_enrichment,
    live::clt_enrichment,
    live::baro_kpa,
    live::manifold_kpa,
    live::ignition_timing,
    live::of<&EcuLiveData::input_flags>("input_flags", "Inputs", "", "##0"),
    live::tps_pcnt,
    live::throttle_percent,
    live::of<&EcuLiveData::map_position>("map_position", "Place on the pressure axis", "", "0.000"),
    live::of<&EcuLiveData::rpm_position>("rpm_position", "Place on the speed axis", "", "0.000"),
    live::of<&EcuLiveData::tps_position>("tps_position", "Place on the throttle axis", "", "0.000"),
    live::wb_feedback,
    live::wb_pump_current,
    live::wb_pump_dac,
    live::wb_heater_pw,
    live::wb_heater_temp,
    live::egt,
    live::map_num,
    live::num_trigs,
    live::num_cams,
    live::wheel_idx_num,
    live::cam_idx_num,
    live::cpu_secs,
    live::err_flgs,
    live::speed_MPH,
    live::of<&EcuLiveData::rpm_mph_ratio>("rpm_mph_ratio", "Engine speed over road speed", "rpm/mph", "####0.00"),
    live::gear_number,
    live::aux_volts,
    live::of<&EcuLiveData::aux_egt>("aux_egt", "Auxiliary input as temperature", "°C", "##0.0"),
    live::of<&EcuLiveData::iac_state>("iac_state", "Idle valve state", "", "0"),
    live::of<&EcuLiveData::iac_error>("iac_error", "Idle valve error", "", "0"),
    live::of<&EcuLiveData::iac_position>("iac_position", "Idle valve position", "", "###0"),
    live::of<&EcuLiveData::iac_rpm_setpoint>("iac_rpm_setpoint", "Idle set point", "rpm", "###0"),
    live::of<&EcuLiveData::can_rx_frames>("can_rx_frames", "CAN frames received", "", "####0"),
};

} // namespace ecu::messages
