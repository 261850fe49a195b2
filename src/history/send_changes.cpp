#include "history/send_changes.h"

#include "calibration/written_value.h"
#include "messages/catalogue.h"

#include <algorithm>

namespace ecu::history {

namespace {

constexpr int lines_of_a_download = 2126;
// By these the numbers of others become values: the sensor, the engine speed, the meaning of the boost maps.
constexpr std::array<std::string_view, 3> scale_keys{"MAP_TYPE", "FS_RPM", "BOFG"};

void ask(link::EcuComm& comm, const messages::Command& command) { comm.poll({command.code}, command.reply); }

std::string number_text(const std::optional<std::uint32_t>& serial) {
    return serial ? "serial number " + std::to_string(*serial) : "a controller that did not tell its serial number";
}

} // namespace

std::string result_text(const SendResult& result) {
    std::string text = result.sent == 0 ? "Nothing was sent" : std::to_string(result.sent) + " sent and verified";
    const auto add = [&text](int count, std::string_view what) {
        if (count > 0) {
            text += ", " + std::to_string(count) + " " + std::string(what);
        }
    };
    add(result.otherwise, "taken as another value");
    add(result.no_answer, "without an answer");
    add(result.left, "not sent");
    return text + (result.trouble.empty() ? "" : ": " + result.trouble);
}

std::vector<ChangeLine> changes_to(const calibration::Snapshot& wanted, const calibration::Snapshot& now) {
    std::vector<ChangeLine> lines;
    for (const calibration::FileKey& key : calibration::Snapshot::all_keys()) {
        const auto to = wanted.find(key);
        const auto from = now.find(key);
        if (!to || (from && from->raw == to->raw)) {
            continue;
        }
        const std::int32_t carried = calibration::carried(key, to->raw);
        const bool fits = carried == to->raw;
        lines.push_back({.key = key,
                         .from = from ? std::optional(from->raw) : std::nullopt,
                         .to = to->raw,
                         .ticked = fits,
                         .state = fits ? LineState::waiting : LineState::unfit});
    }
    return lines;
}

ReadResult SendChanges::read(const Going& going) {
    ReadResult out;
    ControllerCopy copy{.values = {},
                        .identity = {},
                        .setup = {},
                        .time = time_stamp(use_.ports.clock),
                        .writes = use_.journal.writes()};
    bool cancelled = false;
    const calibration::TransferResult result =
        use_.transfer.download_lines("controller", [&, lines = 0](std::string_view line) mutable {
            copy.setup += line;
            cancelled = going && !going(++lines, lines_of_a_download);
            return !cancelled;
        });
    if (cancelled) {
        return out;
    }
    using Outcome = calibration::TransferResult::Outcome;
    out.told = result.outcome == Outcome::demo_mode || result.outcome == Outcome::no_answer || !result.trouble.empty();
    if (result.outcome != Outcome::done || result.unanswered > 0) {
        out.trouble = result.unanswered > 0
                          ? calibration::counted(static_cast<std::size_t>(result.unanswered), "message") +
                                " had no answer, so what the controller holds is not known. Check the link and read "
                                "again"
                      : !result.trouble.empty() ? result.trouble
                                                : "the controller was not read";
        return out;
    }
    learn_serial();
    copy.identity = use_.state.identity;
    copy.values = calibration::values_of(copy.setup);
    out.copy = std::move(copy);
    return out;
}

void SendChanges::learn_serial() {
    const link::Pause pause(use_.state);
    if (!use_.state.identity.firmware) {
        ask(use_.comm, messages::firmware_revision);
    }
    if (!use_.state.identity.serial) {
        ask(use_.comm, messages::serial_number);
    }
}

ReadResult SendChanges::read_items(const std::vector<calibration::FileKey>& items) {
    std::vector<calibration::FileKey> keys = items;
    for (const std::string_view key : scale_keys) {
        keys.push_back({.parameter = calibration::find_parameter(key)});
    }
    std::vector<calibration::WriteRequest> reads;
    for (const calibration::FileKey& key : keys) {
        calibration::WriteRequest read = calibration::read_request_of(key);
        if (std::ranges::find(reads, read.message, &calibration::WriteRequest::message) == reads.end()) {
            reads.push_back(std::move(read));
        }
    }
    bool answered_all = true;
    const calibration::TransferResult result = use_.transfer.send_sequence(
        "controller", {.count = reads.size(),
                       .begin = [] { return std::string(); },
                       .message = [&](std::size_t i) { return std::pair(reads[i].message, reads[i].reply); },
                       .ended = [&](std::size_t, bool answered) { return answered_all = answered_all && answered; }});
    ReadResult out;
    if (result.outcome != calibration::TransferResult::Outcome::done || !answered_all) {
        out.trouble = !result.trouble.empty() ? result.trouble : "the controller was not read: check the link";
        return out;
    }
    learn_serial();
    out.copy = ControllerCopy{.values = {},
                              .identity = use_.state.identity,
                              .setup = {},
                              .time = time_stamp(use_.ports.clock),
                              .writes = use_.journal.writes()};
    for (const calibration::FileKey& key : keys) {
        out.copy->values.put(key, {.raw = held(key).value_or(0)});
    }
    return out;
}

std::optional<ControllerCopy> SendChanges::as_read(const calibration::Table& table) const {
    ControllerCopy copy{.values = {},
                        .identity = use_.state.identity,
                        .setup = {},
                        .time = time_stamp(use_.ports.clock),
                        .writes = use_.journal.writes()};
    for (int i = 0; i < table.cells(); ++i) {
        if (!use_.image.cell_known(table.base + i)) {
            return std::nullopt;
        }
        const std::int32_t raw = use_.image.cell(table.base + i);
        copy.values.put({.table = &table, .index = i}, {.raw = raw});
        copy.setup += calibration::file_line(table, i, raw);
    }
    return copy;
}

// A sentence if it is another controller, or cannot be shown to be the same.
std::string SendChanges::ask_who(const link::ControllerIdentity& wanted) {
    use_.state.identity = {};
    ask(use_.comm, messages::firmware_revision);
    ask(use_.comm, messages::serial_number);
    const link::ControllerIdentity& now = use_.state.identity;
    if (!now.serial || !now.firmware) {
        return "the controller did not tell who it is, so nothing was sent. Check the link and try again";
    }
    if (!wanted.serial || now.serial != wanted.serial || now.firmware != wanted.firmware) {
        return "the values were compared with those of " + number_text(wanted.serial) + ", and " +
               number_text(now.serial) +
               " answers now, so nothing was sent. Read this controller, and look through its own differences";
    }
    return {};
}

std::optional<std::int32_t> SendChanges::held(const calibration::FileKey& key) const {
    return key.table != nullptr ? use_.image.cell(key.table->base + key.index)
                                : use_.image.raw(*key.parameter, key.index);
}

SendResult SendChanges::send(std::vector<ChangeLine>& lines, const link::ControllerIdentity& wanted_of,
                             const std::string& from, const Going& going) {
    std::vector<ChangeLine*> wanted;
    for (ChangeLine& line : lines) {
        if (line.ticked && line.state != LineState::unfit && line.state != LineState::sent) {
            line.state = LineState::waiting;
            wanted.push_back(&line);
        }
    }
    SendResult out;
    if (wanted.empty()) {
        return out;
    }
    const Journal::From place(use_.journal, from);
    bool stopped = false;
    const auto message = [&](std::size_t i) {
        const calibration::WriteRequest request = calibration::write_request(wanted[i]->key, wanted[i]->to);
        return std::pair(request.message, request.reply);
    };
    const auto ended = [&](std::size_t i, bool answered) {
        ChangeLine& line = *wanted[i];
        if (!answered) {
            line.state = LineState::no_answer;
            return false;
        }
        line.stored = held(line.key);
        line.state = line.stored == line.to ? LineState::sent : LineState::otherwise;
        stopped = going && !going(static_cast<int>(i) + 1, static_cast<int>(wanted.size()));
        return !stopped;
    };
    const calibration::TransferResult result = use_.transfer.send_sequence(
        from,
        {.count = wanted.size(), .begin = [&] { return ask_who(wanted_of); }, .message = message, .ended = ended});
    for (const ChangeLine* line : wanted) {
        out.sent += line->state == LineState::sent ? 1 : 0;
        out.otherwise += line->state == LineState::otherwise ? 1 : 0;
        out.no_answer += line->state == LineState::no_answer ? 1 : 0;
        out.left += line->state == LineState::waiting ? 1 : 0;
    }
    if (!result.trouble.empty()) {
        out.trouble = result.trouble;
    } else if (out.no_answer > 0) {
        out.trouble = "the link was lost. Check it, and send again: it goes on with what was not sent";
    } else if (stopped) {
        out.trouble = "stopped. Send again to go on with what was not sent";
    } else if (out.left > 0) {
        out.trouble = "the controller cannot be reached";
    }
    return out;
}

} // namespace ecu::history
