#include "platform/list.h"

#include <algorithm>

namespace ecu::platform {

void List::set_heading(std::size_t column, std::string_view text) {
    headings_.at(column) = text;
    announce(Property::scale);
}

void List::set_rows(std::vector<Row> rows) {
    rows_ = std::move(rows);
    for (Row& row : rows_) {
        row.cells.resize(headings_.size());
    }
    current_ = std::min(current_, static_cast<int>(rows_.size()) - 1);
    announce(Property::content);
}

void List::set_cell(std::size_t row, std::size_t column, std::string_view text) {
    rows_.at(row).cells.at(column) = text;
    announce(Property::content);
}

void List::choose(int row) {
    row = std::clamp(row, -1, static_cast<int>(rows_.size()) - 1);
    if (row != current_) {
        current_ = row;
        announce(Property::value);
        if (chosen) {
            chosen();
        }
    }
}

void List::tick(int row, bool ticked) {
    if (row < 0 || row >= static_cast<int>(rows_.size()) || !rows_[static_cast<std::size_t>(row)].tickable ||
        rows_[static_cast<std::size_t>(row)].ticked == ticked) {
        return;
    }
    rows_[static_cast<std::size_t>(row)].ticked = ticked;
    announce(Property::checked);
    if (ticks_changed) {
        ticks_changed();
    }
}

void List::activate(int row) {
    if (row >= 0 && row < static_cast<int>(rows_.size()) && activated) {
        choose(row);
        activated(row);
    }
}

} // namespace ecu::platform
