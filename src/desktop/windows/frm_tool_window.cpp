// The configuration window: the thirteen tabs at the left, the page beside them, what is pending in the status line.
#include "desktop/side_tabs.h"
#include "desktop/theme.h"
#include "desktop/windows/frm_tool_pages.h"
#include "desktop/windows/windows.h"

#include <QLabel>
#include <QStatusBar>

namespace ecu::desktop {

namespace {

using calibration::Tab;
using configuration::FrmTool;

QWidget* page(FormWindow& window, FrmTool& f, Tab tab) {
    switch (tab) {
    case Tab::engine_setup:
        return engine_setup_page(window, f);
    case Tab::injection:
        return injection_page(window, f);
    case Tab::phases:
        return phases_page(window, f);
    case Tab::sensors:
        return sensors_page(window, f);
    case Tab::inputs:
        return inputs_page(window, f);
    case Tab::speed:
        return speed_page(window, f);
    case Tab::none:
    case Tab::acceleration:
    case Tab::ignition:
    case Tab::powerup:
    case Tab::idle:
    case Tab::closed_loop:
    case Tab::startup:
    case Tab::flat_shift:
        break;
    }
    return plain_page(window, f, tab);
}

} // namespace

std::unique_ptr<FormWindow> make_frm_tool_window(configuration::FrmTool& f, QtHost& host) {
    auto window = std::make_unique<FormWindow>(f.form, host);
    std::vector<std::pair<QString, QWidget*>> pages;
    for (std::size_t n = 0; n < calibration::tab_captions.size(); ++n) {
        const std::string_view caption = calibration::tab_captions[n];
        pages.emplace_back(QString::fromUtf8(caption.data(), static_cast<qsizetype>(caption.size())),
                           page(*window, f, static_cast<Tab>(n + 1)));
    }
    window->set_body(SideTabs::make(*window, f.tool_tab, pages));
    window->set_footer(window->buttons({&f.read_again, &f.update_button, &f.exit_button}));
    window->demo_badge(f.show_demo_mode);
    window->status_line(f.tool_status);
    auto* keys = new QLabel(QString::fromUtf8("Enter: send all that is pending   Ctrl+Tab, Ctrl+PgDn/PgUp: tabs"));
    theme::mute(*keys);
    window->statusBar()->addPermanentWidget(keys);
    window->resize(1180, 720);
    return window;
}

} // namespace ecu::desktop
