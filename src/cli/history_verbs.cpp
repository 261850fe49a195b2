// compare, restore-point, journal and send-changes.
#include "cli/json.h"
#include "cli/progress_line.h"
#include "cli/reports.h"
#include "cli/verbs.h"
#include "history/difference.h"
#include "history/restore_points.h"
#include "platform/safe_file.h"

#include <QJsonArray>

#include <algorithm>
#include <iostream>

namespace ecu::cli {

namespace {

using history::ChangeLine;
using history::Difference;
using history::LineState;
using history::Side;

const std::filesystem::path history_path{history::history_name};

// What was read, or the Failure that says why not.
history::ControllerCopy read_controller(Session& session) {
    session.open_link();
    const ProgressLine progress(session);
    history::ReadResult read = session.console.send_changes.read();
    if (!read.copy) {
        throw Failure(Status::link, session.controller_name() + ": " + on_one_line(read.trouble));
    }
    return std::move(*read.copy);
}

history::ControllerCopy copy_of_controller(const Options& options) {
    Session session(options);
    try {
        return read_controller(session);
    } catch (const LinkFailed& failed) {
        throw session.explain(failed);
    }
}

Side stored_side(const std::string& name) {
    history::HistoryFile file(history_path);
    const auto id = history::point_of_name(name);
    Side side = id ? history::side_of_point(file, *id) : history::side_of_file(name, name);
    if (!side.failure.empty()) {
        throw Failure(Status::file, name + " cannot be used: " + side.failure + ". Name another");
    }
    return side;
}

history::DifferenceFilter filter_of(const Options& options) {
    return {.group = options.group, .text = options.text, .rate = options.rate};
}

QJsonValue value_of(const std::optional<std::int32_t>& raw, const std::string& shown) {
    return raw ? QJsonValue(QJsonObject{{"raw", *raw}, {"shown", json_text(shown)}}) : QJsonValue();
}

QJsonObject object_of(const Difference& one) {
    QJsonObject object = key_object(one.key);
    object["group"] = json_text(one.group);
    object["item"] = json_text(one.item);
    object["unit"] = json_text(one.unit);
    object["a"] = value_of(one.a_raw, one.a);
    object["b"] = value_of(one.b_raw, one.b);
    object["difference"] = one.change.empty() ? QJsonValue() : QJsonValue(json_text(one.change));
    object["per_cent"] = one.rate ? QJsonValue(*one.rate) : QJsonValue();
    return object;
}

// The object's last line counts all, whatever was asked to be shown.
std::string compared_as_json(const std::vector<Difference>& shown, const calibration::Comparison& comparison,
                             const Side& a, const Side& b) {
    QJsonArray list;
    for (const Difference& one : shown) {
        list.append(object_of(one));
    }
    QJsonArray odd;
    for (const calibration::UnknownValue& value : comparison.unknown) {
        odd.append(QJsonObject{{"in", value.in == calibration::Side::a ? "a" : "b"},
                               {"line", value.key.line},
                               {"unknown", json_text(value.key.text)}});
    }
    for (const calibration::UnreadableValue& value : comparison.unreadable) {
        odd.append(QJsonObject{{"in", value.in == calibration::Side::a ? "a" : "b"},
                               {"line", value.line.line},
                               {"unreadable", json_text(value.line.key)},
                               {"text", json_text(value.line.text)}});
    }
    return json_line({{"same", comparison.same},
                      {"a", json_text(a.name)},
                      {"b", json_text(b.name)},
                      {"changed", static_cast<int>(comparison.changed.size())},
                      {"missing", static_cast<int>(comparison.missing.size())},
                      {"differences", list},
                      {"lines", odd}});
}

// "MAPM" means all of its cells.
bool asked_for(const Options& options, const calibration::FileKey& key) {
    const std::string_view item = key.table != nullptr ? key.table->key : key.parameter->key;
    return options.only.empty() || std::ranges::any_of(options.only, [&](const std::string& only) {
               return only == item || only == calibration::key_text(key);
           });
}

std::string_view state_text(LineState state) {
    switch (state) {
    case LineState::waiting:
        return "not sent";
    case LineState::sent:
        return "sent";
    case LineState::otherwise:
        return "taken as another value";
    case LineState::no_answer:
        return "no answer";
    case LineState::unfit:
        return "fits no message";
    }
    return "";
}

std::string fate_text(const history::JournalRow& row) {
    return !row.answer ? "not known" : row.answer->taken ? "taken" : "no answer";
}

bool wanted(const Options& options, const history::JournalRow& row) {
    const history::WriteRow& write = row.write;
    return (options.since.empty() || write.time >= options.since) &&
           (options.text.empty() ||
            (write.item + " " + write.place + " " + write.old_text + " " + write.sent_text + " " + fate_text(row))
                    .find(options.text) != std::string::npos);
}

std::string element_text(const history::JournalRow& row) {
    const auto key = history::key_of(row);
    return key ? calibration::key_text(*key) : row.write.item + "[" + std::to_string(row.write.element) + "]";
}

std::string with_raw(const std::optional<std::int32_t>& raw, const std::string& text) {
    if (!raw) {
        return "?";
    }
    return text.empty() || text == std::to_string(*raw) ? std::to_string(*raw)
                                                        : text + " [" + std::to_string(*raw) + "]";
}

std::string row_text(const history::JournalRow& row) {
    const history::WriteRow& write = row.write;
    const bool taken = row.answer && row.answer->taken;
    return write.time + "  " + element_text(row) + "  " + with_raw(write.old_raw, write.old_text) + " -> " +
           with_raw(taken ? row.answer->raw : write.sent_raw, taken ? row.answer->text : write.sent_text) + "  " +
           fate_text(row) + "  " + write.place + "\n";
}

QJsonObject row_object(const history::JournalRow& row) {
    const history::WriteRow& write = row.write;
    QJsonObject object{{"id", static_cast<qint64>(row.id)},
                       {"time", json_text(write.time)},
                       {"place", json_text(write.place)},
                       {"key", json_text(write.item)},
                       {"index", write.element},
                       {"old", value_of(write.old_raw, write.old_text)},
                       {"sent", value_of(write.sent_raw, write.sent_text)},
                       {"taken", row.answer ? QJsonValue(row.answer->taken) : QJsonValue()},
                       {"new", row.answer ? value_of(row.answer->raw, row.answer->text) : QJsonValue()}};
    object["serial_number"] = write.serial ? QJsonValue(static_cast<qint64>(*write.serial)) : QJsonValue();
    return object;
}

Failure history_failure(const std::string& why) {
    return {Status::file, std::string(history::history_name) + " cannot be used: " + why +
                              ". Check the folder, or start in another one"};
}

std::int64_t number_of(const Options& options) {
    if (!options.point) {
        throw Failure(Status::usage, "restore-point " + options.action +
                                         ": which one? Name its number; ecu-cli restore-point list shows them");
    }
    return *options.point;
}

Status list_points(history::HistoryFile& file, const Options& options) {
    std::string failure;
    const auto points = history::list_points(file, failure);
    if (!failure.empty()) {
        throw history_failure(failure);
    }
    for (const history::ListedPoint& listed : points) {
        const history::RestorePoint& point = listed.point;
        if (options.json) {
            std::cout << json_line(
                {{"id", static_cast<qint64>(point.id)},
                 {"time", json_text(point.time)},
                 {"note", json_text(point.note)},
                 {"firmware", json_text(history::firmware_text(point.firmware))},
                 {"serial_number", point.serial ? QJsonValue(static_cast<qint64>(*point.serial)) : QJsonValue()},
                 {"differs_from_next",
                  listed.differs_from_next ? QJsonValue(static_cast<int>(*listed.differs_from_next)) : QJsonValue()}});
        } else {
            std::cout << history::point_name(point.id) << "  " << point.time.substr(0, 16) << "  "
                      << history::firmware_text(point.firmware) << "  "
                      << (listed.differs_from_next
                              ? calibration::counted(*listed.differs_from_next, "difference") + " to the next"
                              : "the newest")
                      << (point.note.empty() ? "" : "  " + point.note) << "\n";
        }
    }
    if (points.empty() && !options.json) {
        std::cout << "No restore points in " << history::history_name << "\n";
    }
    return Status::done;
}

Status make_point(history::HistoryFile& file, const Options& options) {
    const history::ControllerCopy copy = copy_of_controller(options);
    std::int64_t id = 0;
    if (const std::string failure = history::keep(file, copy, options.note, id); !failure.empty()) {
        throw history_failure(failure);
    }
    if (options.json) {
        std::cout << json_line({{"id", static_cast<qint64>(id)},
                                {"values", static_cast<int>(copy.values.size())},
                                {"time", json_text(copy.time)}});
    } else {
        std::cout << "Restore point " << history::point_name(id) << " holds "
                  << calibration::counted(copy.values.size(), "value") << "\n";
    }
    return Status::done;
}

Status save_point(history::HistoryFile& file, const Options& options) {
    const std::int64_t id = number_of(options);
    if (options.file.empty()) {
        throw Failure(Status::usage, "restore-point save: into which file? Name it behind the number");
    }
    std::string failure;
    const auto point = file.point(id, failure);
    if (!failure.empty() || !point) {
        throw history_failure(failure.empty() ? "there is no restore point " + history::point_name(id) : failure);
    }
    if (const std::string why = platform::replace_file(options.file, point->setup); !why.empty()) {
        throw Failure(Status::file, options.file + " cannot be written: " + why + ". Name another file");
    }
    if (options.json) {
        std::cout << json_line({{"id", static_cast<qint64>(id)}, {"file", json_text(options.file)}});
    } else {
        std::cout << "Restore point " << history::point_name(id) << " is in " << options.file << "\n";
    }
    return Status::done;
}

QJsonObject sent_object(const history::SendResult& result, const std::vector<ChangeLine>& lines,
                        const std::vector<Difference>& shown) {
    QJsonArray list;
    for (std::size_t i = 0; i < lines.size(); ++i) {
        QJsonObject object = object_of(shown[i]);
        object["state"] = json_text(state_text(lines[i].state));
        list.append(object);
    }
    return {{"differences", list},
            {"sent", result.sent},
            {"otherwise", result.otherwise},
            {"no_answer", result.no_answer},
            {"left", result.left},
            {"complete", result.complete()},
            {"trouble", json_text(result.trouble)}};
}

} // namespace

Status run_compare(const Options& options) {
    const bool controller_a = options.file == controller_word;
    const bool controller_b = options.second == controller_word;
    if (controller_a && controller_b) {
        throw Failure(Status::usage, "both sides are the controller. Name a setup file or restore point for one");
    }
    Side a = controller_a ? Side{} : stored_side(options.file);
    Side b = controller_b ? Side{} : stored_side(options.second);
    if (controller_a || controller_b) {
        (controller_a ? a : b) = history::side_of_copy(copy_of_controller(options));
    }
    const calibration::Comparison comparison = calibration::compare(a.values, b.values);
    std::vector<Difference> shown = history::differences(comparison, a.values, b.values, {});
    const history::DifferenceFilter filter = filter_of(options);
    std::erase_if(shown, [&](const Difference& one) { return !filter.passes(one); });
    if (options.json) {
        std::cout << compared_as_json(shown, comparison, a, b);
    } else if (options.csv) {
        std::cout << history::as_csv(shown, comparison, {a.name, b.name});
    } else {
        std::cout << history::as_text(shown, comparison, {a.name, b.name}, options.raw);
    }
    return comparison.same ? Status::done : Status::differs;
}

Status run_journal(const Options& options) {
    history::HistoryFile file(history_path);
    std::string failure;
    std::vector<history::JournalRow> rows = file.journal(failure);
    if (!failure.empty()) {
        throw history_failure(failure);
    }
    std::erase_if(rows, [&](const history::JournalRow& row) { return !wanted(options, row); });
    if (options.count > 0 && rows.size() > static_cast<std::size_t>(options.count)) {
        rows.erase(rows.begin(), rows.end() - options.count);
    }
    for (const history::JournalRow& row : rows) {
        std::cout << (options.json ? json_line(row_object(row)) : row_text(row));
    }
    if (!options.json) {
        std::cout << calibration::counted(rows.size(), "write") << "\n";
    }
    return Status::done;
}

Status run_restore_point(const Options& options) {
    history::HistoryFile file(history_path);
    if (options.action == "make") {
        return make_point(file, options);
    }
    if (options.action == "save") {
        return save_point(file, options);
    }
    if (options.action == "remove") {
        std::string failure;
        const std::int64_t id = number_of(options);
        if (!file.point(id, failure)) {
            throw history_failure(failure.empty() ? "there is no restore point " + history::point_name(id) : failure);
        }
        if (failure = file.remove_point(id); !failure.empty()) {
            throw history_failure(failure);
        }
        std::cout << (options.json ? json_line({{"id", static_cast<qint64>(id)}, {"removed", true}})
                                   : "Restore point " + history::point_name(id) + " is removed\n");
        return Status::done;
    }
    return list_points(file, options);
}

Status run_send_changes(Session& session, const Options& options) {
    const Side source = stored_side(options.file); // first: it may fail before any time is spent on the line
    const history::ControllerCopy copy = read_controller(session);
    std::vector<ChangeLine> lines = history::changes_to(source.values, copy.values);
    const history::DifferenceFilter filter = filter_of(options);
    std::vector<Difference> shown;
    std::erase_if(lines, [&](const ChangeLine& line) {
        const Difference one =
            history::difference(line.key, line.from, line.to, copy.values.scales(), source.values.scales());
        const bool drop = !asked_for(options, line.key) || !filter.passes(one);
        if (!drop) {
            shown.push_back(one);
        }
        return drop;
    });
    const auto fitting = static_cast<std::size_t>(std::ranges::count(lines, LineState::waiting, &ChangeLine::state));
    const calibration::Comparison nothing_odd;
    const std::string list = history::as_text(shown, nothing_odd, {session.controller_name(), source.name}, true);
    const std::string body = shown.empty() ? "" : list.substr(0, list.rfind("\n\n") + 1);
    if (!options.json) {
        std::cout << body << std::flush;
    }
    history::SendResult result;
    result.left = static_cast<int>(fitting);
    if (!options.preview && fitting > 0 &&
        (options.yes || agreed("Write " + calibration::counted(fitting, "value") + " of " + source.name + " into " +
                                   session.controller_name() + "?",
                               "this replaces values in the controller and nobody can be asked here. Give --yes if you "
                               "want it"))) {
        const ProgressLine progress(session);
        result = session.console.send_changes.send(lines, copy.identity, "ecu-cli send-changes " + source.name);
    }
    if (options.json) {
        std::cout << json_line(sent_object(result, lines, shown));
    } else if (lines.empty()) {
        std::cout << "Nothing differs: nothing was sent\n";
    } else {
        std::cout << history::result_text(result) << "\n";
    }
    if (const auto unfit = lines.size() - fitting; unfit > 0 && !options.json) {
        std::cout << calibration::counted(unfit, "value") << " of " << source.name
                  << " that fit no message: not sent\n";
    }
    if (!result.trouble.empty()) {
        throw Failure(Status::link, on_one_line(result.trouble));
    }
    return result.complete() && (result.sent > 0 || lines.empty()) ? Status::done : Status::differs;
}

} // namespace ecu::cli
