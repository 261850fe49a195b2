#include "messages/table_cells.h"

#include "calibration/encoding.h"

namespace ecu::messages {

using calibration::Table;
using calibration::TableShape;

TableCells::TableCells(const platform::FormRegistry& forms, calibration::CalibrationImage& image,
                       const calibration::Scales& scales)
    : image_(image), scales_(scales) {
    for (const Table& row : calibration::tables) {
        Editor& editor = editors_.emplace_back();
        if (row.shape == TableShape::nine_boxes) {
            for (int i = 0; i < row.cells(); ++i) {
                editor.boxes.push_back(&forms.get<platform::TextBox>(row.form, row.control, i));
            }
        } else {
            editor.grid = &forms.get<platform::Grid>(row.form, row.control);
        }
    }
}

void TableCells::store_table_cell(int address, std::uint8_t value) {
    const Table* row = calibration::table_at(address);
    if (row == nullptr) {
        return;
    }
    image_.store_cell(address, value);
    const int i = address - row->base;
    const std::string text = calibration::shown(*row, value, scales_);
    const Editor& editor = editors_[calibration::index_of(*row)];
    if (editor.grid != nullptr) {
        editor.grid->confirm_cell(calibration::map_row(*row, i), calibration::map_col(*row, i), text);
    } else {
        editor.boxes[static_cast<std::size_t>(i)]->confirm(text);
    }
}

void TableCells::store_block(int address, std::span<const std::uint8_t> values) {
    const Table* row = calibration::table_at(address);
    platform::Grid* grid = row != nullptr ? editors_[calibration::index_of(*row)].grid : nullptr;
    if (grid != nullptr) {
        grid->begin_batch();
    }
    for (const std::uint8_t value : values) {
        store_table_cell(address++, value);
    }
    if (grid != nullptr) {
        grid->end_batch();
    }
}

} // namespace ecu::messages
