// The preview of exact writes: the list takes all the room, what happens stands below it.
#include "desktop/windows/windows.h"
#include "history/frm_changes.h"

#include <QWidget>

namespace ecu::desktop {

std::unique_ptr<FormWindow> make_frm_changes_window(history::FrmChanges& f, QtHost& host) {
    auto window = std::make_unique<FormWindow>(f.form, host);
    Panel panel = window->panel("Exact writes");
    panel.add(f.changes_source, "Where the values come from");
    panel.add(f.changes_list, "Changes to be sent", 1);
    window->set_body(panel);
    window->set_footer(window->buttons(
        {&f.changes_tick_all, &f.changes_tick_none, &f.changes_stop, &f.changes_send, &f.changes_close}));
    window->status_line(f.changes_status)->setAccessibleName("State of the sending");
    window->focus_first([&f]() -> platform::Control& { return f.changes_list; });
    window->close_on_escape();
    window->resize(960, 480);
    return window;
}

} // namespace ecu::desktop
