// The text boxes of a form, made from the rows of the parameter table: one for every element that the form shows as
// text, under the name that its row gives, with the row's tool tip. A new row brings its box along.
#pragma once

#include "calibration/parameters.h"
#include "platform/form.h"

#include <deque>

namespace ecu::editing {

class RowBoxes {
public:
    // All scalars and vectors of `form`, and its tables of nine boxes.
    explicit RowBoxes(platform::Form& form);

    // Element `i`; throws std::out_of_range when the form has no box of the row.
    platform::TextBox& operator()(const calibration::Parameter& row, int i = 0) {
        return at(first_.at(index_of(row)), i);
    }
    platform::TextBox& operator()(const calibration::Table& row, int i = 0) {
        return at(first_of_table_.at(index_of(row)), i);
    }
    auto begin() { return boxes_.begin(); }
    auto end() { return boxes_.end(); }

private:
    platform::TextBox& at(std::size_t first, int i) { return boxes_.at(first + static_cast<std::size_t>(i)); }
    void add(platform::Form& form, std::string_view name, int index, std::string_view tip);

    std::deque<platform::TextBox> boxes_; // where they stand for good: the form and the decoders refer to them
    std::array<std::size_t, calibration::parameters.size()> first_{};
    std::array<std::size_t, calibration::tables.size()> first_of_table_{};
};

} // namespace ecu::editing
