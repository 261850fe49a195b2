#include "editing/row_boxes.h"

#include "calibration/description.h"

namespace ecu::editing {

namespace {

constexpr std::size_t no_box = static_cast<std::size_t>(-1) / 2; // past any box, also with an element added

} // namespace

RowBoxes::RowBoxes(platform::Form& form) {
    first_.fill(no_box);
    first_of_table_.fill(no_box);
    for (const calibration::Parameter& row : calibration::parameters) {
        if (row.shows_text() && row.control.form == form.name()) {
            first_.at(index_of(row)) = boxes_.size();
            const std::string tip = calibration::tool_tip(row);
            for (int i = 0; i < row.count; ++i) {
                add(form, row.control.name, row.is_vector() ? i : row.control.index, tip);
            }
        }
    }
    for (const calibration::Table& row : calibration::tables) {
        if (row.shape == calibration::TableShape::nine_boxes && row.form == form.name()) {
            first_of_table_.at(index_of(row)) = boxes_.size();
            const std::string tip = calibration::tool_tip(row);
            for (int i = 0; i < row.cells(); ++i) {
                add(form, row.control, i, tip);
            }
        }
    }
}

void RowBoxes::add(platform::Form& form, std::string_view name, int index, std::string_view tip) {
    boxes_.emplace_back(form, name, "", index).set_tool_tip(tip);
}

} // namespace ecu::editing
