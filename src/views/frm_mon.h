// The realtime monitor: every live quantity as text. The labels outlive the window's being shown, because the
// plotter reads some of them back.
#pragma once

#include "platform/form.h"

namespace ecu::views {

struct FrmMon {
    platform::Form form{"frm_mon", "Real Time Monitor"};

    platform::MenuItem menufile{form, "menufile", "&File"};
    platform::MenuItem menufileexit{menufile, "menufileexit", "e&xit"};
    platform::MenuItem menu_dash{form, "menu_dash", "&Dashboard"};
    platform::MenuItem menu_tools{form, "menu_tools", "&Config."};
    platform::MenuItem menu_3d{form, "menu_3d", "&Basic Map"};
    platform::MenuItem menu_2d{form, "menu_2d", "&Additional Map"};
    platform::MenuItem menu_sup{form, "menu_sup", "&GPO Drv."};
    platform::MenuItem menu_plot{form, "menu_plot", "&Plotter"};
    platform::MenuItem menu_diag{form, "menu_diag", "D&iagnostics"};

    // The rows of ECU_Data. Nothing is ever written to `unused`.
    struct Row {
        enum Index : std::size_t {
            engine_speed,
            mixture,
            coolant,
            throttle,
            manifold,
            injection_time,
            ego_correction,
            map_enrichment,
            accel_enrichment,
            clt_enrichment,
            battery,
            air_temperature,
            aux_input,
            unused,
            barometer,
            idle_state,
            idle_error,
            idle_position,
            idle_setpoint,
            timing,
            count
        };
    };
    platform::ControlArray<platform::Label, Row::count> ECU_Data{form, "ECU_Data"};
    platform::Label unit_of_lambda{form, "Label1", "Lamda", 8};    // beside row 1
    platform::Label unit_of_setpoint{form, "Label1", "Lamda", 64}; // beside the set point
    platform::Label ego_lambda_setpoint{form, "ego_lambda_setpoint"};

    platform::ControlArray<platform::Label, 8> inj_pw{form, "inj_pw"};
    platform::ControlArray<platform::Label, 8> inj_duty{form, "inj_duty"};
    platform::ControlArray<platform::Label, 8> ign_dwell{form, "ign_dwell"};
    platform::ControlArray<platform::Label, 8> ign_duty{form, "ign_duty"};

    platform::Label map_num{form, "map_num"};
    platform::Label num_trigs{form, "num_trigs"};
    platform::Label num_cams{form, "num_cams"};
    platform::Label wheel_idx_num{form, "wheel_idx_num"};
    platform::Label cam_idx_num{form, "cam_idx_num"};
    platform::Label speed_MPH{form, "speed_MPH"};
    platform::Label rpm_mph_ratio{form, "rpm_mph_ratio"};
    platform::Label gear_number{form, "gear_number"};
    platform::Label cpu_secs{form, "cpu_secs"};
    platform::Label err_flgs{form, "err_flgs"};
    platform::Label aux_stat{form, "aux_stat"};
    platform::Label map_sel_stat{form, "map_sel_stat"};
    platform::Label trig_b_stat{form, "trig_b_stat"};
    platform::Label rev_limit_stat{form, "rev_limit_stat"};
    platform::Label flat_shift_stat{form, "flat_shift_stat"};
    platform::Label EGT{form, "EGT"};
    platform::Label can_rx_frames{form, "can_rx_frames"};
    platform::Label tx_bytes{form, "tx_bytes"};
    platform::Label rx_bytes{form, "rx_bytes"};
    platform::Label group_delay{form, "group_delay"};
    platform::Label show_demo_mode{form, "show_demo_mode", "DEMO MODE!"};

    platform::Button exit_button{form, "Command3d1", "Exit"};

    FrmMon() {
        show_demo_mode.set_visible(false);
        exit_button.set_tool_tip("Click to exit back to the console");
    }
};

} // namespace ecu::views
