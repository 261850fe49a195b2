// The main window: the menus of the whole console and one button per view. It lives for the whole run and hides
// while a view is open.
#pragma once

#include "platform/form.h"
#include "platform/picture.h"

namespace ecu::shell {

struct FrmEcu {
    platform::Form form{"FrmEcu", "ECU System Console"};

    platform::MenuItem menu_file{form, "menu_file", "&File"};
    platform::MenuItem menufileopen{menu_file, "menufileopen", "&Open and upload..."};
    platform::MenuItem menufilesave{menu_file, "menufilesave", "Download and &save..."};
    platform::MenuItem menu_file_exit{menu_file, "menu_file_exit", "e&xit"};

    platform::MenuItem menuUnits{form, "menuUnits", "&Units"};
    platform::ControlArray<platform::MenuItem, 5> menuUnitsLambda{menuUnits,
                                                                  "menuUnitsLambda",
                                                                  {"Lamba is &1.0", "Lambda is 1&4.7 (Gasoline)",
                                                                   "Lambda is 9.&0 (Ethanol)", "Lambda is 9.&765 (E85)",
                                                                   "Lambda is 6.&4 (Methanol)"}};
    platform::ControlArray<platform::MenuItem, 2> menuUnitsPressure{
        menuUnits, "menuUnitsPressure", {"Pressure is &Kpa", "Pressure is &PSIG"}};

    platform::MenuItem menu_comm{form, "menu_comm", "&Comm"};
    platform::MenuItem menu_comm_1{menu_comm, "menu_comm_1", "COM &1"};
    platform::MenuItem menu_comm_2{menu_comm, "menu_comm_2", "COM &2"};
    platform::MenuItem menu_comm_3{menu_comm, "menu_comm_3", "COM &3"};
    platform::MenuItem menu_comm_4{menu_comm, "menu_comm_4", "COM &4"};
    platform::MenuItem menu_comm_5{menu_comm, "menu_comm_5", "COM &5"};
    platform::MenuItem menu_comm_6{menu_comm, "menu_comm_6", "COM &6"};
    platform::MenuItem menu_comm_7{menu_comm, "menu_comm_7", "COM &7"};
    platform::MenuItem menu_comm_8{menu_comm, "menu_comm_8", "COM &8"};
    platform::MenuItem menu_comm_9{menu_comm, "menu_comm_9", "COM &9"};
    platform::MenuItem menu_comm_10{menu_comm, "menu_comm_10", "COM 1&0"};
    platform::MenuItem menu_comm_check{menu_comm, "menu_comm_check", "Check the &link..."};
    // Element i is port i + 1.
    std::array<platform::MenuItem*, 10> ports{&menu_comm_1, &menu_comm_2, &menu_comm_3, &menu_comm_4, &menu_comm_5,
                                              &menu_comm_6, &menu_comm_7, &menu_comm_8, &menu_comm_9, &menu_comm_10};

    platform::MenuItem menu_view{form, "menu_view", "&View"};
    platform::MenuItem Menu_View_Monitor{menu_view, "Menu_View_Monitor", "&Monitor"};
    platform::MenuItem menu_view_dashboard{menu_view, "menu_view_dashboard", "&Dashboard"};
    platform::MenuItem Menu_View_Injection{menu_view, "Menu_View_Injection", "&Config."};
    platform::MenuItem menu_View_Mapping{menu_view, "menu_View_Mapping", "&Basic Map"};
    platform::MenuItem menu_view_temperature{menu_view, "menu_view_temperature", "&Additional Map"};
    platform::MenuItem menu_View_supp{menu_view, "menu_View_supp", "Supplimental Driver Mapping Parameters"};
    platform::MenuItem menu_View_Plotter{menu_view, "menu_View_Plotter", "&Plotter"};
    platform::MenuItem menu_view_diagnostic{menu_view, "menu_view_diagnostic", "D&iagnostics"};

    platform::MenuItem menu_view_find{menu_view, "menu_view_find", "&Find..."};
    platform::MenuItem menu_view_guide{menu_view, "menu_view_guide", "G&uide"};
    platform::MenuItem menu_view_keys{menu_view, "menu_view_keys", "&Keys"};
    platform::MenuItem menu_view_theme{menu_view, "menu_view_theme", "&Theme"};
    // As theme::themes has them.
    platform::ControlArray<platform::MenuItem, 5> menu_view_themes{
        menu_view_theme,
        "menu_view_themes",
        {"As the &system's", "&Light", "&Dark", "&Night (dim red)", "&High contrast"}};
    platform::MenuItem menu_view_large_digits{menu_view, "menu_view_large_digits", "&Large digits"};

