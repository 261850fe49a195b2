// The configuration page: every scalar and vector of the calibration that is not a map, on thirteen tabs, with the
// stutter generator, the speed wizard and the throttle calibration. Only controls; a text box is pending by its
// background, check boxes and options by their foreground, the phase boxes by the tag of their array's first box.
#pragma once

#include "platform/numbered_arrays.h"
#include "platform/form.h"

namespace ecu::configuration {

struct FrmTool {
    template <std::size_t N> using TextBoxes = platform::ControlArray<platform::TextBox, N>;
    template <std::size_t N> using CheckBoxes = platform::ControlArray<platform::CheckBox, N>;
    template <std::size_t N> using Options = platform::ControlArray<platform::OptionButton, N>;
    template <std::size_t N> using Buttons = platform::ControlArray<platform::Button, N>;
    using Two = std::array<std::string_view, 2>;

    static constexpr std::array<std::string_view, 13> tab_captions{
        "Engine Setup",    "Acceleration Enrichments", "Ignition Parameters", "Injection Parameters",
        "Phase Setup",     "Powerup/Options",          "Idle Control",        "Closed Loop Setup",
        "Engine Startup",  "Sensor Calibration",       "Flat Shift",          "Inputs Config",
        "Speed/Gear Setup"};
    static constexpr std::array<std::string_view, 8> driver_captions{"1", "2", "3", "4", "5", "6", "7", "8"};
    static constexpr std::array<std::string_view, 16> phase_captions{
        "Eng. Phase 1",  "Eng. Phase 2",  "Eng. Phase 3",  "Eng. Phase 4",  "Eng. Phase 5",  "Eng. Phase 6",
        "Eng. Phase 7",  "Eng. Phase 8",  "Eng. Phase 9",  "Eng. Phase 10", "Eng. Phase 11", "Eng. Phase 12",
        "Eng. Phase 13", "Eng. Phase 14", "Eng. Phase 15", "Eng. Phase 16"};
    // The sensor resistances beside the cells of CLT_CAL_MAP and MAT_CAL_MAP, under the heading "Ohms".
    static constexpr std::array<std::string_view, 9> calibration_ohms{"300k", "7000", "3000", "1667", "1000",
                                                                      "600",  "333",  "143",  "1"};

    platform::Form form{"frm_tool", "Configuration"};

    platform::MenuItem menufile{form, "menufile", "&File"};
    platform::MenuItem menufileexit{menufile, "menufileexit", "e&xit"};
    platform::MenuItem menuupdate{form, "menuupdate", "&Update"};
    platform::MenuItem menu_mon{form, "menu_mon", "&Monitor"};
    platform::MenuItem menu_2d{form, "menu_2d", "&Additional Map"};
    platform::MenuItem menu_3d{form, "menu_3d", "&Basic Map"};
    platform::MenuItem menu_dash{form, "menu_dash", "&Dashboard"};
    platform::MenuItem menu_sup{form, "menu_sup", "&GPO Drv."};
    platform::MenuItem menu_diag{form, "menu_diag", "D&iagnostics"};
    platform::MenuItem menu_plot{form, "menu_plot", "&Plotter"};
    platform::MenuItem menu_tools{form, "menu_tools", "&Config."};

    platform::Tabs tool_tab{form, "tool_tab"};
    platform::Button Command3d1{form, "Command3d1", "Update"};
    platform::Button Command3d2{form, "Command3d2", "Exit"};
    platform::Label show_demo_mode{form, "show_demo_mode", "DEMO MODE!"};

