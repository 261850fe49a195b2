// What the controller keeps over a restart: 64 KiB of table memory, and the raw value of every parameter, each element
// of a vector in a slot of its own. It starts with the calibration of a turbocharged four-cylinder engine. Values are
// stored as sent; nothing is checked, since the console's limits are the console's affair.
#pragma once

#include "calibration/parameters.h"

#include <cstddef>
#include <cstdint>
#include <span>
#include <string_view>
#include <vector>

namespace ecu::controller {

// Where the values of a parameter stand, elements side by side. An unknown key does not compile.
consteval std::size_t slot(std::string_view key) { return calibration::first_element(calibration::parameter(key)); }
// The address of a table's first cell.
consteval std::size_t table_base(std::string_view key) { return calibration::table(key).base; }

class ControllerMemory {
public:
    ControllerMemory();

    std::uint8_t cell(std::size_t address) const { return cells_[address & 0xFFFFU]; }
    void store_cell(std::size_t address, std::uint8_t value) { cells_[address & 0xFFFFU] = value; }
    std::uint16_t value(std::size_t slot) const { return values_[slot]; }
    void store(std::size_t slot, std::uint16_t value) { values_[slot] = value; }

    void clear_cells();
    std::span<const std::uint8_t> cells() const { return cells_; }

    bool operator==(const ControllerMemory&) const = default;

private:
    std::vector<std::uint8_t> cells_;
    std::vector<std::uint16_t> values_;
};

// Writes the four-cylinder calibration over everything; cells outside the tables become 0.
void load_default_calibration(ControllerMemory& memory);

} // namespace ecu::controller
