#include "maps/surface_window.h"

namespace ecu::maps {

SurfaceWindow::SurfaceWindow(Frm3dGraph& frm_3d_graph, Graphing& graphing) : form_(frm_3d_graph), graphing_(graphing) {
    form_.form.on_load = [this] {
        form_.HScroll1.set_value(60);
        form_.VScroll1.set_value(30);
    };
    const auto draw_again = [this] { redraw(); };
    form_.HScroll1.changed = draw_again;
    form_.VScroll1.changed = draw_again;
    form_.high_scale.changed = draw_again;
    form_.low_scale.changed = draw_again;
    form_.Picture1.resized = [this] {
        if (visible()) {
            graphing_.draw_surface(kind_);
        }
    };
}

void SurfaceWindow::redraw() {
    if (visible() && !filling_) {
        graphing_.draw_surface(graphing_.last_surface_kind());
    }
}

void SurfaceWindow::draw(int kind, std::string_view low, std::string_view high) {
    form_.form.load(); // its view must stand before the drawing
    filling_ = true;
    form_.low_scale.set_text(low);
    form_.high_scale.set_text(high);
    filling_ = false;
    kind_ = kind;
    graphing_.draw_surface(kind);
}

} // namespace ecu::maps
