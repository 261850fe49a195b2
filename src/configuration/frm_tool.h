// The configuration page: every scalar and vector of the calibration that is not a map, on thirteen tabs, with the
// stutter generator, the speed wizard and the throttle calibration. The boxes of values come from their rows; what
// stands here is what is unlike a box. A text box is pending by its background, check boxes and options by their
// foreground, a phase by the tag of its first box.
#pragma once

#include "calibration/parameters.h"
#include "editing/row_boxes.h"
#include "platform/form.h"
#include "platform/numbered_arrays.h"

namespace ecu::configuration {

struct FrmTool {
    template <std::size_t N> using CheckBoxes = platform::ControlArray<platform::CheckBox, N>;
    template <std::size_t N> using Options = platform::ControlArray<platform::OptionButton, N>;
    template <std::size_t N> using Buttons = platform::ControlArray<platform::Button, N>;
    using Two = std::array<std::string_view, 2>;

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
    platform::Button update_button{form, "Command3d1", "Update"};
    platform::Button exit_button{form, "Command3d2", "Exit"};
    platform::Button read_again{form, "read_again", "Read again"};
    platform::Label show_demo_mode{form, "show_demo_mode", "DEMO MODE!"};
    platform::Label tool_status{form, "tool_status"}; // what is read, pending, not taken

    editing::RowBoxes boxes{form};

    // Engine Setup
    Options<4> map_type{form,
                        "map_type",
                        {calibration::pressure_sensors[0].caption, calibration::pressure_sensors[1].caption,
                         calibration::pressure_sensors[2].caption, calibration::pressure_sensors[3].caption}};
    CheckBoxes<2> special_cfg{form, "special_cfg", Two{"Spcl1", "Spc2"}};
    // "Stutter Generator Tool"; the counts are labelled "Skips" and "Hits"
    platform::TextBox skip_fire_bits{form, "skip_fire_bits"};
    platform::TextBox fire_bits{form, "fire_bits"};
    platform::TextBox stutter_text{form, "stutter_text"};
    Buttons<2> make_stutter_text{form, "make_stutter_text", Two{"Create Stutter 1", "Create Stutter 2"}};
    Buttons<2> create_stutter_patterns_from_text{form, "create_stutter_patterns_from_text",
                                                 Two{"Use Bit Pattern for Stutter 1", "Use Bit Pattern for Stutter 2"}};

    // Acceleration Enrichments
    platform::CheckBox TPS_mapped{form, "TPS_mapped", "TPS Mapped"};
    platform::CheckBox MAP_accel{form, "MAP_accel", "MAP Acceleration"};

    // Phase Setup: inj_ph_0 to inj_ph_15 and ign_ph_0 to ign_ph_15, box b is driver b + 1 of the phase
    std::array<CheckBoxes<8>, 16> inj_ph = platform::numbered_arrays<16, platform::CheckBox, 8>(form, "inj_ph_");
    std::array<CheckBoxes<8>, 16> ign_ph = platform::numbered_arrays<16, platform::CheckBox, 8>(form, "ign_ph_");
    CheckBoxes<16> ph_used{form, "ph_used", phase_captions};
    CheckBoxes<16> tach_ph{form, "tach_ph"};

    // Idle Control
    platform::CheckBox enable_idle_by_timing{form, "enable_idle_by_timing", "Enable Idle By Timing"};

    // Closed Loop Setup
    Options<3> EGO_type{form, "EGO_type", calibration::oxygen_sensors};

    // Sensor Calibration
    Buttons<2> calibrate_tps_val{form, "calibrate_tps_val", Two{"Set Closed", "Set Open"}};

    // Inputs Config
    Options<2> aux_in_used_as{form, "aux_in_used_as", input_captions<2>(0)};
    Options<4> map_sel_used_as{form, "map_sel_used_as", input_captions<4>(1)};
    Options<5> trig_b_used_as{form, "trig_b_used_as", input_captions<5>(2)};
    Options<3> idx_used_as{form, "idx_used_as", input_captions<3>(3)};

    // Speed/Gear Setup: "Speed Wizard"
    platform::TextBox rolling_circum_inches{form, "rolling_circum_inches"};
    platform::TextBox revs_mile{form, "revs_mile"};
    platform::TextBox trigs_rev{form, "trigs_rev"};
    Buttons<2> speed_wizard_calc{form, "speed_wizard_calc", Two{"Calculate from Circumference", "Calculate from Revs"}};

    FrmTool();

    platform::TextBox& box(std::string_view key, int i = 0);

private:
    template <std::size_t N> static constexpr std::array<std::string_view, N> input_captions(std::size_t field) {
        std::array<std::string_view, N> captions;
        std::copy_n(calibration::input_fields.at(field).captions.begin(), N, captions.begin());
        return captions;
    }
    void set_tool_tips();
};

} // namespace ecu::configuration
