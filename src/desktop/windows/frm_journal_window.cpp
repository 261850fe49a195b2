// The journal of writes: a filter, the list, and what can be done with the ticked rows.
#include "desktop/windows/windows.h"
#include "history/frm_journal.h"

#include <QWidget>

namespace ecu::desktop {

std::unique_ptr<FormWindow> make_frm_journal_window(history::FrmJournal& f, QtHost& host) {
    auto window = std::make_unique<FormWindow>(f.form, host);
    Panel panel = window->panel("Writes");
    panel.note("Only rows with this text");
    panel.add(f.journal_filter, "Filter");
    panel.add(f.journal_list, "Journal of writes", 1);
    window->set_body(panel);
    window->set_footer(window->buttons(
        {&f.journal_refresh, &f.journal_tick_shown, &f.journal_tick_none, &f.journal_put_back, &f.journal_close}));
    window->status_line(f.journal_status)->setAccessibleName("State of the journal");
    window->focus_first([&f]() -> platform::Control& { return f.journal_filter; });
    window->close_on_escape();
    window->resize(960, 480);
    return window;
}

} // namespace ecu::desktop
