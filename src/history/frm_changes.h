// The preview of exact writes: what is to be sent, line by line, and what became of each.
#pragma once

#include "platform/form.h"
#include "platform/list.h"

namespace ecu::history {

struct FrmChanges {
    platform::Form form{"frm_changes", "Changes to be sent"};
    platform::Label changes_source{form, "changes_source"};
    platform::List changes_list{
        form,
        "changes_list",
        {"Item", "Place", "Group", "Controller", "To be sent", "Unit", "Difference", "Per cent", "Raw", "State"},
        true};
    platform::Button changes_tick_all{form, "changes_tick_all", "Tick &all"};
    platform::Button changes_tick_none{form, "changes_tick_none", "Tick &none"};
    platform::Button changes_send{form, "changes_send", "&Send ticked"};
    platform::Button changes_stop{form, "changes_stop", "S&top"};
    platform::Button changes_close{form, "changes_close", "&Close"};
    platform::Label changes_status{form, "changes_status"};

    FrmChanges() {
        changes_tick_all.set_tool_tip("Tick every line that can be sent");
        changes_tick_none.set_tool_tip("Untick every line");
        changes_send.set_tool_tip("Write the ticked values into the controller, each verified by its answer");
        changes_stop.set_tool_tip("End the reading or sending behind the message that is under way");
        changes_close.set_tool_tip("Close this window; nothing more is sent");
        changes_list.set_tool_tip("Space ticks a line; what is not ticked stays as it is in the controller");
    }
};

} // namespace ecu::history
