// Additional mapping: fourteen tables of nine boxes, each with a line graph of itself, and the 9 by 9 lambda set point
// grid with its surface. Only controls; a box's background is its edit state.
#pragma once

#include "platform/form.h"
#include "platform/grid.h"
#include "platform/picture.h"

namespace ecu::maps {

struct Frm2d {
    using Nine = platform::ControlArray<platform::TextBox, 9>;
    using Axis = platform::ControlArray<platform::Label, 9>;

    static constexpr std::array<std::string_view, 3> tab_captions{"Fuel", "Ignition", "Dwell/Idle/Lambda"};

    platform::Form form{"frm_2d", "Additional Mapping"};

    platform::MenuItem menufile{form, "menufile", "&File"};
    platform::MenuItem menufileexit{menufile, "menufileexit", "e&xit"};
    platform::MenuItem menuupdate{form, "menuupdate", "&Update"};
    platform::MenuItem menureset{form, "menureset", "&Reset"};
    platform::MenuItem menuresetcoolant{menureset, "menuresetcoolant", "&Coolant Enrichment"};
    platform::MenuItem menuresetmat{menureset, "menuresetmat", "Air &Temp Enrichment"};
    platform::MenuItem menuresetaux{menureset, "menuresetaux", "&Aux Enrichment"};
    platform::MenuItem menureset_baro_gain{menureset, "menureset_baro_gain", "&Barometric Enrichment"};
    platform::MenuItem menuresetaccel{menureset, "menuresetaccel", "Acc&el Enrichment"};
    platform::MenuItem menuresetign_map{menureset, "menuresetign_map", "&MAP Ignition"};
    platform::MenuItem menuresetign_rpm{menureset, "menuresetign_rpm", "&RPM Ignition"};
    platform::MenuItem menuresetign_mat{menureset, "menuresetign_mat", "Air Tem&p Ignition"};
    platform::MenuItem menuresetbaro{menureset, "menuresetbaro", "Bar&ometric Ignition"};
    platform::MenuItem menureset_CLT_ign{menureset, "menureset_CLT_ign", "Coo&lant Ignition"};
    platform::MenuItem menureset_AUX_ign{menureset, "menureset_AUX_ign", "Au&x Ignition"};
    platform::MenuItem menureset_dwell_mult{menureset, "menureset_dwell_mult", "&Dwell Multiplier"};
    platform::MenuItem menureset_vbat_dwell_mult{menureset, "menureset_vbat_dwell_mult", "Batter&y Dwell Multiplier"};
    platform::MenuItem menuresetidle{menureset, "menuresetidle", "&Idle Speed"};
    platform::MenuItem menuresetegosetpoint{menureset, "menuresetegosetpoint", "EGO &Setpoint"};
    platform::MenuItem menumon{form, "menumon", "&Monitor"};
    platform::MenuItem menudash{form, "menudash", "&Dashboard"};
    platform::MenuItem menutools{form, "menutools", "&Config."};
    platform::MenuItem menu3d{form, "menu3d", "&Basic Map"};
    platform::MenuItem menu_sup{form, "menu_sup", "&GPO Drv."};
    platform::MenuItem menuplotter{form, "menuplotter", "&Plotter"};
    platform::MenuItem menu_diag{form, "menu_diag", "D&iagnostics"};

    platform::Tabs map_tabs{form, "map_tabs"};
    platform::Button read_again{form, "read_again", "Read again"};
    platform::Button update_button{form, "Command3d2", "Update"};
    platform::Button exit_button{form, "Command3d1", "Exit"};
    platform::Label show_demo_mode{form, "show_demo_mode", "DEMO MODE!"};
    platform::Label inj_pw{form, "inj_pw"};         // ms
    platform::Label ign_deg{form, "ign_deg"};       // degrees, "A" or "B" behind
    platform::Label map_status{form, "map_status"}; // progress of the opening read, then the count of pending values
    platform::ControlArray<platform::Label, 3> tab_status{form, "tab_status"}; // by page, empty when nothing is pending

    // Page 0: fuel gains
    Nine clt_map{form, "clt_map"};
    Nine mat_data{form, "mat_data"};
    Nine baro_gain{form, "baro_gain"};
    Nine Pressure_Gain{form, "Pressure_Gain"};
    Nine accel_map{form, "accel_map"};
    // Page 1: degrees of advance
    Nine ign_map{form, "ign_map"};
    Nine ign_rpm{form, "ign_rpm"};
    Nine ign_mat{form, "ign_mat"};
    Nine ign_clt{form, "ign_clt"};
    Nine ign_aux{form, "ign_aux"};
    Nine ign_bar{form, "ign_bar"};
    // Page 2: dwell multipliers, idle speed, lambda set points
    Nine dwell_vbat{form, "dwell_vbat"};
    Nine dwell_map{form, "dwell_map"};
    Nine idle_rpm_map{form, "idle_rpm_map"};
    platform::Grid lambda_sp_table{form, "lambda_sp_table", 9, 9};

