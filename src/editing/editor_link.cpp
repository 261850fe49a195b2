#include "editing/editor_link.h"

#include "editing/editing_rules.h"

namespace ecu::editing {

using calibration::EncodedEntry;
using platform::Answer;

std::string EditorLink::Place::text() const {
    return row == 0 ? control.text() : static_cast<platform::Grid&>(control).cell_text(row, column);
}

void EditorLink::Place::replace(std::string_view text) const {
    row == 0 ? control.set_text(text) : static_cast<platform::Grid&>(control).set_cell_text(row, column, text);
}

void EditorLink::Place::begin_sending() const {
    row == 0 ? static_cast<platform::TextBox&>(control).begin_sending()
             : static_cast<platform::Grid&>(control).begin_sending(row, column);
}

bool EditorLink::Place::end_sending() const {
    const auto end = [](auto& sender) {
        sender.end_sending();
        return sender.entered_behind();
    };
    return row == 0 ? end(static_cast<platform::TextBox&>(control)) : end(static_cast<platform::Grid&>(control));
}

bool EditorLink::given_up() const {
    return one_ != nullptr && (state_.comm_aborted || (state_.demo_mode && !demo_before_));
}

Answer EditorLink::say(const Place& place, std::string_view text, platform::Buttons buttons) {
    platform::MessageBox box{.text = std::string(text), .buttons = buttons};
    if (buttons != platform::Buttons::ok) { // a second Enter behind that of the Update is no consent
        box.icon = platform::Icon::warning;
        box.preset = Answer::no;
    }
    if (show_place) {
        box.details = show_place(place.control, place.row, place.column);
    }
    return ports_.dialogs.message_box(box);
}

Fate EditorLink::settle(const EncodedEntry& entry, const Place& place, const GoOn& go_on, const link::Message& message,
                        int expected_length, const AfterEcho& after) {
    place.begin_sending();
    place.end_sending(); // nothing was entered behind it yet
    if (given_up()) {
        return Fate::not_sent; // neither asked for nor said
    }
    if (hushed_ && !(entry.question.empty() && entry.notice.empty() && entry.refusal.empty())) {
        return Fate::skipped;
    }
    const auto dropped = [&] { return go_on && !go_on(); };
    if (!entry.question.empty() &&
        (say(place, entry.question, platform::Buttons::yes_no_cancel) != Answer::yes || dropped())) {
        return Fate::skipped;
    }
    const std::string entered = place.text();
    if (!entry.replaced.empty()) {
        place.replace(entry.replaced);
    }
    if (!entry.notice.empty()) {
        say(place, entry.notice);
        if (dropped()) {
            return Fate::skipped;
        }
    }
    if (!entry.refusal.empty()) {
        say(place, entry.refusal);
        return Fate::refused;
    }
    place.begin_sending();
    const Fate fate = write(message, expected_length);
    const std::string echoed = place.text();
    if (fate == Fate::accepted && after && !dropped()) {
        after();
    }
    const bool entered_behind = place.end_sending();
    if (fate == Fate::accepted && entry.held && on_held && !entered_behind) {
        on_held(entered, echoed);
    }
    return fate;
}

Fate EditorLink::send_entry(const calibration::Parameter& row, int element, platform::TextBox& box, const GoOn& go_on,
                            const AfterEcho& after) {
    const EncodedEntry entry = calibration::raw_from_entry(row, box.text(), scales_);
    return settle(entry, {.control = box}, go_on, calibration::write_message(row, element, entry.raw), row.write.reply,
                  after);
}

Fate EditorLink::send_entry(const calibration::Table& row, int index, platform::TextBox& box, const GoOn& go_on) {
    const EncodedEntry entry = calibration::raw_from_entry(row, box.text(), scales_);
    return settle(entry, {.control = box}, go_on, calibration::cell_write_message(row.base + index, entry.raw),
                  calibration::cell_reply);
}

Fate EditorLink::send_entry(const calibration::Table& row, int index, platform::Grid& grid, const GoOn& go_on) {
    const EncodedEntry entry = calibration::raw_from_entry(row, text_at(grid, index), scales_);
    return settle(entry, {.control = grid, .row = row_of(grid, index), .column = column_of(grid, index)}, go_on,
                  calibration::cell_write_message(row.base + index, entry.raw), calibration::cell_reply);
}

bool EditorLink::out_of_range(const calibration::Table& row, std::string_view text) const {
    const EncodedEntry entry = calibration::raw_from_entry(row, text, scales_);
    return entry.held || !entry.refusal.empty();
}

link::Outcome EditorLink::send(const link::Message& message, int expected_length) {
    return one_ != nullptr ? one_->send(message, expected_length) : comm_.send_ecu_message(message, expected_length);
}

Fate EditorLink::write(const link::Message& message, int expected_length) {
    if (lost()) {
        return Fate::skipped;
    }
    const link::Outcome outcome = send(message, expected_length);
    if (lost() && (given_up() || hushed_)) {
        return Fate::skipped; // the user has had his say
    }
    if (lost()) {
        ports_.dialogs.message_box(
            {.text = "The update has stopped: " + one_->trouble() +
                     ".\nWhat was sent before stays in the controller that was there. Check which "
                     "controller is connected, then leave this window and open it again.",
             .icon = platform::Icon::warning});
        return Fate::skipped;
    }
    switch (outcome) {
    case link::Outcome::accepted:
        return Fate::accepted;
    case link::Outcome::unanswered:
        return Fate::unanswered;
    case link::Outcome::not_sent:
        return Fate::not_sent;
    }
    return Fate::not_sent;
}

bool EditorLink::read_blocks(const calibration::BlockRead& block, int address, int count,
                             const std::function<void(int)>& progress, const std::function<bool()>& stop,
                             const std::function<bool(int)>& skip) {
    for (int k = 0; k < count; ++k) {
        if (skip && skip(k)) {
            continue;
        }
        progress(k);
        read(calibration::block_read_message(block, address + k * block.cells), block.reply());
        if (state_.comm_aborted || stop()) {
            return false;
        }
    }
    return true;
}

} // namespace ecu::editing
