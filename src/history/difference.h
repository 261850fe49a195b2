// The differences of two calibrations as a tuner reads them: grouped as the windows group them, in units, with the
// difference and its per cent, and the raw numbers beside them. What only one side has is among them. Pure.
#pragma once

#include "calibration/compare.h"

#include <optional>
#include <string>
#include <vector>

namespace ecu::history {

struct Difference {
    calibration::FileKey key;
    std::optional<std::int32_t> a_raw; // nothing: this side has none
    std::optional<std::int32_t> b_raw;
    std::string group; // "Basic Map", "Idle Control"
    std::string item;  // "Fuel Map", "Filter Rate"
    std::string place; // "row 3, column 2", "number 4"; empty for what stands alone
    std::string unit;
    std::string a, b;           // in units
    std::string change;         // "+0.25"; empty where it makes no number
    std::optional<double> rate; // b against a in per cent; nothing where a is 0 or a side is missing

    bool one_sided() const { return !a_raw || !b_raw; }
};

// The windows' name for where an item stands, and for itself.
std::string group_of(const calibration::FileKey& key);
std::string item_of(const calibration::FileKey& key);
// Within the item, for people.
std::string place_of(const calibration::FileKey& key);
std::string unit_of(const calibration::FileKey& key);
// In units, a switch as "on", "off" or its number.
std::string value_text(const calibration::FileKey& key, std::int32_t raw, const calibration::Scales& scales);

// `units` gives the unit of the mixture; all else is scaled by each side's own spans.
Difference difference(const calibration::FileKey& key, std::optional<std::int32_t> a, std::optional<std::int32_t> b,
                      const calibration::Scales& a_scales, const calibration::Scales& b_scales);
// Groups together, in the windows' order; within a group the order of a setup file.
std::vector<Difference> differences(const calibration::Comparison& comparison, const calibration::Snapshot& a,
                                    const calibration::Snapshot& b, const calibration::Scales& units);

// "+3.0 %"; empty without one.
std::string rate_text(const std::optional<double>& rate);

struct DifferenceFilter {
    std::string group; // empty: all
    std::string text;  // in item, key, place or group, whatever the case
    double rate = 0;   // at least so many per cent; what has no rate passes
    bool passes(const Difference& difference) const;
};

// The counts that a comparison ends with: "12 differ, 3 only in a.set, 1 unknown". "The same" only if nothing is
// missing.
std::string summary(const calibration::Comparison& comparison, const std::string& name_a, const std::string& name_b);

// What no row knows or no upload would send, of either side; never left out.
struct OddLine {
    std::string side;
    std::string text; // "line 20: unknown key ABCD"
};
struct ReportNames;
std::vector<OddLine> odd_lines(const calibration::Comparison& comparison, const ReportNames& names);

// A report for the clipboard, for a spreadsheet, and as a page that a browser prints.
struct ReportNames {
    std::string a;
    std::string b;
};
std::string as_text(const std::vector<Difference>& list, const calibration::Comparison& comparison,
                    const ReportNames& names, bool raw);
std::string as_csv(const std::vector<Difference>& list, const calibration::Comparison& comparison,
                   const ReportNames& names);
std::string as_page(const std::vector<Difference>& list, const calibration::Comparison& comparison,
                    const ReportNames& names, std::string_view date);

} // namespace ecu::history
