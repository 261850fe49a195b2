// The plotter: a chart recorder of 21 channels over a data logger. Only the controls; their behaviour is in plotter.h.
#pragma once

#include "logging/chart_channels.h"
#include "platform/form.h"
#include "platform/strip_chart.h"

namespace ecu::logging {

struct FrmPlotter {
    platform::Form form{"frm_plotter", "Plotter"};

    platform::MenuItem menufile{form, "menufile", "&File"};
    platform::MenuItem menufileexit{menufile, "menufileexit", "e&xit"};
    platform::MenuItem menuloggingint{form, "menuloggingint", "&Logging Interval"};
    platform::ControlArray<platform::MenuItem, 8> menu_log_int{menuloggingint,
                                                               "menu_log_int",
                                                               {"100 mS&econds", "250 &mSeconds", "500 m&Seconds",
                                                                "&1 Second", "&2 Seconds", "&5 Seconds", "1&0 Seconds",
                                                                "&Fast as the com will allow"}};
    platform::MenuItem menu_mon{form, "menu_mon", "&Monitor"};
    platform::MenuItem menu_dash{form, "menu_dash", "&Dashboard"};
    platform::MenuItem menu_tools{form, "menu_tools", "&Config."};
    platform::MenuItem menu_3d{form, "menu_3d", "&Basic Map"};
    platform::MenuItem menu_2d{form, "menu_2d", "&Additional Map"};
    platform::MenuItem menu_sup{form, "menu_sup", "&GPO Drv."};
    platform::MenuItem menu_diag{form, "menu_diag", "D&iagnostics"};

    platform::StripChart Strip1{form, "Strip1", channel_count};
    platform::ControlArray<platform::CheckBox, channel_count> Check3d1{form, "Check3d1", channel_captions()};
    platform::CheckBox skip_graphics{form, "skip_graphics", "Log to file only (no graph)"};
    platform::TextBox plot_file{form, "plot_file", "PLOTTER.CSV"};
    platform::Label file_note{form, "file_note"}; // what starting a log does to the file of that name
    platform::Button new_name{form, "new_name", "&New name"};
    platform::Button browse{form, "browse", "Bro&wse..."};
    platform::Button save_picture{form, "save_picture", "Save &picture..."};
    platform::Label File_Samples{form, "File_Samples", "N/A"};
    platform::Button start_log_button{form, "Command3d2", "Start Log"};
    platform::Button stop_log_button{form, "Command3d3", "Stop Log"};
    platform::Button exit_button{form, "Command3d1", "Exit"};
    platform::Label show_demo_mode{form, "show_demo_mode", "DEMO MODE!"};

    FrmPlotter() {
        for (platform::CheckBox& box : Check3d1) {
            box.set_back_colour(chart_paper); // the captions are the chart's legend
            box.set_fore_colour(chart_channels[static_cast<std::size_t>(box.index())].colour);
            box.set_tool_tip("Click the checkbox to enable or disable this channel on the chart recorder");
        }
        plot_file.set_tool_tip("Double click me to specify a filename and location.");
        file_note.set_tool_tip("What starting a log does to the file of this name");
        new_name.set_tool_tip("Take the next name that no file has, so that no earlier log is replaced");
        browse.set_tool_tip("Choose the file's name and location");
        save_picture.set_tool_tip("Save what the chart shows as a PNG file");
        start_log_button.set_tool_tip("Click to begin a data log file");
        stop_log_button.set_tool_tip("Click to halt a data log file");
        stop_log_button.set_enabled(false);
        exit_button.set_tool_tip("Click to exit back to the console");
        show_demo_mode.set_visible(false);
    }
};

} // namespace ecu::logging
