// General purpose output drivers and boost control: four channels, each with a mode, a 9 by 9 duty map, a boost map
// and a servo's parameters. Only controls. Boxes and cells are pending by their background; a mode group by the
// foreground of its option 0, the boost flags by that of boost_ctrl_invert.
#pragma once

#include "platform/form.h"
#include "platform/grid.h"
#include "platform/numbered_arrays.h"

namespace ecu::maps {

struct FrmSup {
    using Boxes = platform::ControlArray<platform::TextBox, 4>;
    using Checks = platform::ControlArray<platform::CheckBox, 4>;
    using Frames = platform::ControlArray<platform::Frame, 4>;
    using Titles = platform::ControlArray<platform::Label, 4>;
    using Axes = std::array<platform::ControlArray<platform::Label, 9>, 4>;

    static constexpr std::array<std::string_view, 4> tab_captions{"GPO 1", "GPO 2", "GPO 3", "GPO 4"};
    static constexpr std::array<std::string_view, 11> mode_captions{
        "Disabled",        "X=RPM / Y=MAP",     "X=RPM / Y=CLT",  "X=RPM / Y=TPS",    "X=RPM / Y=MAT", "X=MAT / Y=MAP",
        "Fuel Pump Relay", "Coolant Fan Relay", "Gear Based GPO", "RPM Switch Above", "2 Wire Idle"};

    platform::Form form{"frm_sup", "General Purpose Output Driver Mapping"};

    platform::MenuItem menufile{form, "menufile", "&File"};
    platform::MenuItem menufileexit{menufile, "menufileexit", "e&xit"};
    platform::MenuItem menuupdate{form, "menuupdate", "&Update"};
    platform::MenuItem menuresetmap{form, "menuresetmap", "&Reset map"};
    platform::MenuItem menu_mon{form, "menu_mon", "&Monitor"};
    platform::MenuItem menu_dash{form, "menu_dash", "&Dashboard"};
    platform::MenuItem menu_tools{form, "menu_tools", "&Config."};
    platform::MenuItem menu_3d{form, "menu_3d", "&Basic Map"};
    platform::MenuItem menu_2d{form, "menu_2d", "&Additional Map"};
    platform::MenuItem menu_plot{form, "menu_plot", "&Plotter"};
    platform::MenuItem menu_diag{form, "menu_diag", "D&iagnostics"};

    platform::Tabs GPO_tab{form, "GPO_tab"};
    platform::Button read_again{form, "read_again", "Read again"};
    platform::Button update_button{form, "Command3d2", "Update"};
    platform::Button exit_button{form, "Command3d1", "Exit"};
    platform::Label show_demo_mode{form, "show_demo_mode", "DEMO MODE!"};
    platform::Label map_status{form, "map_status", "No values pending"}; // pending values, progress of a read

    // What stands in words on a page: what the output and the boost control do, and how many values are pending.
    Titles gpo_words{form, "gpo_words"};
    Titles gpo_now{form, "gpo_now"};
    Titles boost_words{form, "boost_words"};
    Titles pending_on_page{form, "pending_on_page"};

    // A page's frames; gpo_map_holder encloses the duty map, GPO_params everything of the channel.
    Frames GPO_params{form, "GPO_params"};
    Frames gpo_map_holder{form, "gpo_map_holder"};

    // gpo_0_mode to gpo_3_mode, "Mapping Input Source"
    std::array<platform::ControlArray<platform::OptionButton, 11>, 4> gpo_mode =
        platform::numbered_arrays<4, platform::OptionButton, 11>(form, "gpo_", "_mode", mode_captions);
    Checks dont_interpolate{form, "dont_interpolate", "Dont Interplolate"};
    Boxes cool_rly_temp{form, "cool_rly_temp"};
    Boxes rpm_switch{form, "rpm_switch"};
    std::array<platform::Grid, 4> GPO_tbl{
        {{form, "GPO_tbl_0", 9, 9}, {form, "GPO_tbl_1", 9, 9}, {form, "GPO_tbl_2", 9, 9}, {form, "GPO_tbl_3", 9, 9}}};
    std::array<platform::Grid, 4> boost_gpo{{{form, "boost_gpo_0", 9, 9},
                                             {form, "boost_gpo_1", 9, 9},
                                             {form, "boost_gpo_2", 9, 9},
                                             {form, "boost_gpo_3", 9, 9}}};
    Boxes boost_p{form, "boost_p"};
    Boxes boost_i{form, "boost_i"};
    Boxes boost_d{form, "boost_d"};
    Boxes boost_enable_press{form, "boost_enable_press"};
    Boxes boost_integ_preset{form, "boost_integ_preset"};
    Boxes boost_loop_rate{form, "boost_loop_rate"};
    Checks boost_ctrl_invert{form, "boost_ctrl_invert", "Invert Control Loop"};
    Checks use_as_pwm{form, "use_as_pwm", "Use open loop as PWM"};

