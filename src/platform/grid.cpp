#include "platform/grid.h"

#include "platform/leading_number.h"

#include <algorithm>
#include <stdexcept>

namespace ecu::platform {

namespace {
constexpr int default_width = 43;
constexpr int default_height = 20;
} // namespace

Grid::Grid(Form& form, std::string_view name, int rows, int columns)
    : Control(form, name, -1, Kind::grid, ""), rows_(rows), columns_(columns),
      cells_(static_cast<std::size_t>(rows) * static_cast<std::size_t>(columns),
             Cell{.text = "", .back = confirmed, .origin = Origin::none}),
      widths_(static_cast<std::size_t>(columns) + 1, default_width),
      heights_(static_cast<std::size_t>(rows) + 1, default_height) {}

const Grid::Cell& Grid::cell(int row, int column) const {
    if (row < 1 || row > rows_ || column < 1 || column > columns_) {
        throw std::out_of_range("cell (" + std::to_string(row) + ", " + std::to_string(column) + ") of " + name());
    }
    return cells_[static_cast<std::size_t>((row - 1) * columns_ + column - 1)];
}

Grid::Cell& Grid::cell(int row, int column) {
    return const_cast<Cell&>(static_cast<const Grid&>(*this).cell(row, column));
}

void Grid::announce_cell(int row, int column) {
    if (batch_ == 0 || !dirty_) {
        changed_area_ = {row, column, row, column};
    } else {
        changed_area_ = {std::min(changed_area_.first_row, row), std::min(changed_area_.first_column, column),
                         std::max(changed_area_.last_row, row), std::max(changed_area_.last_column, column)};
    }
    if (batch_ > 0) {
        dirty_ = true;
        return;
    }
    changed_row_ = row;
    changed_column_ = column;
    announce(Property::content);
}

void Grid::set_cell_text(int row, int column, std::string_view text) {
    Cell& target = cell(row, column);
    if (target.text != text) {
        target.text = text;
        announce_cell(row, column);
    }
    set_origin(row, column, after_entry(target.origin, text.empty()));
    entered_behind_ = entered_behind_ || sending_ == &target;
    if (cell_changed) {
        cell_changed(row, column);
    }
}

void Grid::set_origin(int row, int column, Origin origin) {
    Cell& target = cell(row, column);
    if (target.origin != origin) {
        target.origin = origin;
        announce_cell(row, column);
    }
}

void Grid::set_cell_back(int row, int column, std::optional<Colour> colour) {
    Cell& target = cell(row, column);
    if (target.back != colour) {
        target.back = colour;
        announce_cell(row, column);
    }
}

void Grid::confirm_cell(int row, int column, std::string_view text) {
    if (sending_ == &cell(row, column) && entered_behind_) {
        return;
    }
    const Cell* const sending = std::exchange(sending_, nullptr);
    set_cell_text(row, column, text);
    set_origin(row, column, Origin::reply);
    set_cell_back(row, column, confirmed);
    sending_ = sending;
}

void Grid::begin_sending(int row, int column) {
    sending_ = &cell(row, column);
    entered_behind_ = false;
}

void Grid::blank_cell(int row, int column) {
    set_cell_text(row, column, "");
    set_origin(row, column, Origin::unread);
    set_cell_back(row, column, pending);
}

void Grid::restore_cell(int row, int column, const Cell& state) {
    set_cell_text(row, column, state.text);
    set_origin(row, column, state.origin);
    set_cell_back(row, column, state.back);
}

void Grid::paste(const Area& block, std::string_view text) {
    Paste result;
    const auto put = [&](int row, int column, std::string_view field) {
        const std::string entry = entry_text(field);
        if (entry.empty() || column_width(column) == 0) {
            return;
        }
        if (is_number(entry)) {
            set_cell_text(row, column, entry);
            result.written.emplace_back(row, column);
        } else if (result.refused++ == 0) {
            result.first_row = row;
            result.first_column = column;
            result.first_text = entry;
        }
    };
    const auto cut = [](std::string_view& rest, char at) {
        const std::size_t end = rest.find(at);
        const std::string_view field = rest.substr(0, end);
        rest = end == std::string_view::npos ? std::string_view() : rest.substr(end + 1);
        return field;
    };
    begin_batch();
    if (text.find_first_of("\t\n") == std::string_view::npos || text.find_first_of("\t\n") + 1 == text.size()) {
        for (int row = block.first_row; row <= block.last_row; ++row) {
            for (int column = block.first_column; column <= block.last_column; ++column) {
                put(row, column, text);
            }
        }
    } else {
        for (int row = block.first_row; row <= rows_ && !text.empty(); ++row) {
            std::string_view line = cut(text, '\n');
            for (int column = block.first_column; column <= columns_ && !line.empty(); ++column) {
                put(row, column, cut(line, '\t'));
            }
        }
    }
    end_batch();
    if (pasted) {
        pasted(result);
    }
}

void Grid::show_anchor(int row, int column) {
    if (row != anchor_row_ || column != anchor_column_) {
        anchor_row_ = row;
        anchor_column_ = column;
        announce(Property::content);
    }
}

void Grid::set_column_width(int column, int width) {
    widths_.at(static_cast<std::size_t>(column)) = width;
    announce(Property::scale);
}

void Grid::set_row_height(int row, int height) {
    heights_.at(static_cast<std::size_t>(row)) = height;
    announce(Property::scale);
}

void Grid::set_active_cell(int row, int column) {
    if (row != active_row_ || column != active_column_) {
        active_row_ = row;
        active_column_ = column;
        announce(Property::focus);
    }
}

void Grid::show_block(const Area& block) {
    shown_block_ = block;
    announce(Property::value);
}

void Grid::end_batch() {
    if (--batch_ == 0 && dirty_) {
        dirty_ = false;
        changed_row_ = changed_column_ = 0;
        announce(Property::content);
    }
}

} // namespace ecu::platform
