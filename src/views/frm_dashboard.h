// The dashboard, the tuner's screen at the wheel: round gauges, a bar of 17 lamps for the mixture, three trims that act
// on the running engine, and two kill switches. Only the controls; their behaviour is in dashboard.h.
// The gauges' scales given here hold until the rules of the dashboard set them, for most gauges all the run.
#pragma once

#include "platform/form.h"
#include "platform/gauge.h"
#include "platform/picture.h"

namespace ecu::views {

inline constexpr std::size_t lamp_count = 17;
inline constexpr platform::Colour lamp_dark = platform::palette[8];

// Lamp 0 is lean, lamp 8 the centre (lambda 1.0), lamp 16 rich.
constexpr platform::Colour lamp_lit(std::size_t lamp) {
    return lamp < 6 ? platform::palette[12] : lamp <= 10 ? platform::palette[10] : platform::palette[14];
}

struct FrmDashboard {
    platform::Form form{"frm_dashboard", "Dashboard"};

    platform::MenuItem menu_file{form, "menu_file", "&File"};
    platform::MenuItem menu_file_exit{menu_file, "menu_file_exit", "e&xit"};
    platform::MenuItem menu_Update{form, "menu_Update", "&Update"};
    platform::MenuItem menu_opts{form, "menu_opts", "&Options"};
    platform::ControlArray<platform::MenuItem, 4> menu_view_gpo{
        menu_opts, "menu_view_gpo", {"View GPO&1", "View GPO&2", "View GPO&3", "View GPO&4"}};
    platform::MenuItem menu_opts_tach_filt{menu_opts, "menu_opts_tach_filt", "&Tachometer filtering"};
    platform::ControlArray<platform::MenuItem, 3> menu_opts_tach_filt_num{
        menu_opts_tach_filt, "menu_opts_tach_filt_num", {"&Hard Filter", "&Soft Filter", "&No Filter"}};
    platform::MenuItem menu_mon{form, "menu_mon", "&Monitor"};
    platform::MenuItem menu_tools{form, "menu_tools", "&Config."};
    platform::MenuItem menu_3d{form, "menu_3d", "&Basic Map"};
    platform::MenuItem menu_2d{form, "menu_2d", "&Additional Map"};
    platform::MenuItem menu_sup{form, "menu_sup", "&GPO Drv."};
    platform::MenuItem menu_diag{form, "menu_diag", "D&iagnostics"};
    platform::MenuItem menu_plot{form, "menu_plot", "&Plotter"};

    platform::Gauge tachometer{form, "tachometer", "x 1000"};
    platform::Gauge manifold_pressure{form, "manifold_pressure", "Manifold"};
    platform::Gauge water_temp{form, "water_temp", "H2O Temp"};
    platform::Gauge air_temp{form, "air_temp", "Air Temp"};
    platform::Gauge bat_volts{form, "bat_volts", "Battery\nVolts"};
    platform::Gauge Timing{form, "Timing", "Timing"};
    platform::ControlArray<platform::Gauge, 4> GPO_duty{form, "GPO_duty", {"GPO1", "GPO2", "GPO3", "GPO4"}};

    platform::ControlArray<platform::TextBox, 2> ecu_pgm{form, "ecu_pgm"}; // fuel scaler and fuel offset, ms
    platform::TextBox base_offset_deg{form, "base_offset_deg"};            // timing offset, degrees
    platform::CheckBox kill_timing{form, "kill_timing", "Set timing to 0° for verification"};
    platform::CheckBox kill_ego{form, "kill_ego", "Disable EGO Feedback"};
    platform::Label control_ego_gain{form, "control_ego_gain"};
    platform::ControlArray<platform::Label, 9> lambda_label{form, "lambda_label", "---"};
    platform::Label lambda_val{form, "lambda_val"};   // what the bar's centre stands for
    platform::Label lambda_live{form, "lambda_live"}; // the mixture as it is, with its unit
    platform::ControlArray<platform::Shape, lamp_count> afr_led{form, "afr_led"};
    platform::Button read_again{form, "read_again", "Read again"};
    platform::Button update_button{form, "Command2", "Update"};
    platform::Button exit_button{form, "Command1", "Exit"};
    platform::Label trim_status{form, "trim_status"}; // what is pending, unread, or was not taken
    platform::Label show_demo_mode{form, "show_demo_mode", "DEMO MODE!"};
    platform::Picture Picture1{form, "Picture1", 320, 160}; // the installer's

    FrmDashboard() {
        // A cold engine starts below freezing, and the controller reports at most 127 degrees.
        water_temp.set_scale(
            {.minimum = -20, .full_scale = 140, .tick_step = 20, .zone_a_start = 95, .zone_b_start = 105});
        air_temp.set_scale(
            {.minimum = -20, .full_scale = 120, .tick_step = 20, .zone_a_start = 60, .zone_b_start = 80});
        // Cranking pulls the battery down to 6 V; above 16 V the regulator has failed.
        bat_volts.set_scale({.minimum = 6, .full_scale = 18, .tick_step = 2, .zone_a_start = 15, .zone_b_start = 16});
        Timing.set_scale({.minimum = -20, .full_scale = 60, .tick_step = 10, .zone_a_start = 40, .zone_b_start = 50});
        tachometer.set_scale({.full_scale = 10, .tick_step = 1, .zone_a_start = 8.1F, .zone_b_start = 9});
        // For a manifold sensor that the dashboard has no scale for.
        manifold_pressure.set_scale({.full_scale = 400, .tick_step = 40, .zone_a_start = 110, .zone_b_start = 300});
        for (platform::Gauge& gauge : GPO_duty) { // any duty is as good as another: no zones
            gauge.set_scale({.full_scale = 100, .tick_step = 20, .zone_a_start = 100, .zone_b_start = 100});
            gauge.set_visible(gauge.index() == 0);
        }
        for (const auto& [gauge, unit] : {std::pair<platform::Gauge*, std::string_view>{&tachometer, "rpm"},
                                          {&manifold_pressure, "kPa"},
                                          {&water_temp, "°C"},
                                          {&air_temp, "°C"},
                                          {&Timing, "° BTDC"}}) {
            gauge->unit = unit;
        }
        tachometer.spoken_unit = "thousand rpm";
        bat_volts.spoken_unit = "volts";
        for (platform::Gauge& gauge : GPO_duty) {
            gauge.unit = "%";
        }
        menu_view_gpo[0].set_checked(true);
        for (platform::TextBox& box : ecu_pgm) {
            box.set_tool_tip("The higher this number, the more fuel that will be injected under given conditions");
        }
        base_offset_deg.set_tool_tip("This adjusts phases to have a fixed offset relative to the Base timing");
        read_again.set_tool_tip("Click to read the trims that the controller has not given yet");
        read_again.set_enabled(false);
        update_button.set_tool_tip("Click to update modified entries");
        exit_button.set_tool_tip("Click to exit back to the console");
        show_demo_mode.set_visible(false);
        for (platform::Shape& lamp : afr_led) {
            lamp.set_back_colour(lamp_dark);
        }
    }
};

} // namespace ecu::views
