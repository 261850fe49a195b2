#include "editing/editor_link.h"

#include "editing/editing_rules.h"

namespace ecu::editing {

using calibration::EncodedEntry;
using platform::Answer;

template <typename Replace, typename Send>
Fate EditorLink::settle(const EncodedEntry& entry, const GoOn& go_on, Replace replace, Send send) {
    const auto dropped = [&] { return go_on && !go_on(); };
    if (!entry.question.empty()) {
        const Answer answer = ports_.dialogs.message_box(
            {.text = std::string(entry.question), .buttons = platform::Buttons::yes_no_cancel});
        if (answer != Answer::yes || dropped()) {
            return Fate::skipped;
        }
    }
    if (!entry.replaced.empty()) {
        replace(entry.replaced);
    }
    if (!entry.notice.empty()) {
        ports_.dialogs.say(entry.notice);
        if (dropped()) {
            return Fate::skipped;
        }
    }
    if (!entry.refusal.empty()) {
        ports_.dialogs.say(entry.refusal);
        return Fate::refused;
    }
    return send();
}

Fate EditorLink::send_entry(const calibration::Parameter& row, int element, platform::TextBox& box, const GoOn& go_on) {
    const EncodedEntry entry = calibration::raw_from_entry(row, box.text(), scales_);
    return settle(
        entry, go_on, [&](std::string_view text) { box.set_text(text); },
        [&] { return write(calibration::write_message(row, element, entry.raw), row.write.reply); });
}

Fate EditorLink::send_entry(const calibration::Table& row, int index, platform::TextBox& box, const GoOn& go_on) {
    const EncodedEntry entry = calibration::raw_from_entry(row, box.text(), scales_);
    return settle(
        entry, go_on, [&](std::string_view text) { box.set_text(text); },
        [&] { return write(calibration::cell_write_message(row.base + index, entry.raw), calibration::cell_reply); });
}

Fate EditorLink::send_entry(const calibration::Table& row, int index, platform::Grid& grid, const GoOn& go_on) {
    const EncodedEntry entry = calibration::raw_from_entry(row, text_at(grid, index), scales_);
    return settle(
        entry, go_on, [&](std::string_view text) { write_at(grid, index, text); },
        [&] { return write(calibration::cell_write_message(row.base + index, entry.raw), calibration::cell_reply); });
}

Fate EditorLink::write(const link::Message& message, int expected_length) {
    switch (comm_.send_ecu_message(message, expected_length)) {
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
                             const std::function<void(int)>& progress, const std::function<bool()>& stop) {
    for (int k = 0; k < count; ++k) {
        progress(k);
        read(calibration::block_read_message(block, address + k * block.cells), block.reply());
        if (state_.comm_aborted || stop()) {
            return false;
        }
    }
    return true;
}

} // namespace ecu::editing