    platform::MenuItem menu_tool{form, "menu_tool", "&Tools"};
    platform::MenuItem menu_tool_flash_utility{menu_tool, "menu_tool_flash_utility", "Flash &Utility"};
    platform::MenuItem menu_tool_reflash{menu_tool, "menu_tool_reflash", "Prepare to Re-&Flash"};
    platform::MenuItem menu_tool_reset{menu_tool, "menu_tool_reset", "&Reset"};
    platform::MenuItem menu_tool_compare{menu_tool, "menu_tool_compare", "&Compare calibrations..."};
    platform::MenuItem menu_tool_upload_changes{menu_tool, "menu_tool_upload_changes", "Upload c&hanges..."};
    platform::MenuItem menu_tool_restore_point{menu_tool, "menu_tool_restore_point", "Restore &point..."};
    platform::MenuItem menu_tool_journal{menu_tool, "menu_tool_journal", "&Journal of writes..."};
    platform::MenuItem menu_tool_switch{menu_tool, "menu_tool_switch", "Switch &A/B"};
    platform::MenuItem menu_remote_setup{menu_tool, "menu_remote_setup", "&Remote Setup"};
    platform::MenuItem menu_remote_setup_start_server{menu_remote_setup, "menu_remote_setup_start_server",
                                                      "Start &server"};
    platform::MenuItem menu_remote_setup_start_client{menu_remote_setup, "menu_remote_setup_start_client",
                                                      "Start &client"};
    platform::MenuItem menu_remote_setup_halt_client{menu_remote_setup, "menu_remote_setup_halt_client",
                                                     "&Halt client"};

    platform::MenuItem menu_about{form, "menu_about", "&About"};

    platform::Picture Picture1{form, "Picture1"};
    platform::Label link_state{form, "link_state"};           // how the controller is reached at the moment
    platform::Label transfer_result{form, "transfer_result"}; // what became of the last one

    platform::Button monitor_button{form, "Command3d4", "Monitor"};
    platform::Button dashboard_button{form, "Command1", "Dashboard"};
    platform::Button configuration_button{form, "Command3d1", "Configuration"};
    platform::Button basic_map_button{form, "Command3d2", "Basic Map"};
    platform::Button additional_map_button{form, "Command3d7", "Additional Map"};
    platform::Button gpo_button{form, "Command2", "GPO Drivers"};
    platform::Button plotter_button{form, "Command3d3", "Plotter"};
    platform::Button diagnostics_button{form, "Command3", "Diagnostics"};
    platform::Button about_button{form, "Command3d6", "About"};
    platform::Button exit_button{form, "Command3d5", "Exit"};

    FrmEcu() {
        menu_file_exit.separator_before = true;
        menu_comm_check.separator_before = true;
        menuUnitsPressure[0].separator_before = true;
        menu_remote_setup.separator_before = true;
        menu_tool_compare.separator_before = true;
        menu_view_find.separator_before = true;
        menu_view_find.set_tool_tip("Any box, map, figure or command by words (Ctrl+K, in every window)");
        menu_view_guide.set_tool_tip("What each window is for, and how to use it (F1, in every window its own page)");
        menu_view_keys.set_tool_tip("All keys on one page");
        menu_view_theme.set_tool_tip("Colours of all windows; F9 goes through them, in every window");
        menu_view_large_digits.set_tool_tip("Larger text and figures, to be read from further away (Shift+F9)");
        menu_tool_switch.shortcut = "F8";
        menu_tool_compare.set_tool_tip("Two calibrations side by side: files, restore points, the controller");
        menu_tool_upload_changes.set_tool_tip("Send only what a setup file changes, after a look at it");
        menu_tool_restore_point.set_tool_tip("Keep the controller's whole calibration, and go back to it");
        menu_tool_journal.set_tool_tip("Everything that was written to the controller from this folder");
        menu_tool_switch.set_tool_tip("Make the controller hold the other one of restore points A and B");
        exit_button.set_tool_tip("Click to end the program");
    }
};

} // namespace ecu::shell
