// What differs between two calibrations: changed, missing and unknown keys, counted apart.
#pragma once

#include "calibration/snapshot.h"

#include <string>

namespace ecu::calibration {

enum class Side : std::uint8_t { a, b };

struct ChangedValue {
    FileKey key;
    std::int32_t a = 0;
    std::int32_t b = 0;
};
struct MissingValue {
    FileKey key;
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

Comparison compare(const Snapshot& a, const Snapshot& b);

} // namespace ecu::calibration
