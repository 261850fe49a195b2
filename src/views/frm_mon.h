// The realtime monitor: every live quantity as text. The labels outlive the window's being shown, because the
// plotter reads some of them back.
#pragma once

#include "platform/form.h"

#include <initializer_list>
#include <string_view>
#include <utility>

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
        // What the guide's page of the monitor says too.
        for (const auto& [figure, meaning] : std::initializer_list<std::pair<platform::Label*, std::string_view>>{
                 {&ECU_Data[Row::engine_speed], "Crankshaft speed, smoothed, rpm"},
                 {&speed_MPH, "Road speed, miles an hour, from the speed input and its scaler"},
                 {&rpm_mph_ratio, "Engine speed over road speed; the gear is told by it"},
                 {&gear_number, "The gear that this ratio belongs to; 0: none"},
                 {&ECU_Data[Row::idle_state],
                  "What the idle air valve is doing: shut down, homing, start position, opening, closing, closed"},
                 {&ECU_Data[Row::idle_error], "OK, or ERR and the number of the idle valve's error"},
                 {&ECU_Data[Row::idle_position], "Steps of the idle air valve"},
                 {&ECU_Data[Row::idle_setpoint], "Engine speed that idle control aims at, rpm"},
                 {&ECU_Data[Row::mixture], "Measured mixture, in the unit of the Units menu; %O2 while the sensor "
                                           "tells oxygen, ERR when it has failed"},
                 {&ego_lambda_setpoint, "Mixture that the oxygen control aims at"},
                 {&ECU_Data[Row::injection_time], "Injector opening time before the corrections of each channel, ms"},
                 {&ECU_Data[Row::ego_correction], "Factor of the oxygen control on the fuel; 1 is none"},
                 {&ECU_Data[Row::map_enrichment], "Factor of the fuel map at this load and speed"},
                 {&ECU_Data[Row::accel_enrichment], "Injector time added while the throttle opens, ms"},
                 {&ECU_Data[Row::clt_enrichment], "Factor for the coolant temperature"},
                 {&map_num, "Number of the map set in use"},
                 {&ECU_Data[Row::manifold], "Absolute pressure in the manifold, kPa: the load"},
                 {&ECU_Data[Row::throttle],
                  "0 % is closed, 100 % open, by the calibration; it may read a little beyond both"},
                 {&ECU_Data[Row::coolant], "Coolant temperature, degrees Celsius"},
                 {&ECU_Data[Row::air_temperature], "Temperature of the air in the manifold, degrees Celsius"},
                 {&EGT, "Exhaust gas temperature, degrees Celsius, if a sensor is fitted"},
                 {&ECU_Data[Row::barometer], "Pressure of the surrounding air, kPa"},
                 {&ECU_Data[Row::battery], "Supply of the controller, volts"},
                 {&ECU_Data[Row::aux_input], "Voltage at the auxiliary input"},
                 {&ECU_Data[Row::timing], "Ignition, degrees of the crank; B is before top dead centre, A after"},
                 {&rev_limit_stat, "Which of the two rev limits is in force"},
                 {&flat_shift_stat, "FLAT+ while flat shift is active"},
                 {&trig_b_stat, "Level at the second trigger input"},
                 {&num_trigs, "Crank teeth counted since the start; it must rise while the engine turns"},
                 {&num_cams, "Cam pulses counted since the start"},
                 {&wheel_idx_num, "Tooth at which the crank wheel was last synchronised: it must stand still"},
                 {&cam_idx_num, "Tooth at which the cam pulse came: it must stand still"},
                 {&aux_stat, "Level at the auxiliary switch input"},
                 {&map_sel_stat, "Level at the map select input"},
                 {&err_flgs, "Trigger errors as flags; 0 is none"},
                 {&cpu_secs, "Seconds since the controller was started; it falls back to 0 when it has restarted"},
                 {&tx_bytes, "Bytes sent to the controller since the start"},
                 {&rx_bytes, "Bytes received from the controller since the start"},
                 {&group_delay, "Mean time between the last 16 replies, ms"},
                 {&can_rx_frames, "Frames that the controller has received on its CAN bus"}}) {
            figure->set_tool_tip(meaning);
        }
        for (std::size_t i = 0; i < inj_pw.size(); ++i) {
            inj_pw[i].set_tool_tip("Injector opening time of this channel, ms");
            inj_duty[i].set_tool_tip("Share of the time that this injector is open, %; red above 85");
            ign_dwell[i].set_tool_tip("Time that this coil is charged, ms");
            ign_duty[i].set_tool_tip("Share of the time that this coil is charged, %; red above 50");
        }
        show_demo_mode.set_visible(false);
        exit_button.set_tool_tip("Click to exit back to the console");
    }
};

} // namespace ecu::views
