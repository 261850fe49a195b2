#include "controller/memory.h"

#include "calibration/scalars.h"
#include "calibration/tables.h"
#include "calibration/vectors.h"

#include <algorithm>
#include <stdexcept>
#include <string>

namespace ecu::controller {

namespace {

constexpr std::size_t parameter_count = calibration::scalars.size() + calibration::vectors.size();

constexpr std::array<ParameterSlot, parameter_count> lay_out_slots() {
    std::array<ParameterSlot, parameter_count> slots{};
    std::size_t used = 0;
    std::size_t at = 0;
    const auto add = [&](const calibration::Parameter& row) {
        slots[at++] = {row.key, used, row.count};
        used += row.count;
    };
    for (const calibration::Parameter& row : calibration::scalars) {
        add(row);
    }
    for (const calibration::Parameter& row : calibration::vectors) {
        add(row);
    }
    return slots;
}

constexpr std::array<ParameterSlot, parameter_count> slots = lay_out_slots();
constexpr std::size_t slots_used = slots.back().first + slots.back().elements;

} // namespace

ControllerMemory::ControllerMemory() : cells_(0x10000), values_(slots_used) { load_default_calibration(*this); }

std::span<const ParameterSlot> ControllerMemory::parameters() { return slots; }

const ParameterSlot& ControllerMemory::parameter(std::string_view key) {
    const auto found = std::ranges::find(slots, key, &ParameterSlot::key);
    if (found == slots.end()) {
        throw std::out_of_range("no parameter has the key " + std::string(key));
    }
    return *found;
}

std::size_t ControllerMemory::table_at(std::string_view key) {
    const auto found = std::ranges::find(calibration::tables, key, &calibration::Table::key);
    if (found == calibration::tables.end()) {
        throw std::out_of_range("no table has the key " + std::string(key));
    }
    return found->base;
}

} // namespace ecu::controller
