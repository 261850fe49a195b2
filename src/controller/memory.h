// What the controller keeps over a restart: 64 KiB of table memory, and the raw value of every parameter, each element
// of a vector in a slot of its own. It starts with the calibration of a turbocharged four-cylinder engine. Values are
// stored as sent; nothing is checked, since the console's limits are the console's affair.
#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <span>
#include <string_view>
#include <vector>

namespace ecu::controller {

// A parameter's name in the setup file, where its values stand, and how many it has: 1, or a vector's elements.
struct ParameterSlot {
    std::string_view key;
    std::size_t first;
    std::size_t elements;
};

class ControllerMemory {
public:
    ControllerMemory();

    std::uint8_t cell(std::size_t address) const { return cells_[address & 0xFFFFU]; }
    void store_cell(std::size_t address, std::uint8_t value) { cells_[address & 0xFFFFU] = value; }

    std::uint16_t value(std::size_t slot) const { return values_[slot]; }
    void store(std::size_t slot, std::uint16_t value) { values_[slot] = value; }

    // All parameters in table order.
    static std::span<const ParameterSlot> parameters();
    // std::out_of_range for a key that there is not.
    static const ParameterSlot& parameter(std::string_view key);
    static std::size_t slot_of(std::string_view key) { return parameter(key).first; }
    // The first address of a table; std::out_of_range for a key that there is not.
    static std::size_t table_at(std::string_view key);

    std::span<std::uint8_t> cells() { return cells_; }
    std::span<const std::uint8_t> cells() const { return cells_; }
    std::span<const std::uint16_t> values() const { return values_; }

    bool operator==(const ControllerMemory&) const = default;

private:
    std::vector<std::uint8_t> cells_;
    std::vector<std::uint16_t> values_;
};

// Writes the four-cylinder calibration over everything; cells outside the tables become 0.
void load_default_calibration(ControllerMemory& memory);

} // namespace ecu::controller
