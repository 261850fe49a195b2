// The rules that all windows editing the controller's tables share. There is no model behind these windows: a value's
// text is its only copy and its background its state. Typing paints it yellow and does nothing else; Update sends
// exactly the yellow values, one message each, in a fixed order; the echo rewrites the text and paints it white.
#pragma once

#include "calibration/encoding.h"
#include "platform/grid.h"
#include "platform/leading_number.h"
#include "platform/rounding.h"

#include <functional>
#include <span>
#include <string>
#include <string_view>

namespace ecu::editing {

// Grid cell of a table index.
int row_of(const platform::Grid& grid, int index);
int column_of(const platform::Grid& grid, int index);
int index_of(const platform::Grid& grid, int row, int column); // and back
const std::string& text_at(const platform::Grid& grid, int index);
void write_at(platform::Grid& grid, int index, std::string_view text);
inline int cells_of(const platform::Grid& grid) { return grid.rows() * grid.columns(); }

// Announces everything that happens to a grid in its life as one repaint.
class Repaint {
public:
    explicit Repaint(platform::Grid& grid) : grid_(grid) { grid_.begin_batch(); }
    ~Repaint() { grid_.end_batch(); }
    Repaint(const Repaint&) = delete;
    Repaint& operator=(const Repaint&) = delete;

private:
    platform::Grid& grid_;
};

int pending_cells(const platform::Grid& grid); // that Update would send
int unread_cells(const platform::Grid& grid);
// All cells yellow and empty: not yet read from the controller.
void blank(platform::Grid& grid);
void write_all(platform::Grid& grid, std::string_view text);   // as typing does: they go yellow
void confirm_all(platform::Grid& grid, std::string_view text); // white

// Every yellow cell that holds a value, in index order with its text. An event handled inside `write` may
// change cells that the walk has yet to reach; `go_on` is asked before each.
template <typename Write, typename GoOn> void for_each_pending(const platform::Grid& grid, Write write, GoOn go_on) {
    for (int i = 0; i < cells_of(grid) && go_on(); ++i) {
        if (grid.cell_to_be_sent(row_of(grid, i), column_of(grid, i))) {
            write(i, text_at(grid, i));
        }
    }
}
template <typename Write> void for_each_pending(const platform::Grid& grid, Write write) {
    for_each_pending(grid, write, [] { return true; });
}

// The question before a whole table or block is overwritten: yes, or no by default.
bool ask_caution(platform::Dialogs& dialogs, std::string_view question);

// What Shift with an arrow does to a value.
struct KeyStep {
    double step;
    double minimum;
    double maximum;
    std::string_view mask;
};
std::string stepped(std::string_view text, const KeyStep& step, bool up);

// The block that the operations of the block dialog work on: one for all grids of all windows, so that a block begun
// in one grid and ended in another is taken as the corners given.
struct BlockSelection {
    std::int16_t block_anchor_row = 0, block_end_row = 0;
    std::int16_t block_anchor_col = 0, block_end_col = 0;
    std::int32_t block_row_low = 0, block_row_high = 0; // sorted
    std::int32_t block_col_low = 0, block_col_high = 0;
    bool block_invalid = false; // the mouse was released outside the grid
    std::int16_t block_table_id = 0;
    std::int16_t block_grid_rows = 0, block_grid_cols = 0;
    platform::Grid* anchor_grid = nullptr; // where the anchor of Ctrl+S is drawn
    // A block selected by keys, which Ctrl+F takes as it stands while its active cell stays where it was then.
    const platform::Grid* keyed_grid = nullptr;
    int keyed_row = 0, keyed_column = 0;

    std::function<void()> open_modifier;
    std::function<void()> close_modifier; // its window is about to go

    void anchor_at(int row, int column);
    void end_at(int row, int column);
    void draw_anchor(platform::Grid* grid); // null: nowhere
    // Sorts the corners and names the table that they are taken to lie in.
    void take(int table_id, const platform::Grid& grid);
    bool contains(int row, int column) const;
    platform::Grid::Area within(const platform::Grid& grid) const; // the part of it that the grid has
};

// How a grid answers keys.
struct GridKeys {
    int block_table_id;
    KeyStep step;
};
// Keys, block selection by keyboard and mouse, and Enter; the cell change is the window's own.
void wire_grid(platform::Grid& grid, const GridKeys& keys, BlockSelection& selection, std::function<void()> update);

void colour_by_focus(platform::TextBox& box); // light red while it has the focus
// Shift+Up and Shift+Down; true when the key was one of them.
bool step_box(platform::TextBox& box, const KeyStep& step, platform::KeyPress& key);
// Left and Right move the focus along an array of boxes, stopping at its ends; true when the focus moved.
bool move_along(std::span<platform::TextBox> boxes, std::size_t index, platform::KeyPress& key);

} // namespace ecu::editing