    platform::Picture clt_enr_graph{form, "clt_enr_graph"};
    platform::Picture mat_enr_graph{form, "mat_enr_graph"};
    platform::Picture baro_comp_graph{form, "baro_comp_graph"};
    platform::Picture aux_enr_graph{form, "aux_enr_graph"};
    platform::Picture accel_clt_enr_graph{form, "accel_clt_enr_graph"};
    platform::Picture map_ign_graph{form, "map_ign_graph"};
    platform::Picture rpm_ign_graph{form, "rpm_ign_graph"};
    platform::Picture mat_ign_graph{form, "mat_ign_graph"};
    platform::Picture clt_ign_graph{form, "clt_ign_graph"};
    platform::Picture aux_ign_graph{form, "aux_ign_graph"};
    platform::Picture baro_ign_graph{form, "baro_ign_graph"};
    platform::Picture dwell_mult_graph{form, "dwell_mult_graph"};
    platform::Picture dwell_vbat_mult_graph{form, "dwell_vbat_mult_graph"};
    platform::Picture idle_speed_graph{form, "idle_speed_graph"};
    platform::Picture ego_sp_graph{form, "ego_sp_graph"};
    platform::ScrollBar ego_h_perspective{form, "ego_h_perspective", 0, 100, 60};
    platform::ScrollBar ego_v_perspective{form, "ego_v_perspective", 0, 100, 30};

    // Axis captions, an array for each axis shown
    Axis Label1{form, "Label1"}, Label16{form, "Label16"}; // aux input, volts
    Axis Label6{form, "Label6"}, Label2{form, "Label2"}, Label10{form, "Label10"}, Label11{form, "Label11"},
        Label15{form, "Label15"}, Label17{form, "Label17"};                          // temperature
    Axis Label3{form, "Label3"}, Label7{form, "Label7"};                             // rpm
    Axis Label4{form, "Label4"}, Label5{form, "Label5"}, Label14{form, "Label14"};   // pressure, kPa
    Axis Label9{form, "Label9"}, Label13{form, "Label13"}, Label12{form, "Label12"}; // barometric, kPa
    Axis battery_axis{form, "battery_axis"};                                         // volts

    Frm2d() {
        show_demo_mode.set_visible(false);
        read_again.set_tool_tip("Click to read the values that the controller has not given yet");
        update_button.set_tool_tip("Click to update modified entries");
        exit_button.set_tool_tip("Click to exit back to the console");
        const auto tip = [](Nine& boxes, std::string_view text) {
            for (platform::TextBox& box : boxes) {
                box.set_tool_tip(text);
            }
        };
        for (Nine* fuel : {&clt_map, &mat_data, &Pressure_Gain, &accel_map}) {
            tip(*fuel,
                "Higher numbers in this cell will yield more fuel to be injected across this section of the map");
        }
        tip(baro_gain, "Higher values will give more fuel at this barometric pressure");
        tip(ign_map, "The degrees of Ignition advance due to manifold pressure (-16 to +48");
        tip(ign_rpm, "The degrees of Ignition advance due to Engine speed (-16 to +48");
        tip(ign_mat, "The degrees of Ignition advance due to Manifold Air Temp (-16 to +48");
        tip(ign_bar, "The degrees of Ignition advance due to Barometric Pressure (-16 to +48");
        tip(ign_clt, "The degrees of Ignition advance due to Coolant Temp (-16 to +48");
        tip(ign_aux, "The degrees of Ignition advance due to the Aux input signal (-16 to +48");
        tip(dwell_map, "The dwell is multiplied by a pressure specific amount you define in this table.");
        tip(dwell_vbat, "The dwell is multiplied by a Battery Voltage specific amount you define in this table.");
        tip(idle_rpm_map, "The Idle speed setpoint in RPM for this section of the coolant temperature band");
        lambda_sp_table.set_tool_tip("The lambda or air/fuel ratio that the oxygen feedback aims at, over engine speed "
                                     "and manifold pressure");
        ego_sp_graph.set_tool_tip("The target table as a surface");
        ego_h_perspective.set_tool_tip("Turns the surface to the side");
        ego_v_perspective.set_tool_tip("Tilts the surface");
        inj_pw.set_tool_tip("Injection pulse width now");
        ign_deg.set_tool_tip("Ignition timing now: B before, A after top dead centre");
    }
};

} // namespace ecu::maps
