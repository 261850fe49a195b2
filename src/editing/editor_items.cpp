#include "editing/editor_items.h"

#include "editing/editing_rules.h"

#include <algorithm>

namespace ecu::editing {

namespace {

bool in_vain(Fate fate) { return fate == Fate::unanswered || fate == Fate::not_sent || fate == Fate::refused; }

void count_pending(Counts& counts, std::string_view text) {
    ++counts.pending;
    if (!platform::is_number(text)) {
        ++(platform::leading_number(text) == 0 ? counts.sent_as_zero : counts.cut_short);
    }
}

} // namespace

// -- Boxes

Counts BoxItem::counts() const {
    Counts counts;
    if (box_.to_be_sent()) {
        count_pending(counts, box_.text());
    }
    counts.unread = box_.unread() ? 1 : 0;
    counts.unread_cells = table_ != nullptr ? counts.unread : 0;
    counts.not_taken = not_taken_ && box_.unconfirmed() ? 1 : 0;
    return counts;
}

void BoxItem::open(bool demo, bool blank) {
    if (demo && !demo_.empty()) {
        box_.confirm(demo_);
    } else if (blank) {
        box_.blank();
    } else if (!demo && !box_.is_pending()) { // an entry stays one
        box_.forget();
    }
}

void BoxItem::send(Walk& walk) {
    if (box_.to_be_sent()) {
        const Fate fate = parameter_ != nullptr ? walk.link.send_entry(*parameter_, index_, box_, walk.go_on, after_)
                                                : walk.link.send_entry(*table_, index_, box_, walk.go_on);
        not_taken_ = in_vain(fate) && !box_.entered_behind();
        walk.note_fate(fate);
    }
}

void BoxItem::keep_entries() {
    keeps_ = box_.to_be_sent();
    kept_ = box_.text();
}

void BoxItem::restore_entries() {
    if (keeps_) {
        box_.set_text(kept_);
    }
}

bool BoxItem::wants(const calibration::ReadRequest& request) const {
    return box_.unread() && parameter_ != nullptr && parameter_->read.command == request.command;
}

bool BoxItem::wants(const calibration::Table& row, int first, int count) const {
    return box_.unread() && table_ == &row && first <= index_ && index_ < first + count;
}

// -- Grids

GridItem::GridItem(const calibration::Table& row, platform::Grid& grid, std::string_view demo)
    : row_(row), grid_(grid), demo_(demo), changed_(static_cast<std::size_t>(row.cells()), false),
      not_taken_(changed_) {}

Counts GridItem::counts() const {
    Counts counts;
    for (int i = 0; i < cells_of(grid_); ++i) {
        const platform::Grid::Cell& cell = grid_.cell_state(row_of(grid_, i), column_of(grid_, i));
        if (cell.origin == platform::Origin::unread) {
            ++counts.unread;
        } else if (cell.back == platform::pending) {
            count_pending(counts, cell.text);
        }
        const bool in_vain_since = not_taken_[static_cast<std::size_t>(i)] && cell.origin == platform::Origin::entry;
        counts.not_taken += in_vain_since ? 1 : 0;
    }
    counts.unread_cells = counts.unread;
    return counts;
}

void GridItem::open(bool demo, bool blank_it) {
    if (demo && !demo_.empty()) {
        confirm_all(grid_, demo_);
    } else if (blank_it) {
        blank(grid_);
    }
}

void GridItem::send(Walk& walk) {
    for_each_pending(
        grid_,
        [&](int i, std::string_view) {
            changed_[static_cast<std::size_t>(i)] = false;
            const Fate fate = walk.link.send_entry(row_, i, grid_, walk.go_on);
            // Typed into while it was under way, it is a new entry, which nothing has sent yet.
            not_taken_[static_cast<std::size_t>(i)] = in_vain(fate) && !grid_.entered_behind();
            walk.note_fate(fate);
            // The walk ended at this cell: like those behind it it keeps its yellow, whatever the shading makes of it.
            changed_[static_cast<std::size_t>(i)] = changed_[static_cast<std::size_t>(i)] || walk.link.lost();
        },
        walk.go_on);
}

void GridItem::keep_entries() {
    kept_entries_.clear();
    for_each_pending(grid_, [&](int i, std::string_view) {
        kept_entries_.emplace_back(i, grid_.cell_state(row_of(grid_, i), column_of(grid_, i)));
    });
}

void GridItem::restore_entries() {
    for (const auto& [i, cell] : kept_entries_) {
        grid_.restore_cell(row_of(grid_, i), column_of(grid_, i), cell);
    }
}

bool GridItem::wants(const calibration::Table& row, int first, int count) const {
    bool unread = false;
    for (int i = first; &row == &row_ && i < first + count; ++i) {
        unread = unread || grid_.cell_unread(row_of(grid_, i), column_of(grid_, i));
    }
    return unread;
}

void GridItem::keep_behind() {
    kept_.clear();
    for_each_pending(grid_, [&](int i, std::string_view) {
        if (changed_[static_cast<std::size_t>(i)]) {
            kept_.push_back(i);
        }
    });
    changed_.assign(changed_.size(), false);
}

void GridItem::restore_behind() {
    for (const int i : kept_) {
        grid_.set_cell_back(row_of(grid_, i), column_of(grid_, i), platform::pending);
    }
}

// -- Others

Counts OtherItem::counts() const {
    const int pending = item_.pending();
    const bool anew = item_.value && item_.value() != sent_; // which nothing has sent yet
    return {.pending = pending,
            .unread = item_.unread ? item_.unread() : 0,
            .held_back = item_.held_back ? item_.held_back() : 0,
            .not_taken = anew ? 0 : std::min(not_taken_, pending)};
}

void OtherItem::open(bool demo, bool) {
    not_taken_ = 0;
    if (item_.open) {
        item_.open(demo);
    }
}

void OtherItem::lock(bool locked) {
    if (item_.lock) {
        item_.lock(locked);
    }
}

void OtherItem::send(Walk& walk) {
    if (item_.pending() == 0) {
        return;
    }
    not_taken_ = 0;
    sent_ = item_.value ? item_.value() : 0;
    Walk counting{.link = walk.link, .go_on = walk.go_on, .note_fate = [this, &walk](Fate fate) {
                      not_taken_ += in_vain(fate) ? 1 : 0;
                      walk.note_fate(fate);
                  }};
    item_.send(counting);
}

void OtherItem::keep_entries() {
    if (item_.keep) {
        item_.keep();
    }
}

void OtherItem::restore_entries() {
    if (item_.restore) {
        item_.restore();
    }
}

} // namespace ecu::editing
