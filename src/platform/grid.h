// A grid of text cells with headers in row 0 and column 0, as the map editors use it. Every write of a cell's text
// fires `cell_changed`, by the user or by the program; background colours read back as they were set.
#pragma once

#include "platform/control.h"

#include <algorithm>
#include <vector>

namespace ecu::platform {

enum class MouseButton : std::uint8_t { none = 0, left = 1, right = 2 };

class Grid : public Control {
public:
    // Both corners belong to it. No cells: last before first.
    struct Area {
        int first_row, first_column, last_row, last_column;
        int rows() const { return std::max(0, last_row - first_row + 1); }
        int columns() const { return std::max(0, last_column - first_column + 1); }
        bool operator==(const Area&) const = default;
    };

    // Body rows and columns, the headers not counted: Grid(form, "inj_map", 16, 16).
    Grid(Form& form, std::string_view name, int rows, int columns);
    int rows() const { return rows_; }
    int columns() const { return columns_; }

    // Row and column count from 1; anything outside throws std::out_of_range.
    const std::string& cell_text(int row, int column) const { return cell(row, column).text; }
    void set_cell_text(int row, int column, std::string_view text); // fires cell_changed
    std::optional<Colour> cell_back(int row, int column) const { return cell(row, column).back; }
    void set_cell_back(int row, int column, std::optional<Colour> colour);
    // Writes the controller's value: text, then the white that the text's own event took away.
    void confirm_cell(int row, int column, std::string_view text);
    bool cell_pending(int row, int column) const { return cell_back(row, column) == pending; }
    bool cell_unread(int row, int column) const { return cell(row, column).origin == Origin::unread; }
    bool cell_unconfirmed(int row, int column) const { return cell(row, column).origin == Origin::entry; }
    // What Update sends.
    bool cell_to_be_sent(int row, int column) const { return cell_pending(row, column) && !cell_unread(row, column); }
    void blank_cell(int row, int column); // empty, yellow and unread

    // One cell's text and state, to be put back as they were. Putting back fires cell_changed.
    struct Cell {
        std::string text;
        std::optional<Colour> back;
        Origin origin = Origin::none;
    };
    const Cell& cell_state(int row, int column) const { return cell(row, column); }
    // As a box's: an entry into the cell whose text is on the way stays when the reply comes.
    void begin_sending(int row, int column);
    void end_sending() { sending_ = nullptr; }
    bool entered_behind() const { return entered_behind_; } // since the last begin
    void restore_cell(int row, int column, const Cell& state);

    // Where a cell stands in the map, for the user: "265 kPa, 312 rpm". Empty: nobody told.
    std::function<std::string(int row, int column)> place;
    // What else is to be told of a cell: "was 0.984, +3.0 %". Empty: nothing.
    std::function<std::string(int row, int column)> remark;

    // What the user puts in from elsewhere, one line a row, tabs between cells; a single value fills the block. A blank
    // leaves its cell alone, as does a hidden column; a decimal comma is a point, and what is no number is refused and
    // left out.
    struct Paste {
        std::vector<std::pair<int, int>> written; // row, column
        int refused = 0;
        int first_row = 0, first_column = 0; // refused
        std::string first_text;
    };
    void paste(const Area& block, std::string_view text); // ends with `pasted`
    std::function<void(const Paste&)> pasted;

    // The corner from which a block will be taken; row 0 shows none.
    int anchor_row() const { return anchor_row_; }
    int anchor_column() const { return anchor_column_; }
    void show_anchor(int row, int column);

    int column_width(int column) const { return widths_.at(static_cast<std::size_t>(column)); }
    void set_column_width(int column, int width); // 0 hides the column; column 0 is the header
    int row_height(int row) const { return heights_.at(static_cast<std::size_t>(row)); }
    void set_row_height(int row, int height);

    int active_row() const { return active_row_; }
    int active_column() const { return active_column_; }
    void set_active_cell(int row, int column);
    int mouse_row() const { return mouse_row_; } // -1 when outside
    int mouse_column() const { return mouse_column_; }
    void set_mouse_cell(int row, int column) {
        mouse_row_ = row;
        mouse_column_ = column;
    }

    // The cells that the program shows as selected; the active cell stays.
    const Area& shown_block() const { return shown_block_; }
    void show_block(const Area& block);

    // While it is locked the user edits nothing; the program writes as ever.
    bool locked() const { return locked_; }
    void set_locked(bool locked) { locked_ = locked; }

    // Announcements between these two are one repaint.
    void begin_batch() { ++batch_; }
    void end_batch();
    // Where the last announced change was; row 0 means anywhere.
    int changed_row() const { return changed_row_; }
    int changed_column() const { return changed_column_; }
    // The cells that it touched: one, or all between the outermost of a batch.
    const Area& changed_area() const { return changed_area_; }

    std::function<void(int row, int column)> cell_changed;
    std::function<void(KeyPress&)> key_press;      // a character typed; code is the character
    std::function<void(const Area&)> block_chosen; // several cells selected by keys
    std::function<void(MouseButton)> mouse_down;
    std::function<void(MouseButton)> mouse_up;

private:
    const Cell& cell(int row, int column) const;
    Cell& cell(int row, int column);
    void set_origin(int row, int column, Origin origin);
    void announce_cell(int row, int column);

    int rows_;
    int columns_;
    std::vector<Cell> cells_;
    std::vector<int> widths_;
    std::vector<int> heights_;
    int active_row_ = 1;
    int active_column_ = 1;
    int mouse_row_ = -1;
    int mouse_column_ = -1;
    int changed_row_ = 0;
    int changed_column_ = 0;
    Area changed_area_{1, 1, rows_, columns_};
    int anchor_row_ = 0;
    int anchor_column_ = 0;
    int batch_ = 0;
    bool dirty_ = false;
    bool locked_ = false;
    const Cell* sending_ = nullptr;
    bool entered_behind_ = false;
    Area shown_block_{1, 1, 0, 0};
};

} // namespace ecu::platform
