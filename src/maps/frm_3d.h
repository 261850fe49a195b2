// The basic mapping window: four 16 by 16 maps in one place, three single values, the legend of the shading, and the
// live read-out with its two markers. The cell's text is the only working copy of a value, its background the state.
#pragma once

#include "platform/form.h"
#include "platform/grid.h"
#include "platform/picture.h"

#include <array>

namespace ecu::maps {

// The eight fixed colours of the shading, index 0 for the highest eighth of a map's range.
inline constexpr std::array<platform::Colour, 8> shading_colours{{{0xFF, 0x80, 0x80},
                                                                  {0xFF, 0x9F, 0x9F},
                                                                  {0xFF, 0xC0, 0xC0},
                                                                  {0xFC, 0xD7, 0xBE},
                                                                  {0xFF, 0xFF, 0xC0},
                                                                  {0xDE, 0xEE, 0xBD},
                                                                  {0xC0, 0xFF, 0xC0},
                                                                  {0x80, 0xFF, 0x80}}};

struct Frm3d {
    platform::Form form{"frm_3d", "Basic Mapping"};

    platform::MenuItem menufile{form, "menufile", "&File"};
    platform::MenuItem menufileexit{menufile, "menufileexit", "e&xit"};
    platform::MenuItem menuupdate{form, "menuupdate", "&Update"};
    platform::MenuItem menuresetmap{form, "menuresetmap", "&Reset map"};
    platform::MenuItem menuresetmap_fuel{menuresetmap, "menuresetmap_fuel", "&Fuel"};
    platform::MenuItem menuresetmap_Ign{menuresetmap, "menuresetmap_Ign", "&Ignition"};
    platform::MenuItem menu_autotune{form, "menu_autotune", "&Autotune"};
    platform::MenuItem menu_mon{form, "menu_mon", "&Monitor"};
    platform::MenuItem menu_dash{form, "menu_dash", "&Dashboard"};
    platform::MenuItem menu_tools{form, "menu_tools", "&Config."};
    platform::MenuItem menu_2d{form, "menu_2d", "&Additional Map"};
    platform::MenuItem menu_sup{form, "menu_sup", "&GPO Drv."};
    platform::MenuItem menu_plot{form, "menu_plot", "&Plotter"};
    platform::MenuItem menu_diag{form, "menu_diag", "D&iagnostics"};

    platform::ControlArray<platform::OptionButton, 4> show_map_type{
        form, "show_map_type", {"Show Fuel Map", "Show Ignition Map", "Show TPS Fuel Map", "Show TPS Mix Map"}};

    // All four lie in the same place; one is visible at a time.
    platform::Grid inj_map{form, "inj_map", 16, 16};
    platform::Grid ign_map{form, "ign_map", 16, 16};
    platform::Grid TPS_map{form, "TPS_map", 16, 16};
    platform::Grid TPS_mix{form, "TPS_mix", 16, 16};

    platform::ControlArray<platform::TextBox, 2> ecu_pgm{form, "ecu_pgm"}; // fuel scaler and fuel offset, ms
    platform::TextBox tps_rpm{form, "tps_rpm"};
    platform::ControlArray<platform::TextBox, 8> bk_color{form, "bk_color", "1.00"};

    platform::ControlArray<platform::Label, 9> Label6{form, "Label6"};  // along the rpm axis
    platform::ControlArray<platform::Label, 17> Label5{form, "Label5"}; // along the load axis, 0 at the bottom
    platform::ControlArray<platform::Label, 1> Map_dims{form, "Map_dims"};
    platform::Label Label2{form, "Label2", "Revs Per Minute"};

    platform::Label base_timing{form, "base_timing"};
    platform::Label control_map_gain{form, "control_map_gain"};
    platform::Label control_ego_gain{form, "control_ego_gain"};
    platform::Label control_lambda{form, "control_lambda"};
    platform::Label AF_condition{form, "AF_condition"};
    platform::Label Inj_pulse_width{form, "Inj_pulse_width"};
    platform::ControlArray<platform::Label, 1> mapping_rpm{form, "mapping_rpm"};

    // The ends of the two axes and the markers that slide between them, in axis_length units.
    static constexpr int axis_length = 4000;
    platform::Shape map_beg{form, "map_beg"};
    platform::Shape map_end{form, "map_end"};
    platform::Shape rpm_beg{form, "rpm_beg"};
    platform::Shape rpm_end{form, "rpm_end"};
    platform::Shape map_p_ptr{form, "map_p_ptr"};
    platform::Shape map_r_ptr{form, "map_r_ptr"};

    platform::Picture Picture1{form, "Picture1"};

    platform::Button show_this_graph{form, "show_this_graph", "Show Graph"};
    platform::Button read_again{form, "read_again", "Read again"};
    platform::Button update_button{form, "Command3d2", "Update"};
    platform::Button exit_button{form, "Command3d1", "Exit"};
    platform::Label show_demo_mode{form, "show_demo_mode", "DEMO MODE!"};
    platform::Label map_status{form, "map_status"}; // progress of the opening read, then the count of pending values

    // The grids by map_view_index.
    const std::array<platform::Grid*, 4> grids{&inj_map, &ign_map, &TPS_map, &TPS_mix};

    Frm3d() {
        constexpr std::string_view gain_tip =
            "This 3D map allows you to configure gain multipliers, which are applied to the MAP/TPS sensor as the "
            "engine load indicator.  Values greater than 1 will inject more fuel, values less than 1 will inject less "
            "fuel.";
        inj_map.set_tool_tip(gain_tip);
        ign_map.set_tool_tip("This 3D map allows you to set your ignition timing.  Positive values are BTDC, negative "
                             "values are ATDC.");
        TPS_map.set_tool_tip("This 3D map allows you to configure a TPS based mapping which is mixed with the normal "
                             "fuel map.");
        TPS_mix.set_tool_tip("This 3D map allows you to configure the percentage (0 to 100) of the TPS based map to be "
                             "used with the normal fuel map.");
        for (platform::Grid* grid : grids) {
            grid->set_visible(grid == &inj_map);
        }
        for (platform::TextBox& box : ecu_pgm) {
            box.set_tool_tip("The higher this number, the more fuel that will be injected under given conditions");
        }
        tps_rpm.set_tool_tip("This is the RPM at which the TPS PW and %TPS Mix mapping begins to opperate.");
        for (std::size_t i = 0; i < shading_colours.size(); ++i) {
            bk_color[i].set_back_colour(shading_colours[i]);
            bk_color[i].set_fore_colour(shading_colours[i]); // the text says nothing
        }
        map_beg.place(0, axis_length, 0, 0);
        map_p_ptr.place(0, axis_length, 0, 0);
        rpm_end.place(axis_length, 0, 0, 0);
        show_this_graph.set_tool_tip("Click here to show the current map as a surface map.");
        read_again.set_tool_tip("Click to read the values that the controller has not given yet");
        update_button.set_tool_tip("Click to update modified entries");
        exit_button.set_tool_tip("Click to exit back to the console");
        show_demo_mode.set_visible(false);
    }
};

} // namespace ecu::maps
