#include "cli/live_sample.h"

#include "cli/json.h"
#include "platform/display_mask.h"

#include <QJsonArray>

#include <array>
#include <functional>
#include <string_view>

namespace ecu::cli {

namespace {

using messages::EcuLiveData;
using platform::masked;

struct Column {
    std::string_view heading;
    int width;
    std::string (*text)(const EcuLiveData&);
};

std::string mixture(const EcuLiveData& live) {
    if (live.sensor_fault()) {
        return "ERR";
    }
    return live.sensor_reads_lambda() ? masked(live.lambda, "0.000") : masked(live.oxygen_percent, "#0.0") + "%O2";
}

constexpr std::array<Column, 13> columns{{
    {"RPM", 6, [](const EcuLiveData& live) { return masked(live.engine_rpm_raw, "####0"); }},
    {"LAMBDA", 8, mixture},
    {"CLT", 5, [](const EcuLiveData& live) { return masked(live.coolant_temp, "##0"); }},
    {"TPS%", 7, [](const EcuLiveData& live) { return masked(live.throttle_raw_percent, "##0.0"); }},
    {"MAP", 7, [](const EcuLiveData& live) { return masked(live.manifold_kpa, "##0.0"); }},
    {"MAT", 5, [](const EcuLiveData& live) { return masked(live.air_temp, "##0"); }},
    {"PW", 8, [](const EcuLiveData& live) { return masked(live.injector_pw * 1000, "#0.000"); }},
    {"CORR", 7, [](const EcuLiveData& live) { return masked(live.ego_correction, "0.000"); }},
    {"IGN", 8, [](const EcuLiveData& live) { return masked(live.ignition_timing, "##0.00"); }},
    {"VOLTS", 7, [](const EcuLiveData& live) { return masked(live.battery_volts, "#0.00"); }},
    {"SPEED", 8, [](const EcuLiveData& live) { return masked(live.speed_MPH, "##0.00"); }},
    {"GEAR", 5, [](const EcuLiveData& live) { return masked(live.gear_number, "#0"); }},
    {"ERRS", 5, [](const EcuLiveData& live) { return masked(live.err_flgs, "##0"); }},
}};
constexpr std::size_t time_width = 8;

std::string right(std::string_view text, int width) {
    const auto room = static_cast<std::size_t>(width);
    return std::string(text.size() < room ? room - text.size() : 1, ' ') + std::string(text);
}

template <typename Range> QJsonArray array_of(const Range& values, std::size_t count) {
    QJsonArray array;
    for (std::size_t i = 0; i < count; ++i) {
        if constexpr (std::is_floating_point_v<typename Range::value_type>) {
            array.append(json_number(values[i]));
        } else {
            array.append(static_cast<int>(values[i]));
        }
    }
    return array;
}

constexpr std::size_t channels = 8; // of the sixteen that the record has room for

} // namespace

std::string info_as_text(const Info& info) {
    const unsigned word = info.capabilities;
    const auto yes_no = [word](unsigned bit) { return (word & bit) != 0 ? "yes\n" : "no\n"; };
    std::string outputs;
    for (const auto& [bit, name] : {std::pair{1U << 11, "1"}, {1U << 12, " 2"}, {1U << 13, " 3 4"}}) {
        outputs += (word & bit) != 0 ? name : "";
    }
    return "controller        " + info.controller + "\nfirmware          " + info.firmware + "\nserial number     " +
           std::to_string(info.serial_number) + "\ninjector drivers  " + std::to_string(word & 15U) +
           "\nignition drivers  " + std::to_string(word >> 4 & 15U) + "\nidle control      " + yes_no(1U << 8) +
           "fuel control      " + yes_no(1U << 9) + "ignition control  " + yes_no(1U << 10) + "output drivers    " +
           outputs + "\n";
}

std::string info_as_json(const Info& info) {
    const int word = info.capabilities;
    return json_line({{"controller", json_text(info.controller)},
                      {"firmware", json_text(info.firmware)},
                      {"firmware_word", info.firmware_word},
                      {"serial_number", static_cast<qint64>(info.serial_number)},
                      {"capabilities", word},
                      {"injector_drivers", word & 15},
                      {"ignition_drivers", word >> 4 & 15},
                      {"idle_control", (word & 1 << 8) != 0},
                      {"fuel_control", (word & 1 << 9) != 0},
                      {"ignition_control", (word & 1 << 10) != 0},
                      {"output_drivers", QJsonArray{(word & 1 << 11) != 0, (word & 1 << 12) != 0, (word & 1 << 13) != 0,
                                                    (word & 1 << 13) != 0}}});
}

std::string monitor_heading() {
    std::string text = "TIME" + std::string(time_width - 4, ' ');
    for (const Column& column : columns) {
        text += right(column.heading, column.width);
    }
    return text + "\n";
}

std::string monitor_as_text(const EcuLiveData& live, const std::string& time) {
    std::string text = time;
    for (const Column& column : columns) {
        text += right(column.text(live), column.width);
    }
    return text + "\n";
}

std::string monitor_as_json(const EcuLiveData& live, const std::string& time) {
    return json_line({
        {"time", json_text(time)},
        {"engine_rpm", live.engine_rpm_raw},
        {"status_flags", live.status_flags},
        {"sensor_fault", live.sensor_fault()},
        {"ego_lambda_setpoint", json_number(live.ego_lambda_setpoint)},
        {"lambda", live.sensor_reads_lambda() ? QJsonValue(json_number(live.lambda)) : QJsonValue()},
        {"oxygen_percent", live.sensor_reads_lambda() ? QJsonValue() : QJsonValue(json_number(live.oxygen_percent))},
        {"injector_pw_ms", json_number(live.injector_pw * 1000)},
        {"coolant_temp", json_number(live.coolant_temp)},
        {"air_temp", json_number(live.air_temp)},
        {"battery_volts", json_number(live.battery_volts)},
        {"ego_correction", json_number(live.ego_correction)},
        {"map_enrichment", json_number(live.map_enrichment)},
        {"accel_enrichment_ms", json_number(live.accel_enrichment)},
        {"clt_enrichment", json_number(live.clt_enrichment)},
        {"baro_kpa", json_number(live.baro_kpa)},
        {"manifold_kpa", json_number(live.manifold_kpa)},
        {"ignition_timing", json_number(live.ignition_timing)},
        {"input_flags", live.input_flags},
        {"tps_pcnt", json_number(live.tps_pcnt)},
        {"throttle_percent", json_number(live.throttle_raw_percent)},
        {"map_position", json_number(live.map_position)},
        {"rpm_position", json_number(live.rpm_position)},
        {"tps_position", json_number(live.tps_position)},
        {"wb_feedback", live.wb_feedback},
        {"wb_pump_current", live.wb_pump_current},
        {"wb_pump_dac", live.wb_pump_dac},
        {"wb_heater_pw", live.wb_heater_pw},
        {"wb_heater_temp", live.wb_heater_temp},
        {"egt", json_number(live.egt)},
        {"map_num", live.map_num},
        {"num_trigs", live.num_trigs},
        {"num_cams", live.num_cams},
        {"wheel_idx_num", live.wheel_idx_num},
        {"cam_idx_num", live.cam_idx_num},
        {"cpu_secs", live.cpu_secs},
        {"err_flgs", live.err_flgs},
        {"speed_MPH", json_number(live.speed_MPH)},
        {"rpm_mph_ratio", json_number(live.rpm_mph_ratio)},
        {"gear_number", live.gear_number},
        {"gpo_duty", array_of(live.gpo_duty, live.gpo_duty.size())},
        {"aux_volts", json_number(live.aux_volts)},
        {"aux_egt", json_number(live.aux_egt)},
        {"iac_state", live.iac_state},
        {"iac_error", live.iac_error},
        {"iac_position", live.iac_position},
        {"iac_rpm_setpoint", live.iac_rpm_setpoint},
        {"can_rx_frames", live.can_rx_frames},
        {"inj_pw_ms", array_of(live.inj_pw, channels)},
        {"ign_dwell_ms", array_of(live.ign_dwell, channels)},
        {"inj_duty", array_of(live.inj_duty, channels)},
        {"ign_duty", array_of(live.ign_duty, channels)},
    });
}

} // namespace ecu::cli