    // Axis labels: GPO_0_X_lbl to GPO_3_X_lbl and so on, nine each, and the axis titles
    Axes GPO_X_lbl = platform::numbered_arrays<4, platform::Label, 9>(form, "GPO_", "_X_lbl");
    Axes GPO_Y_lbl = platform::numbered_arrays<4, platform::Label, 9>(form, "GPO_", "_Y_lbl");
    Axes GPO_boost_X_lbl = platform::numbered_arrays<4, platform::Label, 9>(form, "GPO_boost_X_lbl_");
    Axes GPO_boost_Y_lbl = platform::numbered_arrays<4, platform::Label, 9>(form, "GPO_boost_Y_lbl_");
    Titles gpo_x_text{form, "gpo_x_text"};
    Titles gpo_y_text{form, "gpo_y_text"};
    Titles boost_x_text{form, "boost_x_text", "RPM"};
    Titles boost_y_text{form, "boost_y_text"};

    // Markers of the operating point along the axis lines of the shown page, of its duty map and of its boost map
    platform::Shape supp_x_beg{form, "supp_x_beg"};
    platform::Shape supp_x_end{form, "supp_x_end"};
    platform::Shape supp_y_beg{form, "supp_y_beg"};
    platform::Shape supp_y_end{form, "supp_y_end"};
    platform::Shape supp_x_ptr{form, "supp_x_ptr"};
    platform::Shape supp_y_ptr{form, "supp_y_ptr"};
    platform::Shape boost_x_ptr{form, "boost_x_ptr"};
    platform::Shape boost_y_ptr{form, "boost_y_ptr"};

    FrmSup() {
        // Both axes are this long; the load axis counts downward, as a screen does.
        constexpr float axis_length = 3600;
        supp_y_beg.place(0, axis_length, 0, 0);
        supp_y_ptr.place(0, axis_length, 0, 0);
        boost_y_ptr.place(0, axis_length, 0, 0);
        supp_x_end.place(axis_length, 0, 0, 0);
        show_demo_mode.set_visible(false);
        read_again.set_tool_tip("Click to read the values that the controller has not given yet");
        update_button.set_tool_tip("Click to update modified entries");
        exit_button.set_tool_tip("Click to exit back to the console");
        const auto tip = [](auto& controls, std::string_view text) {
            for (auto& control : controls) {
                control.set_tool_tip(text);
            }
        };
        for (auto& modes : gpo_mode) {
            tip(modes, "Mapping Input Source");
        }
        tip(dont_interpolate, "If checked, the duty steps from cell to cell instead of changing smoothly between them");
        tip(GPO_tbl, "The duty of the output, in percent, at each point of its two axes");
        tip(boost_gpo, "What the boost control aims at, in kPa or % duty, at each point of its two axes");
        tip(gpo_words, "What the output does, as the choices on this page stand");
        tip(gpo_now, "What the output did at the last reply of the controller");
        tip(boost_words, "What the boost control does, as the choices on this page stand");
        tip(pending_on_page, "Values of this page that Update will send");
        tip(gpo_map_holder, "The duty map of the output");
        tip(GPO_params, "An output driver and its boost control");
        for (platform::Shape* marker : {&supp_x_ptr, &supp_y_ptr, &boost_x_ptr, &boost_y_ptr}) {
            marker->set_tool_tip("Where the engine runs now");
        }
        tip(cool_rly_temp,
            "The coolant temperature at which the relay switches. One below zero goes out with 127 added, and is "
            "shown so: -10 as 117");
        tip(rpm_switch, "GPO will turn full on at or above this RPM");
        tip(boost_p, "Servo proportional term.");
        tip(boost_i, "Servo integral term.");
        tip(boost_d, "Servo derivative term.");
        tip(boost_enable_press, "The boost controller will be activated if above this pressure.");
        tip(boost_integ_preset, "when the boost controller goes from inactive to active, the PID integrator is seeded "
                                "with this value.");
        tip(boost_loop_rate, "The PID routine is executed every N opportunities.");
        tip(boost_ctrl_invert, "If checked, the calculated PWM value is inverted (0% becomes 100% ECT)");
        tip(use_as_pwm, "If checked, this map will be used as PWM duty cycle (0 to 100%) for open loop boost control.");
    }
};

} // namespace ecu::maps
