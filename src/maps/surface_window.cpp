#include "maps/surface_window.h"

#include <algorithm>
#include <array>

namespace ecu::maps {

namespace {

struct Shown {
    int kind;
    std::string_view text;
};
constexpr std::array<Shown, 5> shown_maps{
    {{surface::fuel, "Fuel map: engine speed from left to right, manifold pressure from front to back"},
     {surface::ignition, "Ignition map: engine speed from left to right, manifold pressure from front to back"},
     {surface::tps_fuel, "TPS fuel map: engine speed from left to right, throttle from front to back"},
     {surface::tps_mix, "TPS mix map: engine speed from left to right, throttle from front to back"},
     {surface::lambda, "Lambda set points: engine speed from left to right, manifold pressure from front to back"}}};

} // namespace

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
    const auto shown = std::ranges::find(shown_maps, kind, &Shown::kind);
    form_.shown_map.set_text(shown == shown_maps.end() ? "" : shown->text);
    graphing_.draw_surface(kind);
}

} // namespace ecu::maps
