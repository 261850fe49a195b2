#include "logging/log_row.h"

#include "platform/display_mask.h"

#include <array>
#include <cstdint>
#include <cstdio>

namespace ecu::logging {

namespace {

using messages::EcuLiveData;
using platform::masked;

struct Moment {
    std::string_view time;
    float seconds;
};

struct Column {
    std::string_view title;
    std::string (*text)(const EcuLiveData& live, const Moment& moment);
};

std::string remainder(std::uint8_t of_a_cell) { return masked(static_cast<float>(of_a_cell) / 128.0F, "0.00"); }

std::string hexadecimal(std::int32_t value) {
    std::array<char, 9> text{};
    std::snprintf(text.data(), text.size(), "%X", static_cast<unsigned>(value));
    return text.data();
}

using Live = const EcuLiveData&;
using Now = const Moment&;

constexpr std::array<Column, 37> columns{{
    {"Time", [](Live, Now now) { return std::string(now.time); }},
    {"CPU_T", [](Live, Now now) { return masked(now.seconds, "####0.00"); }},
    {"RPM", [](Live d, Now) { return masked(d.engine_rpm_raw, "####0"); }},
    {"A/F", [](Live d, Now) { return masked(d.lambda, "0.00"); }},
    {"CLT", [](Live d, Now) { return masked(d.coolant_temp, "##0"); }},
    {"TPS", [](Live d, Now) { return masked(d.throttle_raw_percent, "##0.0"); }},
    {"MAP", [](Live d, Now) { return masked(d.manifold_kpa, "##0.0"); }},
    {"MAT", [](Live d, Now) { return masked(d.air_temp, "##0"); }},
    {"PW", [](Live d, Now) { return masked(d.injector_pw * 1000.0F, "#0.000"); }},
    {"CORR", [](Live d, Now) { return masked(d.ego_correction, "0.000"); }},
    {"IGN\xB0", [](Live d, Now) { return masked(d.ignition_timing, "#0.00"); }},
    {"INJ%", [](Live d, Now) { return masked(d.inj_duty[0], "##0.0"); }},
    {"IGN%", [](Live d, Now) { return masked(d.ign_duty[0], "##0.0"); }},
    {"WDBG", [](Live d, Now) { return masked(d.wheel_idx_num, "##0"); }},
    {"GPO1%", [](Live d, Now) { return masked(d.gpo_duty[0], "##0.0"); }},
    {"GPO2%", [](Live d, Now) { return masked(d.gpo_duty[1], "##0.0"); }},
    {"GPO3%", [](Live d, Now) { return masked(d.gpo_duty[2], "##0.0"); }},
    {"GPO4%", [](Live d, Now) { return masked(d.gpo_duty[3], "##0.0"); }},
    {"MAP#", [](Live d, Now) { return masked(d.map_num, "0"); }},
    {"WTRG", [](Live d, Now) { return masked(d.num_trigs, "####0"); }},
    {"CTRG", [](Live d, Now) { return masked(d.num_cams, "####0"); }},
    {"CDBG", [](Live d, Now) { return masked(d.cam_idx_num, "##0"); }},
    {"SECS", [](Live d, Now) { return masked(d.cpu_secs, "####0"); }},
    {"EFLGS", [](Live d, Now) { return masked(d.err_flgs, "##0"); }},
    {"EGO_SP", [](Live d, Now) { return masked(d.ego_lambda_setpoint, "0.00"); }},
    {"SPEED", [](Live d, Now) { return masked(d.speed_MPH, "##0.00"); }},
    {"GEAR", [](Live d, Now) { return masked(d.gear_number, "0"); }},
    {"MAP_C", [](Live d, Now) { return masked(d.map_cell, "#0"); }},
    {"MAP_R", [](Live d, Now) { return remainder(d.map_rem); }},
    {"RPM_C", [](Live d, Now) { return masked(d.rpm_cell, "#0"); }},
    {"RPM_R", [](Live d, Now) { return remainder(d.rpm_rem); }},
    {"TPS_C", [](Live d, Now) { return masked(d.tps_cell, "#0"); }},
    {"TPS_R", [](Live d, Now) { return remainder(d.tps_rem); }},
    {"TPS_PCNT", [](Live d, Now) { return masked(d.tps_pcnt, "0.00"); }},
    {"O2_ERRS", [](Live d, Now) { return hexadecimal(d.status_flags); }},
    {"WB_TEMP", [](Live d, Now) { return masked(d.wb_heater_temp, "0"); }},
    {"EGT", [](Live d, Now) { return masked(d.egt, "###0.0"); }},
}};

constexpr std::string_view line_end = "\r\n";

} // namespace

std::string log_header(std::string_view date, std::string_view time) {
    std::string text;
    for (const Column& column : columns) {
        text.append(&column == &columns.front() ? "" : ",").append(column.title);
    }
    text.append(line_end).append("Log Begins on ").append(date).append(" ").append(time).append(line_end);
    return text.append("LOG_FILE V1.00.02").append(line_end).append(line_end);
}

std::string log_row(const EcuLiveData& live, std::string_view time, float seconds) {
    const Moment now{time, seconds};
    std::string text;
    text.reserve(256);
    for (const Column& column : columns) {
        text.append(&column == &columns.front() ? "" : ",").append(column.text(live, now));
    }
    return text.append(line_end);
}

} // namespace ecu::logging
