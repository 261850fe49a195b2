// The file of a dyno run, DYNOFILE V1.00.00: four header lines, then a row for each reply while the run goes on, every
// line ended by CR LF. docs/formats/dyno.md describes the columns.
#pragma once

#include "messages/live_data.h"

#include <filesystem>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace ecu::diagnostics {

// `date` as mm-dd-yyyy, `time` as hh:mm:ss.
std::string dyno_header(std::string_view date, std::string_view time);
// One row with its line end; `milliseconds` is the run's clock.
std::string dyno_row(const messages::EcuLiveData& live, double milliseconds);

struct DynoSample {
    float seconds = 0;
    float rpm = 0;
};
// Time and rpm of each row; nothing when there is no such file. A row that has not all its fields, or no numbers in
// these two, is left out.
std::optional<std::vector<DynoSample>> read_dyno_file(const std::filesystem::path& path);

} // namespace ecu::diagnostics