    // Engine Setup
    Options<4> map_type{form, "map_type", {"1.0 Bar MAP", "2.5 Bar MAP", "7.0 Bar Ga MAP", "4.0 Bar MAP"}};
    CheckBoxes<2> special_cfg{form, "special_cfg", Two{"Spcl1", "Spc2"}};
    platform::TextBox full_scale_rpm{form, "full_scale_rpm"};
    platform::TextBox trigs_per_rev{form, "trigs_per_rev"};
    platform::TextBox Teeth_BTDC{form, "Teeth_BTDC"};
    platform::TextBox tdc_trim_deg{form, "tdc_trim_deg"};
    platform::TextBox max_pressure{form, "max_pressure"};
    platform::TextBox min_pressure{form, "min_pressure"};
    platform::TextBox rpm_limit_max_degrees{form, "rpm_limit_max_degrees"};
    platform::TextBox soft_ign_rpm1{form, "soft_ign_rpm1"};
    platform::TextBox soft_ign_rpm2{form, "soft_ign_rpm2"};
    platform::TextBox hard_ign_limit1{form, "hard_ign_limit1"};
    platform::TextBox hard_ign_limit2{form, "hard_ign_limit2"};
    platform::TextBox fuel_rpm1{form, "fuel_rpm1"};
    platform::TextBox fuel_rpm2{form, "fuel_rpm2"};
    platform::TextBox fuel_cut_time1{form, "fuel_cut_time1"};
    platform::TextBox fuel_cut_time2{form, "fuel_cut_time2"};
    TextBoxes<8> stutter_table{form, "stutter_table"};
    // "Stutter Generator Tool"; the counts are labelled "Skips" and "Hits"
    platform::TextBox skip_fire_bits{form, "skip_fire_bits"};
    platform::TextBox fire_bits{form, "fire_bits"};
    platform::TextBox stutter_text{form, "stutter_text"};
    Buttons<2> make_stutter_text{form, "make_stutter_text", Two{"Create Stutter 1", "Create Stutter 2"}};
    Buttons<2> create_stutter_patterns_from_text{form, "create_stutter_patterns_from_text",
                                                 Two{"Use Bit Pattern for Stutter 1", "Use Bit Pattern for Stutter 2"}};

    // Acceleration Enrichments
    platform::TextBox accel_senitivity{form, "accel_senitivity"};
    platform::TextBox accel_flt_rate{form, "accel_flt_rate"};
    platform::TextBox accel_pw_min{form, "accel_pw_min"};
    platform::TextBox accel_pw_max{form, "accel_pw_max"};
    platform::TextBox decel_tps_value{form, "decel_tps_value"};
    platform::TextBox rpm_accel_gain{form, "rpm_accel_gain"};
    platform::CheckBox TPS_mapped{form, "TPS_mapped", "TPS Mapped"};
    platform::CheckBox MAP_accel{form, "MAP_accel", "MAP Acceleration"};

    // Ignition Parameters
    platform::TextBox base_offset_deg{form, "base_offset_deg"};
    platform::TextBox target_dwell{form, "target_dwell"};
    platform::TextBox min_dwell_deg{form, "min_dwell_deg"};

    // Injection Parameters
    platform::TextBox bat_comp{form, "bat_comp"};
    TextBoxes<8> inj_gain{form, "inj_gain"};
    TextBoxes<8> inj_offset{form, "inj_offset"};
    TextBoxes<8> inj_min{form, "inj_min"};
    TextBoxes<8> inj_max{form, "inj_max"};

    // Phase Setup: inj_ph_0 to inj_ph_15 and ign_ph_0 to ign_ph_15, box b is driver b + 1 of the phase
    std::array<CheckBoxes<8>, 16> inj_ph =
        platform::numbered_arrays<16, platform::CheckBox, 8>(form, "inj_ph_", "", driver_captions);
    std::array<CheckBoxes<8>, 16> ign_ph =
        platform::numbered_arrays<16, platform::CheckBox, 8>(form, "ign_ph_", "", driver_captions);
    CheckBoxes<16> ph_used{form, "ph_used", phase_captions};
    TextBoxes<16> ph_base_deg{form, "ph_base_deg"};
    CheckBoxes<16> tach_ph{form, "tach_ph", phase_captions};

