// One correction curve on its page: title, graph, nine boxes and the captions of its axis. Its boxes are a row of a
// spreadsheet: a copied row or column pasted into one of them goes on over the boxes to its right.
#pragma once

#include "desktop/form_window.h"
#include "maps/correction_curves.h"

namespace ecu::desktop {

QWidget* make_curve_panel(FormWindow& window, maps::Frm2d& form, const maps::CorrectionCurve& curve);

} // namespace ecu::desktop
