// What was found in a record file; beside the flash utility.
#pragma once

#include "platform/form.h"

namespace ecu::flash {

struct FrmFlashCheck {
    platform::Form form{"frm_flash_check", "Check of a Record File"};
    platform::Label check_file_name{form, "check_file_name"};
    platform::Label check_result{form, "check_result"}; // in one line
    platform::TextBox check_text{form, "check_text"};   // all that was found
    platform::Button check_again{form, "check_again", "Another file..."};
    platform::Button check_close{form, "check_close", "Close"};

    FrmFlashCheck() {
        check_text.multi_line = true;
        check_file_name.set_tool_tip("The file that was looked through");
        check_result.set_tool_tip("Advice only: the file can be flashed all the same");
        check_text.set_tool_tip("What the file holds, what is wrong with it by line, and how a rehearsal went");
        check_again.set_tool_tip("Click to choose another record file and look through it");
        check_close.set_tool_tip("Click to close this window");
    }
};

} // namespace ecu::flash
