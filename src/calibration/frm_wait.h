// The progress window of a calibration transfer. percent_comp(0) is the track, percent_comp(1) the bar in it; their
// widths are in the form's own units.
#pragma once

#include "platform/control.h"
#include "platform/form.h"

namespace ecu::calibration {

struct FrmWait {
    platform::Form form{"frm_wait", "ECU"};
    platform::Label tx_bytes{form, "tx_bytes"};
    platform::Label rx_bytes{form, "rx_bytes"};
    platform::Label update_info{form, "update_info"};
    platform::Shape percent_track{form, "percent_comp", 0};
    platform::Shape percent_bar{form, "percent_comp", 1};

    FrmWait() {
        percent_track.place(0, 0, 6000, 255);
        percent_bar.place(0, 0, 30, 255);
        form.on_activate = [this] { update_info.set_text(""); };
        form.on_close = [] {}; // the transfer cannot be cancelled
    }
};

} // namespace ecu::calibration
