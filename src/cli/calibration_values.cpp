#include "cli/calibration_values.h"

#include "calibration/calibration_image.h"
#include "calibration/encoding.h"
#include "cli/failure.h"
#include "platform/leading_number.h"
#include "platform/rounding.h"

#include <algorithm>

namespace ecu::cli {

namespace {

using calibration::FileKey;

std::pair<const void*, int> place_of(const FileKey& key) {
    const void* row = key.table != nullptr ? static_cast<const void*>(key.table) : key.parameter;
    return {row, key.index};
}

} // namespace

const std::vector<FileKey>& CalibrationValues::all_keys() {
    static const std::vector<FileKey> keys = [] {
        std::vector<FileKey> all;
        for (const calibration::FileItem& item : calibration::file_order) {
            const int count = item.table != nullptr ? item.table->cells() : item.parameter->count;
            for (int i = 0; i < count; ++i) {
                all.push_back({item.parameter, item.table, i});
            }
        }
        return all;
    }();
    return keys;
}

void CalibrationValues::put(const FileKey& key, Value value) {
    values_[place_of(key)] = value;
    if (key.parameter != nullptr) {
        calibration::CalibrationImage(scales_).store(*key.parameter, key.index, value.raw); // sets the spans
    }
}

std::optional<Value> CalibrationValues::find(const FileKey& key) const {
    const auto found = values_.find(place_of(key));
    return found == values_.end() ? std::nullopt : std::optional(found->second);
}

std::string place_text(const FileKey& key) {
    if (key.table == nullptr) {
        return {};
    }
    if (key.table->shape == calibration::TableShape::nine_boxes) {
        return "cell " + std::to_string(key.index + 1);
    }
    return "row " + std::to_string(calibration::map_row(*key.table, key.index)) + ", column " +
           std::to_string(calibration::map_col(*key.table, key.index));
}

std::string shown_text(const FileKey& key, std::int32_t raw, const calibration::Scales& scales) {
    if (key.table != nullptr) {
        return calibration::shown(*key.table, raw, scales);
    }
    return key.parameter->shows_text() ? calibration::shown(*key.parameter, raw, scales) : std::string();
}

std::int32_t printed_value(std::string_view line, const calibration::LineMessage& known) {
    if (known.key.parameter == nullptr || known.key.parameter->file != calibration::FileForm::vector_doubled) {
        return known.value;
    }
    const std::string_view text = line.substr(std::min(calibration::value_column, line.size()));
    const std::size_t sign = text.find_first_not_of(' ');
    if (sign == std::string_view::npos || text[sign] != '=') {
        return known.value;
    }
    return platform::round_to_even(platform::leading_number(text.substr(sign + 1)));
}

std::string stop_text(const calibration::LineStop& stop) {
    return (stop.value.empty() ? "" : stop.value + ": ") + stop.reason;
}

CalibrationValues values_of(std::string_view text) {
    CalibrationValues values;
    int number = 0;
    for (const std::string& line : calibration::split_lines(text)) {
        ++number;
        const calibration::LineMeaning meaning = calibration::read_line(line);
        if (const auto* known = std::get_if<calibration::LineMessage>(&meaning)) {
            values.put(known->key, {printed_value(line, *known), number});
            if (!known->number) {
                values.odd.push_back(
                    {number, calibration::key_text(known->key),
                     "what stands there is no number; an upload would send " + std::to_string(known->value)});
            }
        } else if (const auto* unknown = std::get_if<calibration::UnknownLine>(&meaning)) {
            values.unknown.push_back({number, unknown->texts.front().substr(calibration::unknown_variable.size())});
        } else if (const auto* stop = std::get_if<calibration::LineStop>(&meaning)) {
            values.unreadable.push_back({number, stop->key, stop_text(*stop)});
        }
    }
    return values;
}

std::string text_of_file(const std::string& name) {
    calibration::FileText file = calibration::read_whole_file(name);
    if (!file.failure.empty()) {
        throw Failure(Status::file, name + " cannot be read: " + file.failure + ". Name another file");
    }
    return std::move(file.text);
}

} // namespace ecu::cli
