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

QWidget* map_page(FormWindow& window, history::FrmCompare& f) {
    const auto grid = [&](platform::Grid& control, const char* title) {
        Panel panel = window.panel(title);
        panel.add(control, title, 1);
        window.binding().widget_of(control)->setMinimumSize(160, 120);
        return panel;
    };
    const Panel a = grid(f.map_a, "A");
    const Panel b = grid(f.map_b, "B");
    const Panel difference = grid(f.map_difference, "B less A");
    return window.down({window.make(f.map_name, "Map"), window.across({a, b, difference})}, {0, 1});
}

} // namespace

std::unique_ptr<FormWindow> make_frm_compare_window(history::FrmCompare& f, QtHost& host) {
    auto window = std::make_unique<FormWindow>(f.form, host);
    QWidget* sides = window->across({side_panel(*window, f, 0), side_panel(*window, f, 1)});

    Panel filter = window->panel("Show");
    filter.add(f.compare_groups, "Groups", 1);
    filter.row("Text", f.compare_text);
    filter.row("At least", f.compare_rate, "%");
    filter.add(f.compare_raw);

    Panel list = window->panel();
    list.add(f.compare_summary, "How many differ");
    list.add(f.compare_list, "Differences", 1);
    auto* pages = new QTabWidget;
    pages->addTab(list, "&Differences");
    pages->addTab(map_page(*window, f), "&Map");
    pages->setAccessibleName("Differences and map");
    pages->setToolTip("All differences, and the map of the chosen one");

    window->set_body(window->down({sides, window->across({filter, pages}, {0, 1})}, {0, 1}));
    window->set_footer(
        window->buttons({&f.compare_swap, &f.compare_stop, &f.compare_tick_shown, &f.compare_tick_none, &f.compare_copy,
                         &f.compare_csv, &f.compare_page, &f.compare_send, &f.compare_close}));
    window->status_line(f.compare_status)->setAccessibleName("Result of the comparison");
    window->focus_first([&f]() -> platform::Control& { return f.side_file[0]; });
    window->close_on_escape();
    f.to_clipboard = [](const std::string& text) { QApplication::clipboard()->setText(QString::fromStdString(text)); };
    window->resize(1180, 660);
    return window;
}

} // namespace ecu::desktop
