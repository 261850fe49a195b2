// How the command line shows who the controller is and what it reports.
#pragma once

#include "messages/live_data.h"

#include <cstdint>
#include <string>

namespace ecu::cli {

struct Info {
    std::string controller; // "the controller on port 1 (/dev/ttyUSB0)"
    std::string firmware;   // "V1.02.00"
    std::int32_t firmware_word = 0;
    std::uint32_t serial_number = 0;
    std::uint16_t capabilities = 0;
};
std::string info_as_text(const Info& info);
std::string info_as_json(const Info& info);

// Columns of some values that say how the engine runs; the JSON object has all values of the record.
std::string monitor_heading();
std::string monitor_as_text(const messages::EcuLiveData& live, const std::string& time);
std::string monitor_as_json(const messages::EcuLiveData& live, const std::string& time);

} // namespace ecu::cli
