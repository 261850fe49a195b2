// The window of the surface graph: draws the last kind anew when the view, the scale or its size changes.
#pragma once

#include "maps/graphing.h"

#include <string_view>

namespace ecu::maps {

class SurfaceWindow {
public:
    SurfaceWindow(Frm3dGraph& frm_3d_graph, Graphing& graphing);

    bool visible() const { return form_.form.visible(); }
    void show() { form_.form.show(); }
    void raise() { form_.form.raise(); }
    void hide() { form_.form.hide(); }
    // Writes the scale and draws once.
    void draw(int kind, std::string_view low, std::string_view high);

private:
    void redraw();

    Frm3dGraph& form_;
    Graphing& graphing_;
    int kind_ = surface::fuel; // the last drawn in this window; a surface elsewhere may have been drawn since
    bool filling_ = false;     // the boxes are being written, one drawing follows
};

} // namespace ecu::maps
