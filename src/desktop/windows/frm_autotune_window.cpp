// The autotune screen: the two grids of factors on two pages, criteria and counts beside them.
#include "autotune/frm_autotune.h"
#include "desktop/theme.h"
#include "desktop/windows/windows.h"

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
    window->resize(1120, 640);
    return window;
}

} // namespace ecu::desktop
