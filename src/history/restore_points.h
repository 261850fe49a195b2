// Restore points: whole calibrations kept in the history file, with date, note and firmware. And the sides of a
// comparison: a setup file, a restore point, or what the controller holds.
#pragma once

#include "history/send_changes.h"

#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace ecu::history {

// "V1.02.00 of 5 March"-like texts stand with the windows; this is the point's own short name, "@3".
std::string point_name(std::int64_t id);
// The number behind "@"; nothing for what is no such name.
std::optional<std::int64_t> point_of_name(std::string_view name);

// "V1.02.00"; empty when it is not known.
std::string firmware_text(const std::optional<std::int32_t>& word);

// One whole calibration to compare or send, and where it came from.
struct Side {
    std::string name; // "tune1.set", "@3", "controller"
    calibration::Snapshot values;
    std::optional<link::ControllerIdentity> identity; // of the controller that was read just now
    std::string failure;                              // why there is none
};
Side side_of_file(const std::filesystem::path& path, const std::string& name);
Side side_of_point(HistoryFile& file, std::int64_t id);
Side side_of_copy(const ControllerCopy& copy);

// Keeps a copy; returns the failure, or sets the point's number.
std::string keep(HistoryFile& file, const ControllerCopy& copy, std::string_view note, std::int64_t& id);

// How many values of a point differ from the one behind it in the list.
struct ListedPoint {
    RestorePoint point;
    std::optional<std::size_t> differs_from_next; // nothing for the newest
};
std::vector<ListedPoint> list_points(HistoryFile& file, std::string& failure); // the newest first

// Each item of these rows, the oldest first, as it was before the first of them; not where that was not known.
calibration::Snapshot before_all(const std::vector<JournalRow>& rows);
// The row and element that a journal's row names; nothing for one of another version of the table.
std::optional<calibration::FileKey> key_of(const JournalRow& row);

} // namespace ecu::history
