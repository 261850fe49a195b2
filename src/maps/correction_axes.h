// The captions under the nine points of the correction tables: from the sensor's span, the engine's rpm range and the
// fixed ranges of temperature, aux input and barometric pressure. Written at the start and at every opening.
#pragma once

#include "calibration/scales.h"
#include "maps/frm_2d.h"

namespace ecu::maps {

void label_correction_axes(Frm2d& form, const calibration::Scales& scales);

} // namespace ecu::maps
