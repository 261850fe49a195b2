#include "maps/block_modifier.h"

#include "platform/display_mask.h"

#include <algorithm>
#include <optional>

namespace ecu::maps {

namespace {

float number_of(const std::string& text) { return static_cast<float>(platform::leading_number(text)); }

// No result leaves the cell as it is.
std::optional<float> result_of(CellOperation operation, float x, const FrmCellblockModifier& form) {
    switch (operation) {
    case CellOperation::cancel:
        return std::nullopt;
    case CellOperation::multiply:
        return x * number_of(form.multiply.text());
    case CellOperation::add:
        return x + number_of(form.Add.text());
    case CellOperation::set_all:
        return number_of(form.set_value.text());
    case CellOperation::subtract:
        return x - number_of(form.Add.text());
    case CellOperation::divide: {
        const float operand = number_of(form.multiply.text());
        return operand == 0 ? std::nullopt : std::optional(x / operand);
    }
    }
    return std::nullopt;
}

// Where the block lies on the axes, from its lowest corner to its highest, and what of it has no value.
std::string in_units(const platform::Grid& grid, const platform::Grid::Area& block) {
    std::string text;
    if (grid.place) {
        const std::string low = grid.place(block.last_row, block.first_column);
        const std::string high = grid.place(block.first_row, block.last_column);
        text = "\n" + (low == high ? low : low + " to " + high);
    }
    int unread = 0;
    for (int row = block.first_row; row <= block.last_row; ++row) {
        for (int column = block.first_column; column <= block.last_column; ++column) {
            unread += grid.cell_unread(row, column) ? 1 : 0;
        }
    }
    return text + (unread == 0 ? "" : "\n" + std::to_string(unread) + " not read: only Set All changes them");
}

} // namespace

BlockModifier::BlockModifier(const platform::Ports& ports, link::SharedState& state,
                             const platform::FormRegistry& registry, FrmCellblockModifier& form,
                             BlockSelection& selection)
    : ports_(ports), state_(state), form_(form), selection_(selection) {
    std::ranges::transform(block_tables, grids_.begin(), [&](const BlockTable& table) {
        return &registry.get<platform::Grid>(table.form, table.grid);
    });
    for (std::size_t k = 0; k < form_.cell_operation.size(); ++k) {
        form_.cell_operation[k].clicked = [this, k] { run(static_cast<CellOperation>(k)); };
    }
    for (const auto& [box, operation] : {std::pair{&form_.multiply, CellOperation::multiply},
                                         {&form_.Add, CellOperation::add},
                                         {&form_.set_value, CellOperation::set_all}}) {
        box->key_down = [this, operation](platform::KeyPress& press) { // the first button beside the box
            if (press.code == platform::key::enter) {
                press.code = 0;
                form_.cell_operation[static_cast<std::size_t>(operation)].press();
            }
        };
    }
    form_.form.on_close = [this] { form_.form.hide(); };
    selection.open_modifier = [this] { open(); };
    selection.close_modifier = [this] { form_.form.hide(); };
}

void BlockModifier::open() {
    const auto table = std::ranges::find(block_tables, selection_.block_table_id, &BlockTable::id);
    if (table != block_tables.end()) {
        const auto range = [](const char* name, int first, int last) {
            return name + std::string(first < last ? "s " + std::to_string(first) + " to " : " ") +
                   std::to_string(last);
        };
        const platform::Grid& grid = *grids_[static_cast<std::size_t>(table - block_tables.begin())];
        const auto block = selection_.within(grid);
        const int cells = block.rows() * block.columns();
        form_.block_extent.set_text(std::string(table->title) + ", " +
                                    (cells == 0 ? "no cells"
                                                : range("row", block.first_row, block.last_row) + ", " +
                                                      range("column", block.first_column, block.last_column) + ": " +
                                                      std::to_string(cells) + (cells == 1 ? " cell" : " cells") +
                                                      in_units(grid, block)));
    }
    form_.form.show();
    form_.form.raise();
}

void BlockModifier::run(CellOperation operation) {
    state_.reset_comm_watch = true;
    if (operation != CellOperation::cancel &&
        ask_caution(ports_.dialogs, "This operation will modify a group of cells and cannot be undone. Continue?")) {
        apply(operation);
    }
    form_.form.hide();
}

void BlockModifier::apply(CellOperation operation) {
    const auto table = std::ranges::find(block_tables, selection_.block_table_id, &BlockTable::id);
    if (table == block_tables.end()) {
        return;
    }
    platform::Grid& grid = *grids_[static_cast<std::size_t>(table - block_tables.begin())];
    if (grid.locked()) { // it is being read
        return;
    }
    const Repaint repaint(grid);
    for (int i = 0; i < cells_of(grid); ++i) {
        if (!selection_.contains(row_of(grid, i), column_of(grid, i)) ||
            (operation != CellOperation::set_all && grid.cell_unread(row_of(grid, i), column_of(grid, i)))) {
            continue; // what was never read is no operand
        }
        if (const auto result = result_of(operation, number_of(text_at(grid, i)), form_)) {
            write_at(grid, i, platform::masked(*result, table->mask));
        }
    }
}

} // namespace ecu::maps
