// The marks along the axes of the 16 by 16 maps: engine speed below, manifold pressure or throttle beside. Both are
// whole numbers, cut rather than rounded.
#pragma once

#include "calibration/scales.h"

#include <string>

namespace ecu::maps {

// At share 0 to 1 of the load axis, from below, in kPa or per cent of throttle.
inline long load_mark(double share, bool pressure, const calibration::Scales& scales) {
    return pressure ? static_cast<long>(share * double{scales.map_span} + double{scales.map_base})
                    : static_cast<long>(share * 100);
}
inline long speed_mark(double share, const calibration::Scales& scales) { // rpm
    return static_cast<long>(share * double{scales.full_scale_rpm});
}
// "96 kPa, 625 rpm": a cell stands at the mark before it.
inline std::string cell_place(int row, int column, bool pressure, const calibration::Scales& scales) {
    return std::to_string(load_mark((16 - row) / 16.0, pressure, scales)) + (pressure ? " kPa, " : " % TPS, ") +
           std::to_string(speed_mark((column - 1) / 16.0, scales)) + " rpm";
}

} // namespace ecu::maps
