// The basic mapping window: reads the four maps and three boxes at each opening, writes back what was changed in a
// fixed order, shades the maps, and shows where on them the engine runs.
#pragma once

#include "calibration/parameters.h"
#include "calibration/scales.h"
#include "editing/editing_rules.h"
#include "maps/frm_3d.h"
#include "maps/shading.h"
#include "maps/surface_window.h"
#include "messages/live_data.h"
#include "shell/navigation.h"

#include <memory>

namespace ecu::maps {

using namespace editing; // what all windows of maps are made of

class BasicMapping {
public:
    // `TPS_mapped` is the configuration's box that makes the throttle the load of the fuel and ignition maps.
    BasicMapping(const platform::Ports& ports, link::SharedState& state, link::EcuComm& comm,
                 const calibration::Scales& scales, const messages::EcuLiveData& live, Frm3d& frm_3d,
                 const platform::CheckBox& TPS_mapped, shell::Navigation& navigation, BlockSelection& selection,
                 SurfaceWindow& surface_window, MapCellColours& map_cell_colours);

    void clear_all_entries();
    void label_map_axis(int index);
    void shade_fuel_map(float low, float high) { shade(0, low, high); }
    void shade_ign_map(float low, float high) { shade(1, low, high); }
    void shade_tps_map(float low, float high) { shade(2, low, high); }
    void shade_tps_mix(float low, float high) { shade(3, low, high); }
    void update_changed_entries();
    void show_selected_map_graph();
    // The read-out and the markers, on each pass of the scheduler with this view in front.
    void refresh_live();

private:
    void wire_boxes();
    void wire_grids();
    void open();
    void prepare_window();
    bool read_maps(int opening);
    bool read_map(std::size_t map, int opening);
    void allow_editing(bool allowed);
    void close();
    void unloading();
    void shade(std::size_t map, float low, float high);
    void shade_all();
    void shade_behind_update();
    bool replaced(int opening) const { return opening != opening_; }
    void write_pending(int opening);
    void write_box(const calibration::Parameter& row, platform::TextBox& box, int opening);
    void write_map(std::size_t map, int opening);
    void show_map(int index);
    void show_graph(std::size_t map);
    void redraw_graph();
    void cell_changed(std::size_t map, int row, int column);
    void reset_map(std::size_t map, std::string_view question);
    void move_markers();
    void note_not_taken(); // after a value was sent
    void note_pending();
    void show_pending_count();

    const platform::Ports& ports_;
    link::SharedState& state_;
    const calibration::Scales& scales_;
    const messages::EcuLiveData& live_;
    Frm3d& form_;
    const platform::CheckBox& TPS_mapped_;
    shell::Navigation& navigation_;
    BlockSelection& selection_;
    SurfaceWindow& surface_window_;
    MapCellColours& map_cell_colours_;
    EditorLink link_;

    std::int16_t map_view_index_ = 0;
    bool loading_maps_ = false;   // no graph is drawn while the opening read runs
    bool exit_requested_ = false; // stops a running read; an Update runs to its end behind the closed window
    bool window_activated_ = false;
    bool updating_ = false;
    bool update_again_ = false; // asked for during an Update
    // Cells written during an Update since it passed them, by map and table index: still pending when it ends.
    std::array<std::array<bool, 256>, 4> behind_update_{};
    int not_taken_ = 0; // values of the last Update that were refused or had no accepted reply
    // Any number of cell changes costs one drawing and one count, with the next events.
    bool redraw_posted_ = false;
    bool count_posted_ = false;
    platform::Grid* filling_ = nullptr; // the grid that a read fills; it and the progress are shown at each tick
    std::string progress_;
    std::unique_ptr<platform::Timer> paint_timer_;
    int opening_ = 0; // tells a read or an Update that its values are gone: opened again, or closed with the link lost
};

} // namespace ecu::maps
