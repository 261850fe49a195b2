// The restore points: the list, the note and the making below it, what can be done with the chosen one beside.
#include "desktop/windows/windows.h"
#include "history/frm_restore_points.h"

#include <QWidget>

namespace ecu::desktop {

std::unique_ptr<FormWindow> make_frm_restore_points_window(history::FrmRestorePoints& f, QtHost& host) {
    auto window = std::make_unique<FormWindow>(f.form, host);
    Panel points = window->panel("Restore points");
    points.add(f.points_list, "Restore points", 1);
    points.note("Note of the next one, or of the chosen one");
    points.add(f.point_note, "Note");
    const std::array<platform::Control*, 3> making{&f.point_make, &f.point_stop, &f.point_set_note};
    points.side_by_side(making);
    points.add(f.points_by_themselves);
    Panel chosen = window->panel("The chosen one");
    const std::array<platform::Control*, 4> acts{&f.point_restore, &f.point_compare, &f.point_save, &f.point_remove};
    chosen.column(acts);
    chosen.fill();
    Panel two = window->panel("Two to switch between (F8)");
    two.add(f.points_two, "Calibrations A and B");
    const std::array<platform::Control*, 4> choosing{&f.point_as_a, &f.file_as_a, &f.point_as_b, &f.file_as_b};
    two.column(choosing);
    window->set_body(window->across({points, window->down({chosen, two}, {1, 0})}, {1, 0}));
    window->set_footer(window->buttons({&f.points_close}));
    window->status_line(f.points_status)->setAccessibleName("State of the restore points");
    window->focus_first([&f]() -> platform::Control& { return f.points_list; });
    window->close_on_escape();
    window->resize(900, 440);
    return window;
}

} // namespace ecu::desktop
