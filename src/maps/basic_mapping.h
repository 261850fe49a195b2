// The basic mapping window: reads the four maps and three boxes at each opening, writes back what was changed in a
// fixed order, shades the maps, and shows where on them the engine runs.
#pragma once

#include "calibration/parameters.h"
#include "calibration/scales.h"
#include "editing/editing_rules.h"
#include "editing/editor.h"
#include "maps/frm_3d.h"
#include "maps/shading.h"
#include "maps/surface_window.h"
#include "messages/live_data.h"
#include "shell/navigation.h"

namespace ecu::maps {

using namespace editing; // what all windows of maps are made of

class BasicMapping {
public:
    // `TPS_mapped` is the configuration's box that makes the throttle the load of the fuel and ignition maps.
    BasicMapping(const platform::Ports& ports, link::SharedState& state, link::EcuComm& comm,
                 const calibration::Scales& scales, const messages::EcuLiveData& live, Frm3d& frm_3d,
                 const platform::CheckBox& TPS_mapped, shell::Navigation& navigation, BlockSelection& selection,
                 SurfaceWindow& surface_window, MapCellColours& map_cell_colours);

    void clear_all_entries() { editor_.blank_all(); }
    void label_map_axis(int index);
    void shade_fuel_map(float low, float high) { shade(0, low, high); }
    void shade_ign_map(float low, float high) { shade(1, low, high); }
    void shade_tps_map(float low, float high) { shade(2, low, high); }
    void shade_tps_mix(float low, float high) { shade(3, low, high); }
    void update_changed_entries() { editor_.update(); }
    Editor& editor() { return editor_; }
    // Before a map is overwritten with its default, which the user has confirmed; false leaves it. May be empty.
    std::function<bool(const calibration::Table&)> before_reset;
    void show_selected_map_graph();
    // The read-out and the markers, on each pass of the scheduler with this view in front.
    void refresh_live();

private:
    void wire_boxes();
    void wire_grids();
    void prepare_window();
    bool read_everything();
    void allow_menus(bool allowed);
    void shade(std::size_t map, float low, float high);
    void shade_all();
    void show_map(int index);
    void show_graph(std::size_t map);
    void reset_map(std::size_t map, std::string_view question);
    void reveal(const platform::Control& control);
    void move_markers();

    const platform::Ports& ports_;
    const calibration::Scales& scales_;
    const messages::EcuLiveData& live_;
    Frm3d& form_;
    const platform::CheckBox& TPS_mapped_;
    BlockSelection& selection_;
    SurfaceWindow& surface_window_;
    MapCellColours& map_cell_colours_;
    Editor editor_;

    std::int16_t map_view_index_ = 0;
};

} // namespace ecu::maps
