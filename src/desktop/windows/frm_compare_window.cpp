// Two calibrations: the sides above, groups at the left, the differences in the middle, the map of the chosen line on a
// page of its own.
#include "desktop/windows/windows.h"
#include "history/frm_compare.h"

#include <QApplication>
#include <QClipboard>
#include <QTabWidget>

namespace ecu::desktop {

namespace {

Panel side_panel(FormWindow& window, history::FrmCompare& f, std::size_t side) {
    Panel panel = window.panel(side == 0 ? "Side A" : "Side B");
    panel.add(f.side_name[side], side == 0 ? "Side A" : "Side B");
    const std::array<platform::Control*, 4> from{&f.side_file[side], &f.side_controller[side], &f.side_point[side],
                                                 &f.side_point_number[side]};
    panel.side_by_side(from);
    window.binding()
        .widget_of(f.side_point_number[side])
        ->setAccessibleName(side == 0 ? "Number of the restore point of side A"
                                      : "Number of the restore point of side B");
    return panel;
}

QWidget* map_panel(FormWindow& window, platform::Grid& grid, const char* title) {
    Panel panel = window.panel(title);
    panel.add(grid, title, 1);
    window.binding().widget_of(grid)->setMinimumSize(200, 120);
    return panel;
}

QWidget* differences_page(FormWindow& window, history::FrmCompare& f) {
    Panel filter = window.panel("Show");
    filter.add(f.compare_groups, "Groups", 1);
    filter.row("Text", f.compare_text);
    filter.row("At least", f.compare_rate, "%");
    filter.add(f.compare_raw);
    Panel list = window.panel("Differences");
    list.add(f.compare_list, "Differences", 1);
    const std::array<platform::Control*, 5> acts{&f.compare_tick_shown, &f.compare_tick_none, &f.compare_copy,
                                                 &f.compare_csv, &f.compare_page};
    list.side_by_side(acts);
    return window.across({filter, list}, {0, 1});
}

} // namespace

std::unique_ptr<FormWindow> make_frm_compare_window(history::FrmCompare& f, QtHost& host) {
    auto window = std::make_unique<FormWindow>(f.form, host);
    QWidget* sides = window->across({side_panel(*window, f, 0), side_panel(*window, f, 1)});

    auto* pages = new QTabWidget;
    pages->addTab(differences_page(*window, f), "&Differences");
    pages->addTab(
        window->down({window->make(f.map_name[0], "Map"), map_panel(*window, f.map_difference, "B less A")}, {0, 1}),
        "&Map, B less A");
    pages->addTab(window->down({window->make(f.map_name[1], "Map"),
                                window->across({map_panel(*window, f.map_a, "A"), map_panel(*window, f.map_b, "B")})},
                               {0, 1}),
                  "Map, A and &B");
    pages->setAccessibleName("Differences and maps");
    pages->setToolTip("All differences, and the map of the chosen one");

    window->set_body(window->down({sides, window->make(f.compare_summary, "How many differ"), pages}, {0, 0, 1}));
    window->set_footer(window->buttons({&f.compare_swap, &f.compare_stop, &f.compare_send, &f.compare_close}));
    window->status_line(f.compare_status)->setAccessibleName("Result of the comparison");
    window->focus_first([&f]() -> platform::Control& { return f.side_file[0]; });
    window->close_on_escape();
    f.to_clipboard = [](const std::string& text) { QApplication::clipboard()->setText(QString::fromStdString(text)); };
    window->resize(1180, 660);
    return window;
}

} // namespace ecu::desktop
