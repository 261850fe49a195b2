// The journal of writes as a list, the newest first.
#pragma once

#include "platform/form.h"
#include "platform/list.h"

namespace ecu::history {

struct FrmJournal {
    platform::Form form{"frm_journal", "Journal of writes"};
    platform::TextBox journal_filter{form, "journal_filter"};
    platform::Button journal_refresh{form, "journal_refresh", "&Refresh"};
    platform::List journal_list{
        form, "journal_list", {"Time", "Item", "Place", "Before", "After", "Raw", "Taken", "From", "Controller"}, true};
    platform::Button journal_tick_shown{form, "journal_tick_shown", "Tick &all shown"};
    platform::Button journal_tick_none{form, "journal_tick_none", "Tick &none"};
    platform::Button journal_put_back{form, "journal_put_back", "&Put back..."};
    platform::Button journal_close{form, "journal_close", "&Close"};
    platform::Label journal_status{form, "journal_status"};

    FrmJournal() {
        journal_close.set_tool_tip("Close this window");
        journal_filter.set_tool_tip("Only rows with this text in item, place, value, time or window");
        journal_refresh.set_tool_tip("Read the journal again");
        journal_list.set_tool_tip("What the console and the command line wrote from this folder; Space ticks a row");
        journal_tick_shown.set_tool_tip("Tick every row that the filter shows");
        journal_tick_none.set_tool_tip("Untick every row");
        journal_put_back.set_tool_tip("Show the older values of the ticked rows, and write them back; where an item "
                                      "was written several times, the value before the first of them");
    }
};

} // namespace ecu::history
