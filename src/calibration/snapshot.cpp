#include "calibration/snapshot.h"

#include "calibration/calibration_image.h"
#include "calibration/encoding.h"
#include "platform/leading_number.h"
#include "platform/rounding.h"

#include <algorithm>

namespace ecu::calibration {

namespace {

std::pair<const void*, int> place_of(const FileKey& key) {
    const void* row = key.table != nullptr ? static_cast<const void*>(key.table) : key.parameter;
    return {row, key.index};
}

} // namespace

const std::vector<FileKey>& Snapshot::all_keys() {
    static const std::vector<FileKey> keys = [] {
        std::vector<FileKey> all;
        for (const FileItem& item : file_order) {
            const int count = item.table != nullptr ? item.table->cells() : item.parameter->count;
            for (int i = 0; i < count; ++i) {
                all.push_back({item.parameter, item.table, i});
            }
        }
        return all;
    }();
    return keys;
}

void Snapshot::put(const FileKey& key, Value value) {
    values_[place_of(key)] = value;
    if (key.parameter != nullptr) {
        CalibrationImage(scales_).store(*key.parameter, key.index, value.raw); // sets the spans
    }
}

std::optional<Value> Snapshot::find(const FileKey& key) const {
    const auto found = values_.find(place_of(key));
    return found == values_.end() ? std::nullopt : std::optional(found->second);
}

std::string place_text(const FileKey& key) {
    if (key.table == nullptr) {
        return {};
    }
    if (key.table->shape == TableShape::nine_boxes) {
        return "cell " + std::to_string(key.index + 1);
    }
    return "row " + std::to_string(map_row(*key.table, key.index)) + ", column " +
           std::to_string(map_col(*key.table, key.index));
}

std::string shown_text(const FileKey& key, std::int32_t raw, const Scales& scales) {
    if (key.table != nullptr) {
        return shown(*key.table, raw, scales);
    }
    return key.parameter->shows_text() ? shown(*key.parameter, raw, scales) : std::string();
}

std::int32_t printed_value(std::string_view line, const LineMessage& known) {
    if (known.key.parameter == nullptr || known.key.parameter->file != FileForm::vector_doubled) {
        return known.value;
    }
    const std::string_view text = line.substr(std::min(value_column, line.size()));
    const std::size_t sign = text.find_first_not_of(' ');
    if (sign == std::string_view::npos || text[sign] != '=') {
        return known.value;
    }
    return platform::round_to_even(platform::leading_number(text.substr(sign + 1)));
}

std::string stop_text(const LineStop& stop) { return (stop.value.empty() ? "" : stop.value + ": ") + stop.reason; }

Snapshot values_of(std::string_view text) {
    Snapshot values;
    int number = 0;
    for (const std::string& line : split_lines(text)) {
        ++number;
        const LineMeaning meaning = read_line(line);
        if (const auto* known = std::get_if<LineMessage>(&meaning)) {
            values.put(known->key, {printed_value(line, *known), number});
            if (!known->number) {
                values.odd.push_back(
                    {number, key_text(known->key),
                     "what stands there is no number; an upload would send " + std::to_string(known->value)});
            }
        } else if (const auto* unknown = std::get_if<UnknownLine>(&meaning)) {
            values.unknown.push_back({number, unknown->texts.front().substr(unknown_variable.size())});
        } else if (const auto* stop = std::get_if<LineStop>(&meaning)) {
            values.unreadable.push_back({number, stop->key, stop_text(*stop)});
        }
    }
    return values;
}

Snapshot values_of(const CalibrationImage& image) {
    Snapshot values;
    for (const FileKey& key : Snapshot::all_keys()) {
        if (key.table != nullptr) {
            const int address = key.table->base + key.index;
            if (image.cell_known(address)) {
                values.put(key, {.raw = image.cell(address)});
            }
        } else if (image.known(*key.parameter, key.index)) {
            values.put(key, {.raw = image.raw(*key.parameter, key.index)});
        }
    }
    return values;
}

} // namespace ecu::calibration
