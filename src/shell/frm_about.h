// The About window: what the console and the controller are, the installer's picture and text, and the last message
// that failed, so that a tuner can report it.
#pragma once

#include "platform/form.h"
#include "platform/picture.h"

namespace ecu::shell {

struct FrmAbout {
    platform::Form form{"frm_about", "About"};

    platform::MenuItem menu_file{form, "menu_file", "&File"};
    platform::MenuItem menu_file_exit{menu_file, "menu_file_exit", "e&xit"};

    platform::Picture Picture1{form, "Picture1"};
    platform::Label ECU_Rev{form, "ECU_Rev"};
    platform::Label FW_Rev{form, "FW_Rev"};
    platform::Label serial_num{form, "serial_num"};
    platform::TextBox oemtext{form, "oemtext"};
    platform::Label comm_details{form, "comm_details"};
    platform::Button exit_button{form, "Command3d1", "Exit"};

    FrmAbout() { oemtext.multi_line = true; }
};

} // namespace ecu::shell
