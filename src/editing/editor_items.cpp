#include "editing/editor_items.h"

#include "editing/editing_rules.h"

namespace ecu::editing {

void BoxItem::open(bool demo, bool blank) {
    if (demo && !demo_.empty()) {
        box_.confirm(demo_);
    } else if (blank) {
        box_.set_text("");
        box_.set_back_colour(platform::pending);
    }
}

void BoxItem::send(Walk& walk) {
    if (box_.is_pending()) {
        walk.note_fate(parameter_ != nullptr ? walk.link.send_entry(*parameter_, index_, box_, walk.go_on)
                                             : walk.link.send_entry(*table_, index_, box_, walk.go_on));
    }
}

GridItem::GridItem(const calibration::Table& row, platform::Grid& grid, std::string_view demo)
    : row_(row), grid_(grid), demo_(demo), changed_(static_cast<std::size_t>(row.cells()), false) {}

int GridItem::pending() const { return pending_cells(grid_); }

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
            walk.note_fate(walk.link.send_entry(row_, i, grid_, walk.go_on));
        },
        walk.go_on);
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

void OtherItem::open(bool demo, bool) {
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
    if (item_.pending() > 0) {
        item_.send(walk);
    }
}

} // namespace ecu::editing
