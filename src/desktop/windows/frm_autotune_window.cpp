// The autotune screen: the two grids of factors on two pages, criteria and counts beside them.
#include "autotune/frm_autotune.h"
#include "desktop/theme.h"
#include "desktop/windows/windows.h"

#include <QLabel>
#include <QShortcut>
#include <QStatusBar>
#include <QTabWidget>

namespace ecu::desktop {

namespace {

QWidget* factors(FormWindow& window, platform::Grid& grid, const char* name) {
    QWidget* widget = window.make(grid, name);
    QFont font = theme::figure_font(10);
    font.setWeight(QFont::Normal);
    widget->setFont(font);
    widget->setMinimumSize(440, 240);
    return widget;
}

// The grids keep Tab to themselves, so other keys lead between them and the rest.
void add_shortcuts(FormWindow& window, autotune::FrmAutotune& f, QTabWidget& pages, QWidget& outside) {
    for (int page = 0; page < pages.count(); ++page) {
        auto* choose = new QShortcut(QKeySequence(Qt::CTRL | static_cast<Qt::Key>(Qt::Key_1 + page)), &window);
        QObject::connect(choose, &QShortcut::activated, &window, [&f, &pages, page] {
            f.autotune_tabs.set_current(page);
            pages.currentWidget()->setFocus();
        });
    }
    auto* change_sides = new QShortcut(QKeySequence(Qt::Key_F6), &window);
    QObject::connect(change_sides, &QShortcut::activated, &window, [&window, &pages, &outside] {
        QWidget* page = pages.currentWidget();
        const bool inside = page->isAncestorOf(window.focusWidget()) || window.focusWidget() == page;
        (inside ? &outside : page)->setFocus();
    });
}

} // namespace

std::unique_ptr<FormWindow> make_frm_autotune_window(autotune::FrmAutotune& f, QtHost& host) {
    auto window = std::make_unique<FormWindow>(f.form, host);
    QTabWidget* pages = window->tabs(
        f.autotune_tabs, {{"Injection Map", factors(*window, f.autotune_inj_factors, "Factors of the injection map")},
                          {"TPS Map", factors(*window, f.autotune_tps_factors, "Factors of the TPS map")}});
    pages->setSizePolicy(QSizePolicy::Expanding, QSizePolicy::Expanding);

    Panel criteria = window->panel("Stability");
    criteria.row("MAP Stability critieria", f.map_stability_criteria, "KPa/Sec");
    criteria.row("RPM Stability critieria", f.Text1, "RPM/Sec");
    criteria.row("Lambda Stability critieria", f.Text2, "Lambda/Sec");
    Panel counts = window->panel("Datapoints");
    counts.figure("Datapoints Accepted", f.datapts_accepted, "", "00000");
    counts.figure("Datapoints Rejected", f.datapts_rejected, "", "00000");
    Panel hints = window->panel("Factors");
    hints.note("A factor multiplies the map's cell in the same place. An empty cell or X leaves the map's cell as it "
               "is. Nothing is sent before Update on the map.");
    QWidget* side = window->stack({criteria, counts, hints});
    side->setMaximumWidth(360);

    window->set_body(window->across({pages, side}, {1, 0}));
    window->set_footer(window->buttons({&f.apply_to_maps, &f.reset_autotune_params, &f.Command3d1}));
    auto* keys = new QLabel(QString::fromUtf8("Ctrl+1, Ctrl+2 grid   F6 to and from it"));
    QPalette palette;
    palette.setColor(QPalette::WindowText, theme::muted_text(QPalette()));
    keys->setPalette(palette);
    window->statusBar()->addPermanentWidget(keys);
    add_shortcuts(*window, f, *pages, *window->binding().widget_of(f.apply_to_maps));
    pages->currentWidget()->setFocus();
    window->resize(1120, 660);
    return window;
}

} // namespace ecu::desktop
