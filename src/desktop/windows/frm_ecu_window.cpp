// The main window: the installer's picture, a button per view, and in the status bar how the controller is reached.
#include "desktop/windows/windows.h"
#include "shell/frm_ecu.h"

#include <QGridLayout>
#include <QStatusBar>

namespace ecu::desktop {

namespace {

// The buttons in three rows: watching, setting up, the console itself.
QWidget* button_rows(FormWindow& window, shell::FrmEcu& f) {
    auto* holder = new QWidget;
    auto* layout = new QGridLayout(holder);
    layout->setContentsMargins(0, 0, 0, 0);
    const std::array<std::array<platform::Button*, 4>, 3> rows{
        {{&f.monitor_button, &f.dashboard_button, &f.plotter_button, &f.diagnostics_button},
         {&f.basic_map_button, &f.additional_map_button, &f.gpo_button, &f.configuration_button},
         {nullptr, nullptr, &f.about_button, &f.exit_button}}};
    for (int row = 0; row < 3; ++row) {
        for (int column = 0; column < 4; ++column) {
            platform::Button* button = rows[static_cast<std::size_t>(row)][static_cast<std::size_t>(column)];
            if (button == nullptr) {
                continue;
            }
            QWidget* widget = window.make(*button);
            widget->setMinimumSize(132, row < 2 ? 46 : 30);
            layout->addWidget(widget, row, column);
        }
    }
    return holder;
}

} // namespace

std::unique_ptr<FormWindow> make_frm_ecu_window(shell::FrmEcu& f, QtHost& host) {
    auto window = std::make_unique<FormWindow>(f.form, host);
    QWidget* picture = window->make(f.Picture1, "Picture of the installation");
    picture->setMinimumHeight(180);
    window->set_body(window->down({picture, button_rows(*window, f)}, {1, 0}));

    window->status(f.link_state)->setAccessibleName("Link");
    QWidget* result = window->status(f.transfer_result);
    result->setAccessibleName("Last transfer");
    result->setSizePolicy(QSizePolicy::Ignored, QSizePolicy::Preferred); // a long one must not widen the window
    window->statusBar()->removeWidget(result);
    window->statusBar()->addWidget(result, 1);
    result->show();
    window->resize(590, 430);
    return window;
}

} // namespace ecu::desktop
