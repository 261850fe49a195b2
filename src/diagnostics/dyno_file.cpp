#include "diagnostics/dyno_file.h"

#include "messages/live_fields.h"
#include "platform/leading_number.h"

#include <algorithm>
#include <array>
#include <fstream>

namespace ecu::diagnostics {

namespace {

struct Column {
    std::string_view title;
    const messages::LiveField* field; // none for the run's clock
    std::string_view mask;
};

namespace live_of = messages::live;

constexpr std::array<Column, 17> columns{{
    {"Time", nullptr, "###0.000"},
    {"MAP", &live_of::manifold_kpa, "##0.0"},
    {"RPM", &live_of::engine_rpm, "###0.00"},
    {"Lambda", &live_of::lambda, "0.00"},
    {"TPS", &live_of::throttle_percent, "##0.0"},
    {"CLT", &live_of::coolant_temp, "###0"},
    {"MAT", &live_of::air_temp, "###0"},
    {"PW", &live_of::injector_pw, "#0.000"},
    {"MAP_Cell", &live_of::map_cell, "#0"},
    {"MAP_Rem", &live_of::map_rem, "0.##"},
    {"RPM_Cell", &live_of::rpm_cell, "#0"},
    {"RPM_Rem", &live_of::rpm_rem, "0.##"},
    {"TPS_Cell", &live_of::tps_cell, "#0"},
    {"TPS_Rem", &live_of::tps_rem, "0.##"},
    {"LambdaSP", &live_of::ego_lambda_setpoint, "0.00"},
    {"MPH", &live_of::speed_MPH, "##0.0"},
    {"Gear", &live_of::gear_number, ""},
}};
constexpr std::size_t time_at = 0;
constexpr std::size_t rpm_at = 2;
static_assert(columns[rpm_at].title == "RPM");
constexpr int header_lines = 4;
constexpr std::string_view line_end = "\r\n";

std::optional<float> number(std::string_view text) {
    return platform::is_number(text) ? std::optional(static_cast<float>(platform::leading_number(text))) : std::nullopt;
}

std::optional<DynoSample> sample_of(std::string_view line) {
    std::array<std::string_view, columns.size()> fields;
    std::size_t count = 0;
    for (;; ++count) {
        const std::size_t comma = line.find(',');
        if (count < fields.size()) {
            fields[count] = line.substr(0, comma);
        }
        if (comma == std::string_view::npos) {
            break;
        }
        line.remove_prefix(comma + 1);
    }
    const std::optional<float> seconds = number(fields[time_at]);
    const std::optional<float> rpm = number(fields[rpm_at]);
    if (count + 1 != fields.size() || !seconds || !rpm) {
        return std::nullopt;
    }
    return DynoSample{*seconds, *rpm};
}

} // namespace

std::string dyno_header(std::string_view date, std::string_view time) {
    std::string text;
    for (const Column& column : columns) {
        text.append(&column == &columns.front() ? "" : ",").append(column.title);
    }
    text.append(line_end).append("Log Begins on ").append(date).append(" ").append(time).append(line_end);
    return text.append("DYNOFILE V1.00.00").append(line_end).append(line_end);
}

std::string dyno_row(const messages::EcuLiveData& live, double milliseconds) {
    std::string text;
    text.reserve(128);
    for (const Column& column : columns) {
        text.append(&column == &columns.front() ? "" : ",");
        text.append(column.field == nullptr ? platform::masked(milliseconds * 0.001, column.mask)
                                            : platform::masked(column.field->value(live), column.mask));
    }
    return text.append(line_end);
}

std::optional<std::vector<DynoSample>> read_dyno_file(const std::filesystem::path& path) {
    std::ifstream file(path, std::ios::binary);
    if (!file.is_open()) {
        return std::nullopt;
    }
    std::vector<DynoSample> samples;
    std::string line;
    for (int number = 0; std::getline(file, line); ++number) {
        if (number >= header_lines) {
            if (line.ends_with('\r')) {
                line.pop_back();
            }
            if (const std::optional<DynoSample> sample = sample_of(line)) {
                samples.push_back(*sample);
            }
        }
    }
    return samples;
}

} // namespace ecu::diagnostics
