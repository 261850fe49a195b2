#include "history/journal_window.h"

#include <algorithm>
#include <cctype>

namespace ecu::history {

namespace {

constexpr std::size_t most_shown = 5000; // the newest; the filter finds the others

std::string lower(std::string text) {
    std::ranges::transform(text, text.begin(), [](unsigned char c) { return static_cast<char>(std::tolower(c)); });
    return text;
}

std::string value(const std::optional<std::int32_t>& raw, const std::string& text) {
    return !raw ? "not known" : text.empty() ? std::to_string(*raw) : text;
}

platform::List::Row row_of(const JournalRow& row) {
    const WriteRow& write = row.write;
    const auto key = key_of(row);
    const bool taken = row.answer && row.answer->taken;
    const auto& after = taken ? row.answer->raw : write.sent_raw;
    return {.cells = {write.time, key ? item_of(*key) : write.item, key ? place_of(*key) : "",
                      value(write.old_raw, write.old_text), value(after, taken ? row.answer->text : write.sent_text),
                      (write.old_raw ? std::to_string(*write.old_raw) : "?") + " -> " +
                          (after ? std::to_string(*after) : "?"),
                      !row.answer ? "not known"
                      : taken     ? "yes"
                                  : "no answer",
                      write.place, write.serial ? std::to_string(*write.serial) : ""},
            .ticked = false,
            .tickable = key.has_value() && write.old_raw.has_value()};
}

} // namespace

JournalWindow::JournalWindow(const Use& use) : use_(use) {
    FrmJournal& form = use_.form;
    form.journal_refresh.clicked = [this] { refresh(); };
    form.journal_filter.changed = [this] { show_rows(); };
    form.journal_list.ticks_changed = [this] {
        const auto& rows = use_.form.journal_list.rows();
        for (std::size_t i = 0; i < shown_.size(); ++i) {
            const std::int64_t id = rows_[shown_[i]].id;
            rows[i].ticked ? (void)ticked_.insert(id) : (void)ticked_.erase(id);
        }
        show_state();
    };
    use_.changes.busy_changed.push_back([this] { show_state(); });
    form.journal_tick_shown.clicked = [this] { tick_all(true); };
    form.journal_tick_none.clicked = [this] { tick_all(false); };
    form.journal_put_back.clicked = [this] { put_back_ticked(); };
    form.journal_close.clicked = [this] { use_.form.form.close_requested(); };
}

void JournalWindow::open() {
    refresh();
    use_.form.form.show();
    use_.form.form.raise();
}

void JournalWindow::refresh() {
    use_.journal.flush();
    std::string failure;
    rows_ = use_.file.journal(failure);
    show_rows();
    if (!failure.empty()) {
        use_.form.journal_status.set_text(std::string(history_name) + " cannot be read: " + failure);
    }
}

void JournalWindow::show_rows() {
    const std::string wanted = lower(use_.form.journal_filter.text());
    std::vector<platform::List::Row> rows;
    shown_.clear();
    for (std::size_t i = rows_.size(); i-- > 0 && rows.size() < most_shown;) {
        platform::List::Row row = row_of(rows_[i]);
        std::string all = rows_[i].write.item;
        for (const std::string& cell : row.cells) {
            all += " " + cell;
        }
        if (wanted.empty() || lower(all).find(wanted) != std::string::npos) {
            row.ticked = ticked_.contains(rows_[i].id);
            rows.push_back(std::move(row));
            shown_.push_back(i);
        }
    }
    use_.form.journal_list.set_rows(std::move(rows));
    show_state();
}

void JournalWindow::show_state() {
    const auto& rows = use_.form.journal_list.rows();
    const std::size_t ticked = ticked_.size();
    use_.form.journal_put_back.set_enabled(ticked > 0 && !use_.changes.busy());
    std::string text = calibration::counted(rows_.size(), "write");
    if (rows.size() < rows_.size()) {
        text += ", " + std::to_string(rows.size()) + " shown";
    }
    if (ticked > 0) {
        text += ", " + std::to_string(ticked) + " ticked";
    }
    if (use_.journal.waiting() > 0) {
        text += "; " + std::to_string(use_.journal.waiting()) + " more wait to be kept: " + use_.journal.failure();
    }
    use_.form.journal_status.set_text(text);
}

void JournalWindow::tick_all(bool ticked) {
    if (!ticked) {
        ticked_.clear();
    }
    const auto& rows = use_.form.journal_list.rows();
    for (std::size_t i = 0; ticked && i < shown_.size(); ++i) {
        if (rows[i].tickable) {
            ticked_.insert(rows_[shown_[i]].id);
        }
    }
    show_rows();
}

void JournalWindow::put_back_ticked() {
    std::vector<JournalRow> wanted; // the oldest first
    std::optional<std::uint32_t> serial;
    for (const JournalRow& row : rows_) {
        if (!ticked_.contains(row.id)) {
            continue;
        }
        if (serial && row.write.serial && row.write.serial != serial) {
            use_.form.journal_status.set_text("The ticked rows are of several controllers: tick those of one");
            return;
        }
        serial = serial ? serial : row.write.serial;
        wanted.push_back(row);
    }
    use_.changes.show_items({.title = "Put back " + calibration::counted(wanted.size(), "write"),
                             .wanted = before_all(wanted),
                             .serial = serial,
                             .ended = [this](const SendResult&, const std::vector<ChangeLine>&) { refresh(); }});
}

} // namespace ecu::history
