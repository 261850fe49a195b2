// The plotter: the chart over as much of the window as there is, its channels as a legend beside it, the log below.
#include "desktop/strip_chart_widget.h"
#include "desktop/theme.h"
#include "desktop/windows/windows.h"
#include "logging/frm_plotter.h"

#include <QBoxLayout>
#include <QCheckBox>
#include <QGridLayout>
#include <QLabel>
#include <QPushButton>

namespace ecu::desktop {

namespace {

QPushButton* tool(const char* text, const char* name, const char* tip) {
    auto* button = new QPushButton(QString::fromUtf8(text));
    button->setObjectName(name);
    button->setToolTip(QString::fromUtf8(tip));
    button->setAutoDefault(false);
    return button;
}

QWidget* chart_with_tools(FormWindow& window, logging::FrmPlotter& f) {
    auto* chart = new StripChartWidget(f.Strip1);
    window.binding().bind_custom(
        f.Strip1, chart, [chart](platform::Property property) { chart->refresh(property); }, "Strip chart");
    QPushButton* live =
        tool("Back to li&ve", "chart_live", "Scroll with the newest sample again, at the usual width and height (End)");
    live->setEnabled(false);
    chart->view_changed = [chart, live] { live->setEnabled(!chart->is_at_default()); };
    QObject::connect(live, &QPushButton::clicked, chart, [chart] { chart->go_live(); });
    auto* keys = new QLabel("Click: stamp the time.  Wheel: zoom (Shift: height).  Drag: back in time.");
    theme::mute(*keys);
    keys->setSizePolicy(QSizePolicy::Ignored, QSizePolicy::Preferred);

    auto* holder = new QWidget;
    auto* layout = new QGridLayout(holder);
    layout->setContentsMargins(0, 0, 0, 0);
    layout->addWidget(chart, 0, 0, 1, 3);
    layout->addWidget(keys, 1, 0);
    layout->addWidget(live, 1, 1);
    layout->addWidget(window.make(f.save_picture), 1, 2);
    layout->setRowStretch(0, 1);
    layout->setColumnStretch(0, 1);
    return holder;
}

QWidget* legend(FormWindow& window, logging::FrmPlotter& f) {
    Panel panel = window.panel("Channels");
    panel.layout()->setVerticalSpacing(1);
    for (platform::CheckBox& box : f.Check3d1) {
        QWidget* widget = panel.add(box);
        widget->setBackgroundRole(QPalette::Window); // the paper's colour, not that of buttons
        theme::in_each(*widget, [widget] {
            QPalette bright_box = widget->palette(); // a dark one, unticked, could not be seen on the paper
            bright_box.setColor(QPalette::Base, theme::to_qt(platform::bright_white));
            bright_box.setColor(QPalette::Text, theme::to_qt(logging::chart_paper));
            widget->setPalette(bright_box);
        });
    }
    panel.fill();
    return panel;
}

// Below the body, where no scrolling takes it away: what is recorded, and the buttons that start and stop it.
QWidget* log_panel(FormWindow& window, logging::FrmPlotter& f) {
    Panel panel = window.panel("Log");
    QWidget* name = panel.row("Plotter File Name", f.plot_file);
    name->setMaximumWidth(QWIDGETSIZE_MAX);
    panel.row("", f.file_note);
    panel.next_column();
    panel.add(f.browse);
    panel.add(f.new_name);
    panel.next_column();
    panel.row("File Samples", f.File_Samples);
    panel.add(f.skip_graphics);
    panel.next_column();
    panel.add(f.start_log_button);
    panel.add(f.stop_log_button);
    panel.layout()->setColumnStretch(0, 0);
    panel.layout()->setColumnStretch(1, 1); // a path is long
    return panel;
}

} // namespace

std::unique_ptr<FormWindow> make_frm_plotter_window(logging::FrmPlotter& f, QtHost& host) {
    auto window = std::make_unique<FormWindow>(f.form, host);
    window->set_body(window->across({chart_with_tools(*window, f), legend(*window, f)}, {1, 0}));
    QWidget* strip = f.form.find("link_strip") != nullptr ? window->link_strip() : new QWidget;
    window->set_footer(window->down(
        {window->across({log_panel(*window, f), window->buttons({&f.exit_button})}, {1, 0}), strip}, {1, 0}));
    window->demo_badge(f.show_demo_mode);
    window->resize(1240, 760);
    return window;
}

} // namespace ecu::desktop