    // Powerup/Options
    platform::TextBox priming_pw_hot{form, "priming_pw_hot"};
    platform::TextBox priming_pw_cold{form, "priming_pw_cold"};
    platform::TextBox num_pulses_hot{form, "num_pulses_hot"};
    platform::TextBox num_pulses_cold{form, "num_pulses_cold"};
    platform::TextBox temp_threshold{form, "temp_threshold"};
    platform::TextBox map_change_time{form, "map_change_time"};

    // Idle Control
    platform::TextBox iac_close_steps{form, "iac_close_steps"};
    platform::TextBox iac_open_steps{form, "iac_open_steps"};
    platform::TextBox iac_enable_tps_val{form, "iac_enable_tps_val"};
    platform::TextBox iac_close_tps_val{form, "iac_close_tps_val"};
    platform::TextBox iac_max_rate{form, "iac_max_rate"};
    platform::TextBox iac_error_rate{form, "iac_error_rate"};
    platform::TextBox iac_deadband{form, "iac_deadband"};
    platform::CheckBox enable_idle_by_timing{form, "enable_idle_by_timing", "Enable Idle By Timing"};
    platform::TextBox idle_max_retard{form, "idle_max_retard"};
    platform::TextBox idle_max_advance{form, "idle_max_advance"};
    platform::TextBox idle_disable_rpm{form, "idle_disable_rpm"};

    // Closed Loop Setup
    Options<3> EGO_type{form, "EGO_type", {"Narrowband (0-1v)", "Wideband (0-1v)", "CAN Wideband"}};
    platform::TextBox WB_EGO_0V_LAMBDA{form, "WB_EGO_0V_LAMBDA"};
    platform::TextBox WB_EGO_1V_LAMBDA{form, "WB_EGO_1V_LAMBDA"};
    platform::TextBox ego_seconds{form, "ego_seconds"};
    platform::TextBox ego_rate{form, "ego_rate"};
    platform::TextBox EGO_Prop_Gain{form, "EGO_Prop_Gain"};
    platform::TextBox min_ego_gain{form, "min_ego_gain"};
    platform::TextBox max_ego_gain{form, "max_ego_gain"};
    platform::TextBox EGO_reset_pw{form, "EGO_reset_pw"};
    platform::TextBox tps_open_loop_val{form, "tps_open_loop_val"};

    // Engine Startup
    platform::TextBox cranking_max_rpm{form, "cranking_max_rpm"};
    platform::TextBox cranking_enrichment_gain{form, "cranking_enrichment_gain"};
    platform::TextBox cranking_enrichment_timer{form, "cranking_enrichment_timer"};
    platform::TextBox cranking_timing{form, "cranking_timing"};
    platform::TextBox post_cranking_enrichment_gain{form, "post_cranking_enrichment_gain"};

    // Sensor Calibration
    platform::TextBox tps_base_val{form, "tps_base_val"};
    platform::TextBox tps_fs_val{form, "tps_fs_val"};
    Buttons<2> calibrate_tps_val{form, "calibrate_tps_val", Two{"Set Closed", "Set Open"}};
    platform::TextBox map_offset{form, "map_offset"};
    platform::TextBox map_scaler{form, "map_scaler"};
    platform::TextBox baro_offset{form, "baro_offset"};
    platform::TextBox baro_scaler{form, "baro_scaler"};
    TextBoxes<9> CLT_CAL_MAP{form, "CLT_CAL_MAP"};
    TextBoxes<9> MAT_CAL_MAP{form, "MAT_CAL_MAP"};

    // Flat Shift
    platform::TextBox flat_shft_retard{form, "flat_shft_retard"};
    platform::TextBox flat_shft_retard_time{form, "flat_shft_retard_time"};
    platform::TextBox flat_shft_fuel_cut{form, "flat_shft_fuel_cut"};

