#include "history/restore_points.h"

#include "messages/reply_decoders.h"

#include <algorithm>
#include <charconv>
#include <set>

namespace ecu::history {

std::string point_name(std::int64_t id) { return "@" + std::to_string(id); }

std::optional<std::int64_t> point_of_name(std::string_view name) {
    std::int64_t id = 0;
    if (!name.starts_with('@')) {
        return std::nullopt;
    }
    const char* end = name.data() + name.size();
    const auto read = std::from_chars(name.data() + 1, end, id);
    return read.ec == std::errc() && read.ptr == end && id > 0 ? std::optional(id) : std::nullopt;
}

std::string firmware_text(const std::optional<std::int32_t>& word) {
    return word ? messages::revision_text(*word) : std::string();
}

Side side_of_file(const std::filesystem::path& path, const std::string& name) {
    Side side{.name = name, .values = {}, .identity = {}, .failure = {}};
    const calibration::FileText file = calibration::read_whole_file(path);
    side.failure = file.failure;
    side.values = calibration::values_of(file.text);
    if (side.failure.empty() && side.values.size() == 0) {
        side.failure = "it holds no values of a calibration";
    }
    return side;
}

Side side_of_point(HistoryFile& file, std::int64_t id) {
    Side side{.name = point_name(id), .values = {}, .identity = {}, .failure = {}};
    const auto point = file.point(id, side.failure);
    if (point) {
        side.values = calibration::values_of(point->setup);
    } else if (side.failure.empty()) {
        side.failure = "there is no such restore point in " + std::string(history_name);
    }
    return side;
}

Side side_of_copy(const ControllerCopy& copy) {
    return {.name = "controller", .values = copy.values, .identity = copy.identity, .failure = {}};
}

std::string keep(HistoryFile& file, const ControllerCopy& copy, std::string_view note, std::int64_t& id) {
    RestorePoint point{.time = copy.time,
                       .note = std::string(note),
                       .firmware = copy.identity.firmware,
                       .serial = copy.identity.serial,
                       .setup = copy.setup};
    std::string failure = file.add(point);
    id = point.id;
    return failure;
}

std::vector<ListedPoint> list_points(HistoryFile& file, std::string& failure) {
    std::vector<ListedPoint> list;
    std::optional<calibration::Snapshot> next;
    std::vector<RestorePoint> points = file.points(failure);
    std::ranges::reverse(points);
    for (RestorePoint& point : points) {
        calibration::Snapshot values = calibration::values_of(point.setup);
        ListedPoint listed{.point = std::move(point), .differs_from_next = {}};
        if (next) {
            const calibration::Comparison comparison = calibration::compare(values, *next);
            listed.differs_from_next = comparison.changed.size() + comparison.missing.size();
        }
        next = std::move(values);
        list.push_back(std::move(listed));
    }
    return list;
}

std::optional<calibration::FileKey> key_of(const JournalRow& row) {
    const calibration::Parameter* parameter = calibration::find_parameter(row.write.item);
    const calibration::Table* table = calibration::find_table(row.write.item);
    const int count = parameter != nullptr ? parameter->count : table != nullptr ? table->cells() : 0;
    if (row.write.element < 0 || row.write.element >= count) {
        return std::nullopt;
    }
    return calibration::FileKey{.parameter = parameter, .table = table, .index = row.write.element};
}

calibration::Snapshot before_all(const std::vector<JournalRow>& rows) {
    calibration::Snapshot values;
    std::set<std::pair<std::string, int>> seen;
    for (const JournalRow& row : rows) {
        const auto key = key_of(row);
        if (key && seen.emplace(row.write.item, row.write.element).second && row.write.old_raw) {
            values.put(*key, {.raw = *row.write.old_raw});
        }
    }
    return values;
}

} // namespace ecu::history
