#include "controller/memory.h"

#include <algorithm>

namespace ecu::controller {

ControllerMemory::ControllerMemory() : cells_(0x10000), values_(calibration::element_count) {
    load_default_calibration(*this);
}

void ControllerMemory::clear_cells() { std::ranges::fill(cells_, std::uint8_t{0}); }

} // namespace ecu::controller
