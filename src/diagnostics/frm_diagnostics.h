// Diagnostics: firing injector and ignition drivers, capturing the crank wheel, and dyno runs, a tab each. Only
// controls; the driver tests start locked.
#pragma once

#include "platform/form.h"
#include "platform/picture.h"

namespace ecu::diagnostics {

struct FrmDiagnostics {
    template <std::size_t N> using Buttons = platform::ControlArray<platform::Button, N>;
    using Channels = platform::ControlArray<platform::CheckBox, 8>;

    static constexpr std::array<std::string_view, 4> tab_captions{"Injector", "Ignition", "Crank Wheel", "Dyno"};
    static constexpr int dyno_tab = 3; // the only one that is polled
    static constexpr std::array<std::string_view, 8> channel_captions{
        "Channel 1", "Channel 2", "Channel 3", "Channel 4", "Channel 5", "Channel 6", "Channel 7", "Channel 8"};

    platform::Form form{"frm_diagnostics", "Diagnostics"};

    platform::MenuItem menufile{form, "menufile", "&File"};
    platform::MenuItem menufileexit{menufile, "menufileexit", "e&xit"};
    platform::MenuItem menuupdate{form, "menuupdate", "&Update"};
    platform::MenuItem menu_mon{form, "menu_mon", "&Monitor"};
    platform::MenuItem menu_dash{form, "menu_dash", "&Dashboard"};
    platform::MenuItem menu_tools{form, "menu_tools", "&Config"};
    platform::MenuItem menu_3d{form, "menu_3d", "&Basic Map"};
    platform::MenuItem menu_2d{form, "menu_2d", "&Additional Map"};
    platform::MenuItem menu_sup{form, "menu_sup", "&GPO Drv."};
    platform::MenuItem menu_plot{form, "menu_plot", "&Plotter"};

    platform::Tabs diags_tab{form, "diags_tab"};
    platform::Button exit_button{form, "Command3d2", "Exit"};
    platform::Label show_demo_mode{form, "show_demo_mode", "DEMO MODE!"};

    // Driver tests: element 0 and the injector boxes on one panel, element 1 and the ignition boxes on the other
    Buttons<2> unlock_button{form, "Command3", "Click this button to enable driver diagnostics!"};
    Channels inj_chan_test{form, "inj_chan_test", channel_captions};
    Channels ign_chan_test{form, "ign_chan_test", channel_captions};
    platform::Button test_injectors_button{form, "Command1", "Test"};
    platform::Button test_ignition_button{form, "Command2", "Test"};
    platform::ControlArray<platform::Label, 2> test_result{form, "test_result"}; // what the last press has done

    // Crank wheel
    platform::Button arm_capture{form, "arm_capture", "Arm Capture"};
    platform::Button get_wheel_plot_data{form, "get_wheel_plot_data", "Get Plot"};
    platform::Button wheel_diag_continuous{form, "wheel_diag_continuous", "Start"};
    platform::Button wheel_diag_halt{form, "wheel_diag_halt", "Halt"};
    platform::Picture wheel_speed_plot{form, "wheel_speed_plot"};
    platform::Label crank_target_rpm{form, "crank_target_rpm", "XXXXX"};
    platform::Label wheel_summary{form, "wheel_summary", "No capture has been read yet."};
    platform::Label wheel_reading{form, "wheel_reading"}; // the tooth that is pointed at
    platform::Button wheel_save_picture{form, "wheel_save_picture", "Save Picture..."};

    // Dyno: "Trig RPM" and "End RPM", "Sample rate MS", "Dyno Status", "Samples", "File Name", "Series"
    platform::ControlArray<platform::TextBox, 2> dyno_trig_rpm{form, "dyno_trig_rpm",
                                                               std::array<std::string_view, 2>{"2500", "8000"}};
    platform::TextBox dyno_sample_rate{form, "dyno_sample_rate", "100"};
    platform::Button dyno_arm{form, "dyno_arm", "ARM DynoBox"};
    platform::Button dyno_cancel{form, "dyno_cancel", "Cancel"};
    platform::Label dyno_stat{form, "dyno_stat"};
    platform::Label dyno_samples{form, "dyno_samples"};
    platform::Button dyno_plot{form, "dyno_plot", "Plot Last"};
    platform::Button dyno_ref_file{form, "dyno_ref_file", "Save Ref Plot"};
    platform::Button dyno_save{form, "dyno_save", "Save"};
    platform::TextBox dyno_file_name{form, "dyno_file_name", "dyno"};
    platform::TextBox dyno_series{form, "dyno_series", "001"};
    platform::Picture dyno_plot_screen{form, "dyno_plot_screen"};
    platform::Label dyno_note{form, "dyno_note"};           // what has become of the run
    platform::Label dyno_save_note{form, "dyno_save_note"}; // what "Save" would write
    platform::Label dyno_peaks{form, "dyno_peaks"};
    platform::Label dyno_reading{form, "dyno_reading"}; // the place that is pointed at
    platform::Button dyno_save_picture{form, "dyno_save_picture", "Save Picture..."};

    bool diagnostics_open = false;

    FrmDiagnostics() {
        show_demo_mode.set_visible(false);
        test_injectors_button.set_enabled(false);
        test_ignition_button.set_enabled(false);
        wheel_diag_halt.set_enabled(false);
        dyno_cancel.set_enabled(false);
        dyno_save.set_enabled(false);
        dyno_ref_file.set_enabled(false);
        for (platform::Button& unlock : unlock_button) {
            unlock.set_tool_tip("Click once the engine stands still; both panels are unlocked until the window closes");
        }
        test_injectors_button.set_tool_tip("Click to fire the ticked injector channels once");
        test_ignition_button.set_tool_tip("Click to fire the ticked ignition channels once");
        arm_capture.set_tool_tip("Click to let the controller capture one revolution of the crank wheel");
        get_wheel_plot_data.set_tool_tip("Click to read the last capture and draw it");
        wheel_diag_continuous.set_tool_tip("Click to capture and draw again and again");
        wheel_diag_halt.set_tool_tip("Click to end the continuous capture");
        wheel_speed_plot.set_tool_tip("Point at a tooth, or move along the teeth with the arrow keys");
        crank_target_rpm.set_tool_tip("Engine speed as the capture was read");
        dyno_trig_rpm[0].set_tool_tip("Engine speed at which the run begins, 0 to 65535");
        dyno_trig_rpm[1].set_tool_tip("Engine speed at which the run ends, 0 to 65535");
        dyno_sample_rate.set_tool_tip("Milliseconds from one row of the run to the next, as fast as the link allows");
        dyno_arm.set_tool_tip("Click to begin a new run file and arm the controller");
        dyno_cancel.set_tool_tip("Click to disarm the controller");
        dyno_plot.set_tool_tip("Click to draw the newest run and the reference again");
        dyno_ref_file.set_tool_tip("Click to make the newest run the reference");
        dyno_save.set_tool_tip("Click to save the newest run under the file name and series number");
        dyno_file_name.set_tool_tip("Name of saved runs, in front of the series number");
        dyno_series.set_tool_tip("Number of the next saved run; it counts up with each");
        dyno_plot_screen.set_tool_tip("Point at the curves, or move along them with the arrow keys");
        for (platform::Button* save : {&wheel_save_picture, &dyno_save_picture}) {
            save->set_tool_tip("Click to save the drawing with its axes as a picture");
        }
        exit_button.set_tool_tip("Click to exit back to the console");
    }
};

} // namespace ecu::diagnostics
