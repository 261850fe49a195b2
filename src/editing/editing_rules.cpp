#include "editing/editing_rules.h"

#include "platform/display_mask.h"

#include <algorithm>
#include <tuple>

namespace ecu::editing {

using platform::Grid;
using platform::KeyPress;
using platform::MouseButton;
using platform::TextBox;
namespace key = platform::key;

int row_of(const Grid& grid, int index) {
    return grid.rows() == 16 ? calibration::map_row_16(index) : calibration::map_row_9(index);
}

int column_of(const Grid& grid, int index) {
    return grid.rows() == 16 ? calibration::map_col_16(index) : calibration::map_col_9(index);
}

int index_of(const Grid& grid, int row, int column) { return (column - 1) * grid.rows() + grid.rows() - row; }

const std::string& text_at(const Grid& grid, int index) {
    return grid.cell_text(row_of(grid, index), column_of(grid, index));
}

void write_at(Grid& grid, int index, std::string_view text) {
    grid.set_cell_text(row_of(grid, index), column_of(grid, index), text);
}

int pending_cells(const Grid& grid) {
    int count = 0;
    for (int i = 0; i < cells_of(grid); ++i) {
        count += grid.cell_to_be_sent(row_of(grid, i), column_of(grid, i)) ? 1 : 0;
    }
    return count;
}

int unread_cells(const Grid& grid) {
    int count = 0;
    for (int i = 0; i < cells_of(grid); ++i) {
        count += grid.cell_unread(row_of(grid, i), column_of(grid, i)) ? 1 : 0;
    }
    return count;
}

void write_all(Grid& grid, std::string_view text) {
    const Repaint repaint(grid);
    for (int i = 0; i < cells_of(grid); ++i) {
        write_at(grid, i, text);
    }
}

void blank(Grid& grid) {
    const Repaint repaint(grid);
    for (int i = 0; i < cells_of(grid); ++i) {
        grid.blank_cell(row_of(grid, i), column_of(grid, i));
    }
}

void confirm_all(Grid& grid, std::string_view text) {
    const Repaint repaint(grid);
    for (int i = 0; i < cells_of(grid); ++i) {
        grid.confirm_cell(row_of(grid, i), column_of(grid, i), text);
    }
}

bool ask_caution(platform::Dialogs& dialogs, std::string_view question) {
    return dialogs.message_box({.text = std::string(question),
                                .title = "CAUTION!",
                                .buttons = platform::Buttons::yes_no,
                                .icon = platform::Icon::warning,
                                .preset = platform::Answer::no}) == platform::Answer::yes;
}

std::string stepped(std::string_view text, const KeyStep& step, bool up) {
    const double value = platform::leading_number(text);
    const double next = up ? std::min(value + step.step, step.maximum) : std::max(value - step.step, step.minimum);
    return platform::masked(next, step.mask);
}

void BlockSelection::anchor_at(int row, int column) {
    block_anchor_row = static_cast<std::int16_t>(row);
    block_anchor_col = static_cast<std::int16_t>(column);
}

void BlockSelection::end_at(int row, int column) {
    block_end_row = static_cast<std::int16_t>(row);
    block_end_col = static_cast<std::int16_t>(column);
}

void BlockSelection::draw_anchor(Grid* grid) {
    if (anchor_grid != nullptr && anchor_grid != grid) {
        anchor_grid->show_anchor(0, 0);
    }
    anchor_grid = grid;
    if (grid != nullptr) {
        grid->show_anchor(block_anchor_row, block_anchor_col);
    }
}

void BlockSelection::take(int table_id, const Grid& grid) {
    std::tie(block_row_low, block_row_high) = std::minmax(block_anchor_row, block_end_row);
    std::tie(block_col_low, block_col_high) = std::minmax(block_anchor_col, block_end_col);
    block_table_id = static_cast<std::int16_t>(table_id);
    block_grid_rows = static_cast<std::int16_t>(grid.rows());
    block_grid_cols = static_cast<std::int16_t>(grid.columns());
}

bool BlockSelection::contains(int row, int column) const {
    return block_col_low <= column && column <= block_col_high && block_row_low <= row && row <= block_row_high;
}

Grid::Area BlockSelection::within(const Grid& grid) const {
    return {.first_row = std::max(block_row_low, 1),
            .first_column = std::max(block_col_low, 1),
            .last_row = std::min(block_row_high, grid.rows()),
            .last_column = std::min(block_col_high, grid.columns())};
}

void wire_grid(Grid& grid, const GridKeys& keys, BlockSelection& selection, std::function<void()> update) {
    const auto open_block = [&grid, &selection, id = keys.block_table_id](bool open) {
        selection.take(id, grid);
        if (open && !grid.locked() && selection.open_modifier) {
            grid.show_block(selection.within(grid)); // what is highlighted is what will be worked on
            selection.open_modifier();
        }
    };
    grid.key_down = [&grid, &selection, keys, open_block](KeyPress& press) {
        const int row = grid.active_row();
        const int column = grid.active_column();
        if (selection.keyed_grid != &grid || selection.keyed_row != row || selection.keyed_column != column) {
            selection.keyed_grid = nullptr;
        }
        if (press.shift && !press.ctrl && (press.code == key::up || press.code == key::down)) {
            const bool up = press.code == key::up;
            press.code = key::shift;                                // so that the grid does not move its cursor as well
            if (!grid.locked() && !grid.cell_unread(row, column)) { // what was never read is nothing to step from
                grid.set_cell_text(row, column, stepped(grid.cell_text(row, column), keys.step, up));
            }
        } else if (press.ctrl && !press.shift && press.code == 'S') {
            selection.anchor_at(row, column);
            selection.draw_anchor(&grid);
            selection.keyed_grid = nullptr;
        } else if (press.ctrl && !press.shift && press.code == 'F') {
            if (selection.keyed_grid == nullptr) {
                selection.end_at(row, column);
            }
            open_block(true);
            selection.draw_anchor(nullptr);
        }
    };
    grid.key_press = [update = std::move(update)](KeyPress& press) {
        if (press.code == key::enter) {
            press.code = 0;
            update();
        }
    };
    grid.block_chosen = [&grid, &selection](const Grid::Area& block) {
        selection.anchor_at(block.first_row, block.first_column);
        selection.end_at(block.last_row, block.last_column);
        selection.block_invalid = false;
        selection.draw_anchor(nullptr);
        selection.keyed_grid = &grid;
        selection.keyed_row = grid.active_row();
        selection.keyed_column = grid.active_column();
    };
    grid.mouse_down = [&grid, &selection, open_block](MouseButton button) {
        if (button == MouseButton::left) {
            selection.anchor_at(grid.mouse_row(), grid.mouse_column());
            selection.block_invalid = false;
            selection.draw_anchor(nullptr);
            selection.keyed_grid = nullptr;
        } else if (button == MouseButton::right) {
            open_block(!selection.block_invalid);
        }
    };
    grid.mouse_up = [&grid, &selection](MouseButton button) {
        if (button == MouseButton::left) {
            selection.end_at(grid.mouse_row(), grid.mouse_column());
            selection.block_invalid = grid.mouse_row() == -1 || grid.mouse_column() == -1;
        }
    };
}

void colour_by_focus(TextBox& box) {
    box.got_focus = [&box] { box.set_fore_colour(platform::light_red); };
    box.lost_focus = [&box] { box.set_fore_colour(platform::black); };
}

bool step_box(TextBox& box, const KeyStep& step, KeyPress& press) {
    if (!press.shift || press.ctrl || (press.code != key::up && press.code != key::down)) {
        return false;
    }
    const bool up = press.code == key::up;
    press.code = key::shift;
    if (!box.unread()) { // what was never read is nothing to step from
        box.set_text(stepped(box.text(), step, up));
    }
    return true;
}

bool move_along(std::span<TextBox> boxes, std::size_t index, KeyPress& press) {
    const bool left = press.code == key::left && index > 0;
    const bool right = press.code == key::right && index + 1 < boxes.size();
    if (press.shift || press.ctrl || (!left && !right)) {
        return false;
    }
    press.code = 0;
    boxes[left ? index - 1 : index + 1].set_focus();
    return true;
}

} // namespace ecu::editing
