// Looks through a setup file with no controller: every line parsed as an upload would, every value held against the
// ranges of the parameter table.
#pragma once

#include "calibration/scales.h"
#include "calibration/setup_file.h"

#include <string>
#include <string_view>
#include <vector>

namespace ecu::calibration {

struct Finding {
    int line = 0;
    std::string key;
    std::string text; // what is wrong and what an upload would make of it
};

struct CheckReport {
    std::vector<Finding> findings;  // in the order of the lines
    std::vector<std::string> notes; // of the whole file; no findings
    int lines = 0;
    int values = 0; // keys that the file holds, each counted once
};

CheckReport check(std::string_view text);

} // namespace ecu::calibration
