#include "cli/compare.h"

#include "cli/json.h"

#include <QJsonArray>

#include <algorithm>
#include <set>

namespace ecu::cli {

namespace {

using calibration::FileKey;
using calibration::key_text;

std::string padded(std::string text, std::size_t width) {
    text.resize(std::max(text.size(), width), ' ');
    return text;
}

// "66 (.516)"
std::string value_text(const FileKey& key, std::int32_t raw, const CalibrationValues& values) {
    const std::string shown = shown_text(key, raw, values.scales());
    return std::to_string(raw) + (shown.empty() || shown == std::to_string(raw) ? "" : " (" + shown + ")");
}

QJsonObject key_object(const FileKey& key) {
    QJsonObject object{{"key", json_text(key.table != nullptr ? key.table->key : key.parameter->key)}};
    if (key.table != nullptr || key.parameter->is_vector()) {
        object["index"] = key.index;
    }
    if (key.table != nullptr && key.table->shape != calibration::TableShape::nine_boxes) {
        object["row"] = calibration::map_row(*key.table, key.index);
        object["column"] = calibration::map_col(*key.table, key.index);
    }
    return object;
}

QJsonObject value_object(const FileKey& key, std::int32_t raw, const CalibrationValues& values) {
    QJsonObject object{{"raw", raw}};
    if (const std::string shown = shown_text(key, raw, values.scales()); !shown.empty()) {
        object["shown"] = json_text(shown);
    }
    return object;
}

} // namespace

Comparison compare(const CalibrationValues& a, const CalibrationValues& b) {
    Comparison out;
    std::set<std::pair<std::string, Side>> unreadable; // these are there, in their way
    const auto note_unreadable = [&](const CalibrationValues& values, Side side) {
        for (const UnreadableLine& line : values.unreadable) {
            out.unreadable.push_back({line, side});
            unreadable.emplace(line.key, side);
        }
    };
    note_unreadable(a, Side::a);
    note_unreadable(b, Side::b);
    for (const FileKey& key : CalibrationValues::all_keys()) {
        const auto in_a = a.find(key);
        const auto in_b = b.find(key);
        if (in_a && in_b && in_a->raw != in_b->raw) {
            out.changed.push_back({key, in_a->raw, in_b->raw});
        } else if (in_a.has_value() != in_b.has_value()) {
            const Side side = in_a ? Side::b : Side::a;
            if (!unreadable.contains({key_text(key), side})) {
                out.missing.push_back({key, side});
            }
        }
    }
    for (const UnknownKey& key : a.unknown) {
        out.unknown.push_back({key, Side::a});
    }
    for (const UnknownKey& key : b.unknown) {
        out.unknown.push_back({key, Side::b});
    }
    out.same = out.changed.empty() && out.missing.empty() && out.unreadable.empty() &&
               std::ranges::is_permutation(a.unknown, b.unknown, std::equal_to<>());
    return out;
}

std::string as_text(const Comparison& comparison, const CalibrationValues& a, const CalibrationValues& b,
                    const std::string& name_a, const std::string& name_b) {
    std::string text;
    for (const ChangedValue& value : comparison.changed) {
        const std::string place = place_text(value.key);
        text += "changed  " + padded(key_text(value.key), 10) + " " + padded(place, place.empty() ? 0 : 17) +
                (place.empty() ? "" : " ") + value_text(value.key, value.a, a) + " -> " +
                value_text(value.key, value.b, b) + "\n";
    }
    for (const MissingValue& value : comparison.missing) {
        text += "missing  " + padded(key_text(value.key), 10) + " in " +
                (value.missing_in == Side::a ? name_a : name_b) + "\n";
    }
    for (const UnknownValue& value : comparison.unknown) {
        text += "unknown  " + padded(value.key.text, 10) + " in " + (value.in == Side::a ? name_a : name_b) +
                ", line " + std::to_string(value.key.line) + "\n";
    }
    for (const UnreadableValue& value : comparison.unreadable) {
        text += "unreadable " + padded(value.line.key, 8) + " in " + (value.in == Side::a ? name_a : name_b) +
                ", line " + std::to_string(value.line.line) + ": " + value.line.text + "\n";
    }
    text += std::to_string(comparison.changed.size()) + " changed, " + std::to_string(comparison.missing.size()) +
            " missing, " + std::to_string(comparison.unknown.size()) + " unknown";
    if (!comparison.unreadable.empty()) {
        text += ", " + std::to_string(comparison.unreadable.size()) + " unreadable";
    }
    return text + "\n";
}

std::string as_json(const Comparison& comparison, const CalibrationValues& a, const CalibrationValues& b) {
    QJsonArray changed;
    for (const ChangedValue& value : comparison.changed) {
        QJsonObject object = key_object(value.key);
        object["a"] = value_object(value.key, value.a, a);
        object["b"] = value_object(value.key, value.b, b);
        changed.append(object);
    }
    QJsonArray missing;
    for (const MissingValue& value : comparison.missing) {
        QJsonObject object = key_object(value.key);
        object["missing_in"] = value.missing_in == Side::a ? "a" : "b";
        missing.append(object);
    }
    QJsonArray unknown;
    for (const UnknownValue& value : comparison.unknown) {
        unknown.append(QJsonObject{
            {"key", json_text(value.key.text)}, {"line", value.key.line}, {"in", value.in == Side::a ? "a" : "b"}});
    }
    QJsonArray unreadable;
    for (const UnreadableValue& value : comparison.unreadable) {
        unreadable.append(QJsonObject{{"key", json_text(value.line.key)},
                                      {"line", value.line.line},
                                      {"in", value.in == Side::a ? "a" : "b"},
                                      {"text", json_text(value.line.text)}});
    }
    return json_line({{"same", comparison.same},
                      {"changed", changed},
                      {"missing", missing},
                      {"unknown", unknown},
                      {"unreadable", unreadable}});
}

} // namespace ecu::cli
