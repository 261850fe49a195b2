#include "configuration/frm_tool.h"

#include "calibration/description.h"

namespace ecu::configuration {

namespace {

using calibration::parameter;
using calibration::tool_tip;

template <typename Controls> void tip_all(Controls& controls, const std::string& tip) {
    for (auto& control : controls) {
        control.set_tool_tip(tip);
    }
}

} // namespace

FrmTool::FrmTool() {
    show_demo_mode.set_visible(false);
    // Only Master Mode enables the pressure sensor's type.
    for (platform::OptionButton& option : map_type) {
        option.set_enabled(false);
    }
    for (platform::CheckBox& box : special_cfg) {
        box.set_enabled(false);
    }
    set_tool_tips();
}

platform::TextBox& FrmTool::box(std::string_view key, int i) {
    const calibration::Parameter* row = calibration::find_parameter(key);
    return row != nullptr ? boxes(*row, i) : boxes(*calibration::find_table(key), i);
}

// Those of the boxes came from their rows.
void FrmTool::set_tool_tips() {
    update_button.set_tool_tip("Click to update modified entries");
    exit_button.set_tool_tip("Click to exit back to the console");
    read_again.set_tool_tip("Click to read the values that the controller has not given yet");
    tip_all(map_type, tool_tip(parameter("MAP_TYPE")));
    tip_all(special_cfg, "Special configuration of the controller. Only Master Mode can change it.");
    tip_all(EGO_type, tool_tip(parameter("EGO_FLGS")));
    const std::string inputs = tool_tip(parameter("INPT_CGF"));
    tip_all(aux_in_used_as, inputs);
    tip_all(map_sel_used_as, inputs);
    tip_all(trig_b_used_as, inputs);
    tip_all(idx_used_as, inputs);
    TPS_mapped.set_tool_tip("The fuel and ignition maps go by the throttle instead of the manifold pressure.");
    MAP_accel.set_tool_tip("The acceleration enrichment goes by the manifold pressure instead of the throttle.");
    enable_idle_by_timing.set_tool_tip(tool_tip(parameter("IDL_BY_I")));
    for (std::size_t n = 0; n < ph_used.size(); ++n) {
        const std::string phase = "engine phase " + std::to_string(n + 1);
        ph_used[n].set_tool_tip("The engine has " + phase + ".");
        tach_ph[n].set_tool_tip("The tach output fires in " + phase + ".");
        for (std::size_t b = 0; b < inj_ph[n].size(); ++b) {
            const std::string driver = "driver " + std::to_string(b + 1) + " fires in " + phase + ".";
            inj_ph[n][b].set_tool_tip("Injector " + driver);
            ign_ph[n][b].set_tool_tip("Ignition " + driver);
        }
    }
    skip_fire_bits.set_tool_tip("Skips of one cycle of the pattern, before its hits.");
    fire_bits.set_tool_tip("Hits of one cycle of the pattern.");
    stutter_text.set_tool_tip("1s are skips, 0s are hits.");
    tip_all(make_stutter_text, "Write the pattern of these skips and hits below");
    for (std::size_t n = 0; n < create_stutter_patterns_from_text.size(); ++n) {
        create_stutter_patterns_from_text[n].set_tool_tip("Put the pattern into the four boxes of stutter " +
                                                          std::to_string(n + 1) + "; Update sends them");
    }
    calibrate_tps_val[0].set_tool_tip("Close the throttle then click here to automatically set the TPS Closed Value.");
    calibrate_tps_val[1].set_tool_tip(
        "Fully open the throttle then click here to automatically set the TPS Opened Value.");
    rolling_circum_inches.set_tool_tip("How far the wheel rolls in one turn, inches");
    revs_mile.set_tool_tip("Turns of the wheel in one mile");
    trigs_rev.set_tool_tip("Pulses of the speed sensor in one turn of the wheel");
    speed_wizard_calc[0].set_tool_tip("Work out the turns in a mile, and the scaler from them");
    speed_wizard_calc[1].set_tool_tip("Work out the scaler from turns in a mile and pulses in a turn");
}

} // namespace ecu::configuration
