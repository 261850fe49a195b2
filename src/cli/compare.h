// What differs between two calibrations: changed, missing and unknown keys, counted apart.
#pragma once

#include "cli/calibration_values.h"

#include <string>

namespace ecu::cli {

enum class Side : std::uint8_t { a, b };

struct ChangedValue {
    calibration::FileKey key;
    std::int32_t a = 0;
    std::int32_t b = 0;
};
struct MissingValue {
    calibration::FileKey key;
    Side missing_in = Side::a;
};
struct UnknownValue {
    UnknownKey key;
    Side in = Side::a;
};

struct UnreadableValue {
    UnreadableLine line;
    Side in = Side::a;
};

struct Comparison {
    std::vector<ChangedValue> changed;
    std::vector<MissingValue> missing;
    std::vector<UnknownValue> unknown;       // of either side; what both have is no difference
    std::vector<UnreadableValue> unreadable; // lines that an upload would stop at; always a difference
    bool same = true;
};

Comparison compare(const CalibrationValues& a, const CalibrationValues& b);

// One line a difference, then the counts. `name_a` and `name_b` as the user gave them.
std::string as_text(const Comparison& comparison, const CalibrationValues& a, const CalibrationValues& b,
                    const std::string& name_a, const std::string& name_b);
std::string as_json(const Comparison& comparison, const CalibrationValues& a, const CalibrationValues& b);

} // namespace ecu::cli