    // Inputs Config: frames "AUX Input", "MAP Select Input", "Trigger B Input", "IDX/CAM Input"
    Options<2> aux_in_used_as{form, "aux_in_used_as", Two{"Normal Use", "Rev Limit Control"}};
    Options<4> map_sel_used_as{
        form, "map_sel_used_as", {"Map Selector", "Rev Limit Control", "Flatshift Trigger", "Gear 0/1 Select"}};
    Options<5> trig_b_used_as{
        form,
        "trig_b_used_as",
        {"Unused", "Rev Limit Control", "Flatshift Trigger", "Speed HALL Input", "Gear 0/1 Select"}};
    Options<3> idx_used_as{form, "idx_used_as", {"CAM HALL Input", "Unused", "Speed HALL Input"}};

    // Speed/Gear Setup
    platform::TextBox wheel_rpm_scaler{form, "wheel_rpm_scaler"};
    TextBoxes<8> low_rps_ratio{form, "low_rps_ratio"};
    TextBoxes<8> high_rps_ratio{form, "high_rps_ratio"};
    TextBoxes<8> gear_gpo_num{form, "gear_gpo_num"};
    // "Speed Wizard"
    platform::TextBox rolling_circum_inches{form, "rolling_circum_inches"};
    platform::TextBox revs_mile{form, "revs_mile"};
    platform::TextBox trigs_rev{form, "trigs_rev"};
    Buttons<2> speed_wizard_calc{form, "speed_wizard_calc", Two{"Calculate from Circumference", "Calculate from Revs"}};

    FrmTool() {
        show_demo_mode.set_visible(false);
        // Only Master Mode enables the pressure sensor's type.
        for (platform::OptionButton &option : map_type) {
            option.set_enabled(false);
        }
        for (platform::CheckBox &box : special_cfg) {
            box.set_enabled(false);
        }
        Command3d1.set_tool_tip("Click to update modified entries");
        Command3d2.set_tool_tip("Click to exit back to the console");
        ego_seconds.set_tool_tip(
            "Number of seconds after ignition on, till the ECU runs closed loop off the EGO. 0 = EGO Disable");
        tdc_trim_deg.set_tool_tip("This is the number of degrees (-16 to +48) that corrects any angular wheel error");
        Teeth_BTDC.set_tool_tip(
            "This number sets the number of teeth after the (Index/missing teeth) before #1 TDC occurs");
        for (platform::TextBox &box : ph_base_deg) {
            box.set_tool_tip("Put the degree (0-719.75) relative to #1 TDC");
        }
        tps_base_val.set_tool_tip(
            "Set the TPS value (% FS) when the throttle is fully closed, (set to 0.0 to disable).");
        tps_fs_val.set_tool_tip(
            "Set the TPS value (% FS) when the throttle is fully opened, (set to 99.9 to disable).");
        calibrate_tps_val[0].set_tool_tip(
            "Close the throttle then click here to automatically set the TPS Closed Value.");
        calibrate_tps_val[1].set_tool_tip(
            "Fully open the throttle then click here to automatically set the TPS Opened Value.");
        iac_enable_tps_val.set_tool_tip("The IAC will only adjust idle speed when the TPS is BELOW this level, leave "
                                        "room for some TPS sensor drift (set to 0% to disable IAC).");
        iac_close_tps_val.set_tool_tip("The IAC will be automatically closed to the init position when the TPS value "
                                       "is above this parameter (set to 101% to disable)");
        max_pressure.set_tool_tip("The fuel will be cut if the manifold pressure goes above this number");
        min_pressure.set_tool_tip("The fuel will be cut if the manifold pressure drops below this number");
        rpm_limit_max_degrees.set_tool_tip("Durring an overrev, ignition will be retarded up to this number of "
                                           "degrees in order to limit engine power");
        stutter_text.set_tool_tip("1s are skips, 0s are hits.");
    }
};

} // namespace ecu::configuration
