// The window that draws a map as an oblique surface: the picture, two scroll bars for the view, two boxes for the
// scale.
#pragma once

#include "platform/form.h"
#include "platform/picture.h"

namespace ecu::maps {

struct Frm3dGraph {
    platform::Form form{"frm_3d_graph", "Surface Graph"};

    platform::Label shown_map{form, "shown_map"}; // which map, and what its axes are
    platform::Picture Picture1{form, "Picture1"};
    platform::ScrollBar HScroll1{form, "HScroll1", 0, 100, 0};
    platform::ScrollBar VScroll1{form, "VScroll1", 0, 100, 0};
    platform::Label Label1{form, "Label1", "High Scale"};
    platform::TextBox high_scale{form, "high_scale"};
    platform::Label Label2{form, "Label2", "Low Scale"};
    platform::TextBox low_scale{form, "low_scale"};
};

} // namespace ecu::maps
