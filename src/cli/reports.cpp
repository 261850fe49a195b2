#include "cli/reports.h"

#include "calibration/encoding.h"
#include "cli/failure.h"
#include "cli/json.h"

#include <QJsonArray>

#include <algorithm>

namespace ecu::cli {

using namespace calibration;

namespace {

std::string padded(std::string text, std::size_t width) {
    text.resize(std::max(text.size(), width), ' ');
    return text;
}

// What the windows call it: "Sensitivity, ms/V". A table's cells carry their table's name.
std::string label_of(const FileKey& key) {
    const Screen& screen = key.table != nullptr ? key.table->screen : key.parameter->screen;
    return std::string(screen.label) + (screen.unit.empty() ? "" : ", " + std::string(screen.unit));
}

// "66 (.516)"
std::string value_text(const FileKey& key, std::int32_t raw, const Snapshot& values) {
    const std::string shown = shown_text(key, raw, values.scales());
    return std::to_string(raw) + (shown.empty() || shown == std::to_string(raw) ? "" : " (" + shown + ")");
}

QJsonObject value_object(const FileKey& key, std::int32_t raw, const Snapshot& values) {
    QJsonObject object{{"raw", raw}};
    if (const std::string shown = shown_text(key, raw, values.scales()); !shown.empty()) {
        object["shown"] = json_text(shown);
    }
    return object;
}

} // namespace

QJsonObject key_object(const FileKey& key) {
    QJsonObject object{{"key", json_text(key.table != nullptr ? key.table->key : key.parameter->key)}};
    if (const std::string label = label_of(key); !label.empty()) {
        object["label"] = json_text(label);
    }
    if (key.table != nullptr || key.parameter->is_vector()) {
        object["index"] = key.index;
    }
    if (key.table != nullptr && key.table->shape != calibration::TableShape::nine_boxes) {
        object["row"] = calibration::map_row(*key.table, key.index);
        object["column"] = calibration::map_col(*key.table, key.index);
    }
    return object;
}

std::string as_text(const Comparison& comparison, const Snapshot& a, const Snapshot& b, const std::string& name_a,
                    const std::string& name_b) {
    std::string text;
    for (const ChangedValue& value : comparison.changed) {
        const std::string place = place_text(value.key);
        text += "changed  " + padded(key_text(value.key), 10) + " " + padded(place, place.empty() ? 0 : 17) +
                (place.empty() ? "" : " ") + value_text(value.key, value.a, a) + " -> " +
                value_text(value.key, value.b, b) + (label_of(value.key).empty() ? "" : "   " + label_of(value.key)) +
                "\n";
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

std::string as_json(const Comparison& comparison, const Snapshot& a, const Snapshot& b) {
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

std::string as_text(const CheckReport& report, const std::string& name) {
    std::string text;
    for (const Finding& finding : report.findings) {
        text += name + ":" + std::to_string(finding.line) + ": " + finding.key + (finding.key.empty() ? "" : ": ") +
                finding.text + "\n";
    }
    for (const std::string& note : report.notes) {
        text += "note: " + note + "\n";
    }
    return text + counted(static_cast<std::size_t>(report.lines), "line") + ", " +
           counted(static_cast<std::size_t>(report.values), "value") + ", " +
           counted(report.findings.size(), "finding") + "\n";
}

std::string as_json(const CheckReport& report) {
    QJsonArray findings;
    for (const Finding& finding : report.findings) {
        findings.append(
            QJsonObject{{"line", finding.line}, {"key", json_text(finding.key)}, {"text", json_text(finding.text)}});
    }
    QJsonArray notes;
    for (const std::string& note : report.notes) {
        notes.append(json_text(note));
    }
    return json_line({{"findings", findings}, {"notes", notes}, {"lines", report.lines}, {"values", report.values}});
}

std::string text_of_file(const std::string& name) {
    calibration::FileText file = calibration::read_whole_file(name);
    if (!file.failure.empty()) {
        throw Failure(Status::file, name + " cannot be read: " + file.failure + ". Name another file");
    }
    return std::move(file.text);
}

} // namespace ecu::cli
