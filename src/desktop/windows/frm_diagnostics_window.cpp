// Diagnostics: a tab for each kind of driver test, the crank wheel and the dyno, the drawings over as much of their
// tabs as there is.
#include "desktop/plot_view.h"
#include "desktop/theme.h"
#include "desktop/windows/windows.h"
#include "diagnostics/frm_diagnostics.h"

#include <QBoxLayout>
#include <QGridLayout>
#include <QLabel>
#include <QPainter>
#include <QPixmap>
#include <QTabWidget>

namespace ecu::desktop {

namespace {

using diagnostics::FrmDiagnostics;
using platform::palette;

QWidget* plot(FormWindow& window, platform::Picture& picture, const char* name) {
    auto* view = new PlotView(picture);
    window.binding().bind_custom(
        picture, view, [view](platform::Property property) { view->refresh(property); }, name);
    return view;
}

// A text that changes with each drawing keeps its room, so that the drawing keeps its size.
QWidget* wrapped(FormWindow& window, platform::Label& label, const char* name, int lines) {
    auto* widget = static_cast<QLabel*>(window.make(label, name));
    widget->setWordWrap(true);
    widget->setAlignment(Qt::AlignLeft | Qt::AlignTop);
    widget->setSizePolicy(QSizePolicy::Ignored, QSizePolicy::Preferred);
    widget->setMinimumHeight(lines * widget->fontMetrics().lineSpacing());
    return widget;
}

QWidget* legend(std::initializer_list<std::pair<platform::Colour, const char*>> entries) {
    auto* holder = new QWidget;
    auto* layout = new QHBoxLayout(holder);
    layout->setContentsMargins(0, 0, 0, 0);
    layout->setSpacing(theme::gap);
    for (const auto& [colour, text] : entries) {
        auto* swatch = new QLabel;
        theme::in_each(*swatch, [swatch, shown = colour] {
            QPixmap sample(26, 12);
            sample.fill(Qt::black); // the drawing's own ground
            QPainter painter(&sample);
            painter.fillRect(3, 5, 20, 2, theme::to_qt(shown));
            painter.end();
            swatch->setPixmap(sample);
        });
        layout->addWidget(swatch);
        layout->addWidget(new QLabel(QString::fromUtf8(text)));
        layout->addSpacing(theme::margin);
    }
    layout->addStretch(1);
    return holder;
}

QWidget* note(const char* text) {
    auto* label = new QLabel(QString::fromUtf8(text));
    label->setWordWrap(true);
    theme::mute(*label);
    label->setSizePolicy(QSizePolicy::Ignored, QSizePolicy::Preferred);
    return label;
}

QWidget* driver_page(FormWindow& window, FrmDiagnostics& f, std::size_t panel, FrmDiagnostics::Channels& channels,
                     platform::Button& test, const char* title) {
    Panel boxes = window.panel(title);
    const std::vector<platform::Control*> all = each(channels);
    boxes.column(std::span(all).first(4));
    boxes.next_column();
    boxes.column(std::span(all).last(4));
    Panel act = window.panel("Test");
    act.add(note("The engine must stand still. Unlocking shows what to look at first; it lasts until this window "
                 "closes. Each press of Test fires the ticked channels once."));
    act.add(f.unlock_button[panel]);
    act.add(test);
    act.add(wrapped(window, f.test_result[panel], "Last test", 2));
    act.fill();
    return window.stack({window.across({boxes, act}, {1, 2})});
}

QWidget* wheel_page(FormWindow& window, FrmDiagnostics& f) {
    Panel act = window.panel("Capture");
    act.add(f.arm_capture);
    act.add(f.get_wheel_plot_data);
    act.add(f.wheel_save_picture);
    act.row("Engine speed, rpm", f.crank_target_rpm);
    Panel again = window.panel("Continuous");
    again.add(f.wheel_diag_continuous);
    again.add(f.wheel_diag_halt);
    QWidget* right = window.stack({act, again});
    QWidget* left = window.down({plot(window, f.wheel_speed_plot, "Periods of the crank wheel's teeth"),
                                 legend({{palette[14], "within 50 % of the mean"},
                                         {palette[12], "beyond: drawn at the mean's height, not at its value"}}),
                                 wrapped(window, f.wheel_reading, "Tooth pointed at", 1),
                                 wrapped(window, f.wheel_summary, "Capture", 2)},
                                {1, 0, 0, 0});
    return window.across({left, right}, {1, 0});
}

QWidget* dyno_page(FormWindow& window, FrmDiagnostics& f) {
    Panel run = window.panel("Run");
    run.row("Trig RPM", f.dyno_trig_rpm[0]);
    run.row("End RPM", f.dyno_trig_rpm[1]);
    run.row("Sample rate MS", f.dyno_sample_rate);
    run.row("Dyno Status", f.dyno_stat);
    run.row("Samples", f.dyno_samples);
    run.add(f.dyno_arm);
    run.add(f.dyno_cancel);
    run.add(wrapped(window, f.dyno_note, "Run", 2));
    Panel keep = window.panel("Plot and save");
    keep.add(window.across({window.make(f.dyno_plot), window.make(f.dyno_ref_file)}));
    keep.row("File Name", f.dyno_file_name);
    keep.row("Series", f.dyno_series);
    keep.add(wrapped(window, f.dyno_save_note, "File to be saved", 2));
    keep.add(window.across({window.make(f.dyno_save), window.make(f.dyno_save_picture)}));
    QWidget* right = window.stack({run, keep});
    QWidget* left = window.down(
        {plot(window, f.dyno_plot_screen, "Torque and power figures over engine speed"),
         legend({{palette[9], "torque"},
                 {palette[12], "power"},
                 {palette[8], "torque, reference"},
                 {palette[7], "power, reference"}}),
         wrapped(window, f.dyno_reading, "Place pointed at", 1), wrapped(window, f.dyno_peaks, "Greatest figures", 3),
         note("Torque is the rate at which the engine gains speed, in rpm per second; power is that "
              "figure times rpm / 5252. No weight, gearing or inertia enters: compare runs by them, and "
              "do not take them for torque or horsepower.")},
        {1, 0, 0, 0, 0});
    return window.across({left, right}, {1, 0});
}

} // namespace

std::unique_ptr<FormWindow> make_frm_diagnostics_window(FrmDiagnostics& f, QtHost& host) {
    auto window = std::make_unique<FormWindow>(f.form, host);
    const std::array pages{driver_page(*window, f, 0, f.inj_chan_test, f.test_injectors_button, "Injector channels"),
                           driver_page(*window, f, 1, f.ign_chan_test, f.test_ignition_button, "Ignition channels"),
                           wheel_page(*window, f), dyno_page(*window, f)};
    std::vector<std::pair<QString, QWidget*>> tabs;
    for (std::size_t i = 0; i < pages.size(); ++i) {
        pages[i]->layout()->setContentsMargins(theme::gap, theme::gap, theme::gap, theme::gap);
        const std::string_view caption = FrmDiagnostics::tab_captions[i];
        tabs.emplace_back(QString::fromUtf8(caption.data(), static_cast<qsizetype>(caption.size())), pages[i]);
    }
    window->set_body(window->tabs(f.diags_tab, tabs));
    window->set_footer(window->buttons({&f.exit_button}));
    window->demo_badge(f.show_demo_mode);
    window->resize(1000, 680);
    return window;
}

} // namespace ecu::desktop
