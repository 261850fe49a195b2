// What a row tells people of an item: the range and steps of an entry, worked out from limits, conversion and mask,
// and the tool tip made of it. Screens and help read the same.
#pragma once

#include "calibration/parameters.h"

#include <string>

namespace ecu::calibration {

// "-16 to 47.75 deg, in steps of 0.25; beyond that the limit is sent". Empty for switches, and for values whose range
// hangs on the sensors that are fitted.
std::string entry_range(const Parameter& row);
std::string entry_range(const Table& row);

// What element `i` is called where several stand together: "Base Angle 5", "Filter Rate".
std::string element_label(const Parameter& row, int i);
std::string element_label(const Table& row, int i);

// The row's own tip as it stands; else what the item is, and its range on a line of its own.
std::string tool_tip(const Parameter& row);
std::string tool_tip(const Table& row);

} // namespace ecu::calibration
