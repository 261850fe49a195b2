#include "logging/log_row.h"

#include "messages/live_fields.h"

#include <array>
#include <cstdint>
#include <cstdio>

namespace ecu::logging {

namespace {

using messages::EcuLiveData;
using platform::masked;

// A live value by this file's mask; the three without one are formed by hand.
struct Column {
    std::string_view title;
    const messages::LiveField* field = nullptr;
    std::string_view mask = {};
};

std::string hexadecimal(std::int32_t value) {
    std::array<char, 9> text{};
    std::snprintf(text.data(), text.size(), "%X", static_cast<unsigned>(value));
    return text.data();
}

namespace live_of = messages::live;

constexpr std::array<Column, 37> columns{{
    {"Time"},
    {"CPU_T"},
    {"RPM", &live_of::engine_rpm, "####0"},
    {"A/F", &live_of::lambda, "0.00"},
    {"CLT", &live_of::coolant_temp, "##0"},
    {"TPS", &live_of::throttle_percent, "##0.0"},
    {"MAP", &live_of::manifold_kpa, "##0.0"},
    {"MAT", &live_of::air_temp, "##0"},
    {"PW", &live_of::injector_pw, "#0.000"},
    {"CORR", &live_of::ego_correction, "0.000"},
    {"IGN\xB0", &live_of::ignition_timing, "#0.00"},
    {"INJ%", &live_of::inj_duty, "##0.0"},
    {"IGN%", &live_of::ign_duty, "##0.0"},
    {"WDBG", &live_of::wheel_idx_num, "##0"},
    {"GPO1%", &live_of::gpo_duty[0], "##0.0"},
    {"GPO2%", &live_of::gpo_duty[1], "##0.0"},
    {"GPO3%", &live_of::gpo_duty[2], "##0.0"},
    {"GPO4%", &live_of::gpo_duty[3], "##0.0"},
    {"MAP#", &live_of::map_num, "0"},
    {"WTRG", &live_of::num_trigs, "####0"},
    {"CTRG", &live_of::num_cams, "####0"},
    {"CDBG", &live_of::cam_idx_num, "##0"},
    {"SECS", &live_of::cpu_secs, "####0"},
    {"EFLGS", &live_of::err_flgs, "##0"},
    {"EGO_SP", &live_of::ego_lambda_setpoint, "0.00"},
    {"SPEED", &live_of::speed_MPH, "##0.00"},
    {"GEAR", &live_of::gear_number, "0"},
    {"MAP_C", &live_of::map_cell, "#0"},
    {"MAP_R", &live_of::map_rem, "0.00"},
    {"RPM_C", &live_of::rpm_cell, "#0"},
    {"RPM_R", &live_of::rpm_rem, "0.00"},
    {"TPS_C", &live_of::tps_cell, "#0"},
    {"TPS_R", &live_of::tps_rem, "0.00"},
    {"TPS_PCNT", &live_of::tps_pcnt, "0.00"},
    {"O2_ERRS"},
    {"WB_TEMP", &live_of::wb_heater_temp, "0"},
    {"EGT", &live_of::egt, "###0.0"},
}};
constexpr const Column& time_column = columns[0];
constexpr const Column& seconds_column = columns[1];

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
    std::string text;
    text.reserve(256);
    for (const Column& column : columns) {
        text.append(&column == &columns.front() ? "" : ",");
        if (column.field != nullptr) {
            text.append(masked(column.field->value(live), column.mask));
        } else if (&column == &time_column) {
            text.append(time);
        } else if (&column == &seconds_column) {
            text.append(masked(seconds, "####0.00"));
        } else {
            text.append(hexadecimal(live.status_flags));
        }
    }
    return text.append(line_end);
}

} // namespace ecu::logging
