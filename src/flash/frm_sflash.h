// The flash utility: takes the serial port for itself and feeds a record file to the controller's monitor.
#pragma once

#include "platform/form.h"

namespace ecu::flash {

struct FrmSflash {
    platform::Form form{"sflash", "Kerrin Flash Utility"};

    platform::Button flash_button{form, "Command1", "Flash Program"};
    platform::Button halt_button{form, "Command2", "Halt Flashing"};
    platform::Button monitor_check_button{form, "Command3", "Monitor Check"};
    platform::Button exit_flash{form, "exit_flash", "Exit Flash Util."};
    platform::Button check_file{form, "check_file", "Check file..."};
    platform::CheckBox line_delay_box{form, "line_delay_box", "Add line dly."};
    platform::TextBox line_dly{form, "line_dly", "0.020"};
    platform::CheckBox char_delay_box{form, "char_delay_box", "Add charecter dly."};
    platform::TextBox char_dly{form, "char_dly", "0.001"};
    platform::Label lines_sent{form, "lines_sent", "0"};
    platform::TextBox terminal{form, "terminal"}; // what the monitor says

    platform::Label flash_port{form, "flash_port", "The port is not open."};
    platform::Label flash_file{form, "flash_file", "No file has been chosen."}; // its name, size and lines
    platform::Label flash_note{form, "flash_note"};                             // how far the run is, how it ended
    platform::Shape flash_track{form, "flash_progress", 0};
    platform::Shape flash_bar{form, "flash_progress", 1};

    FrmSflash() {
        terminal.multi_line = true;
        halt_button.set_enabled(false);
        flash_track.place(0, 0, 1000, 20);
        flash_bar.place(0, 0, 0, 20);
        flash_button.set_tool_tip("Click to choose a record file and send it to the controller's monitor");
        halt_button.set_tool_tip("Click to stop the run at its next line; the controller must be flashed again then");
        monitor_check_button.set_tool_tip("Click to ask the monitor whether it is there; a B in its answer says so");
        check_file.set_tool_tip("Click to look through a record file before it is flashed; nothing is sent");
        exit_flash.set_tool_tip("Click to give the port back and return to the console");
        line_delay_box.set_tool_tip("Wait after each line");
        line_dly.set_tool_tip("Seconds; read anew for each line");
        char_delay_box.set_tool_tip("Send character by character, with a line end behind each line but the first");
        char_dly.set_tool_tip("Seconds; read anew for each character");
        lines_sent.set_tool_tip("Lines sent behind the first, which is not counted");
        terminal.set_tool_tip("What the monitor says; select and copy as you like");
    }
};

} // namespace ecu::flash
