// A calibration as a value, from a setup file or from what the controller has told, to be compared and looked through.
// A file is taken as what its lines print, not as a script. That differs from what an upload would send in one place:
// the value of a BO_P line is taken from behind its second "=".
#pragma once

#include "calibration/calibration_image.h"
#include "calibration/scales.h"
#include "calibration/setup_file.h"

#include <map>
#include <optional>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

namespace ecu::calibration {

struct Value {
    std::int32_t raw = 0;
    int line = 0; // from 1
};

struct UnknownKey {
    int line = 0;
    std::string text; // "ABCD[003]"

    bool operator==(const UnknownKey& other) const { return text == other.text; }
};

// A line that an upload would stop at.
struct UnreadableLine {
    int line = 0;
    std::string key;  // "MAPM[007]", or what stands at its place
    std::string text; // "256: the value is above 255, ...": what is wrong
};

class Snapshot {
public:
    // Every element of every row, in the order of a setup file.
    static const std::vector<FileKey>& all_keys();

    // A key that stands twice has the value of the later line, as an upload has it.
    void put(const FileKey& key, Value value);
    std::optional<Value> find(const FileKey& key) const;
    std::size_t size() const { return values_.size(); }
    // Spans by the calibration's own sensor, engine speed and boost mode, as far as it holds them.
    const Scales& scales() const { return scales_; }

    std::vector<UnknownKey> unknown;
    std::vector<UnreadableLine> unreadable;
    std::vector<UnreadableLine> odd; // read, but the value is no number: an upload would send 0 or a part of it

private:
    std::map<std::pair<const void*, int>, Value> values_;
    Scales scales_;
};

// "row 15, column 2" of a map's cell, "cell 3" of one of the tables of nine, empty for anything else.
std::string place_text(const FileKey& key);
// The engineering value through the item's mask; empty for a switch, which has none.
std::string shown_text(const FileKey& key, std::int32_t raw, const Scales& scales);

// The number that the line prints, for a line of a known key.
std::int32_t printed_value(std::string_view line, const LineMessage& known);

Snapshot values_of(std::string_view text);
// What the replies have brought so far; what none has brought is not in it.
Snapshot values_of(const CalibrationImage& image);
// What is wrong with a line that an upload would stop at.
std::string stop_text(const LineStop& stop);

} // namespace ecu::calibration
