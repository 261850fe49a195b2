// The text of a log, LOG_FILE V1.00.02: four header lines, then a row a sample, every line ended by CR LF. The text is
// single-byte: the degree sign is the one byte B0. What each column holds is described in docs/formats/log.md.
#pragma once

#include "messages/live_data.h"

#include <string>
#include <string_view>

namespace ecu::logging {

// `date` as mm-dd-yyyy, `time` as hh:mm:ss. The column line, the moment, the version, an empty line.
std::string log_header(std::string_view date, std::string_view time);

// One row with its line end. `time` as hh:mm:ss, `seconds` since midnight, both read when the row began.
std::string log_row(const messages::EcuLiveData& live, std::string_view time, float seconds);

} // namespace ecu::logging
