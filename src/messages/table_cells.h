// Files cells of table memory by their address: the byte into the image, its shown value into the cell or box of the
// table's editor, which turns white. This is the only place where a table's yellow is cleared.
#pragma once

#include "calibration/calibration_image.h"
#include "platform/form.h"
#include "platform/grid.h"

#include <span>
#include <vector>

namespace ecu::messages {

class TableCells {
public:
    // Throws std::logic_error naming the first control that the forms lack.
    TableCells(const platform::FormRegistry& forms, calibration::CalibrationImage& image,
               const calibration::Scales& scales);

    // An address outside all tables is ignored.
    void store_table_cell(int address, std::uint8_t value);
    // Consecutive cells from an address up; the editor's grid repaints once.
    void store_block(int address, std::span<const std::uint8_t> values);

private:
    struct Editor {
        platform::Grid* grid = nullptr;
        std::vector<platform::TextBox*> boxes;
    };

    calibration::CalibrationImage& image_;
    const calibration::Scales& scales_;
    std::vector<Editor> editors_; // in the order of the tables
};

} // namespace ecu::messages
