// The dashboard, to be read from two metres: the gauges take all the room that the mixture bar and the trims leave.
#include "desktop/gauge_widget.h"
#include "desktop/lamp_widget.h"
#include "desktop/theme.h"
#include "desktop/windows/windows.h"
#include "views/frm_dashboard.h"

#include <QGridLayout>
#include <QLabel>

namespace ecu::desktop {

namespace {

GaugeWidget* gauge(FormWindow& window, platform::Gauge& control) {
    auto* widget = new GaugeWidget(control);
    window.binding().bind_custom(control, widget, [widget](platform::Property property) { widget->refresh(property); });
    return widget;
}

// The tachometer twice as high as the others; the output drivers share one place.
QWidget* gauges(FormWindow& window, views::FrmDashboard& f) {
    auto* holder = new QWidget;
    auto* grid = new QGridLayout(holder);
    grid->setContentsMargins(0, 0, 0, 0);
    grid->setSpacing(theme::gap);
    grid->addWidget(gauge(window, f.tachometer), 0, 0, 2, 2);
    grid->addWidget(gauge(window, f.manifold_pressure), 0, 2);
    grid->addWidget(gauge(window, f.Timing), 0, 3);
    grid->addWidget(gauge(window, f.water_temp), 0, 4);
    for (platform::Gauge& duty : f.GPO_duty) {
        grid->addWidget(gauge(window, duty), 1, 2);
    }
    grid->addWidget(gauge(window, f.bat_volts), 1, 3);
    grid->addWidget(gauge(window, f.air_temp), 1, 4);
    for (int column = 0; column < 5; ++column) {
        grid->setColumnStretch(column, 1);
    }
    grid->setRowStretch(0, 1);
    grid->setRowStretch(1, 1);
    return holder;
}

// The marks of the scale stand in one row, evenly, two lamps apart.
QWidget* mixture_bar(FormWindow& window, views::FrmDashboard& f) {
    auto* bar = new QWidget;
    auto* grid = new QGridLayout(bar);
    grid->setContentsMargins(0, 0, 0, 0);
    grid->setHorizontalSpacing(1);
    grid->setVerticalSpacing(2);
    for (platform::Shape& lamp : f.afr_led) {
        auto* widget = new LampWidget(lamp, views::lamp_dark);
        window.binding().bind_custom(
            lamp, widget, [widget](platform::Property) { widget->refresh(); }, QString("Lamp %1").arg(lamp.index()));
        grid->addWidget(widget, 1, lamp.index() + 1);
        grid->setColumnStretch(lamp.index() + 1, 1);
    }
    grid->setColumnMinimumWidth(0, 9); // the outermost labels are wider than their lamps
    grid->setColumnMinimumWidth(views::lamp_count + 1, 9);
    const auto label = [&](platform::Label& control, const Caption& name) {
        auto* widget = static_cast<QLabel*>(window.make(control, name));
        widget->setAlignment(Qt::AlignCenter);
        widget->setSizePolicy(QSizePolicy::Ignored, QSizePolicy::Fixed); // the lamps stay equally wide
        return widget;
    };
    for (platform::Label& mark : f.lambda_label) {
        QLabel* widget = label(mark, "Mixture scale");
        widget->setFont(theme::figure_font(9));
        grid->addWidget(widget, 2, 2 * mark.index(), 1, 3); // with room from the columns on both sides of its lamp
    }
    QLabel* live = label(f.lambda_live, "Mixture");
    live->setFont(theme::figure_font(15));
    grid->addWidget(live, 0, 4, 1, 11);
    grid->addWidget(label(f.lambda_val, "Mixture at the centre"), 3, 7, 1, 5); // small: a mark of the scale, no value
    grid->addWidget(new QLabel("Lean"), 0, 0, 1, 4);
    auto* rich = new QLabel("Rich");
    rich->setAlignment(Qt::AlignRight | Qt::AlignVCenter);
    grid->addWidget(rich, 0, 15, 1, 4);
    return bar;
}

} // namespace

std::unique_ptr<FormWindow> make_frm_dashboard_window(views::FrmDashboard& f, QtHost& host) {
    auto window = std::make_unique<FormWindow>(f.form, host);
    Panel mixture = window->panel("Mixture");
    mixture.add(mixture_bar(*window, f));
    Panel trims = window->panel("Live trims");
    trims.row("Fuel scaler", f.ecu_pgm[0], "ms");
    trims.row("Fuel offset", f.ecu_pgm[1], "ms");
    trims.row("Timing offset", f.base_offset_deg, "deg");
    trims.fill();
    Panel feedback = window->panel("Feedback");
    feedback.figure("EGO Correction", f.control_ego_gain, "Gamma", "0.000");
    feedback.add(f.kill_ego);
    feedback.add(f.kill_timing);
    feedback.fill();
    QWidget* picture = window->make(f.Picture1, "Picture of the installation");
    picture->setMinimumSize(8, 40); // the first to give way on a small screen
    picture->setSizePolicy(QSizePolicy::Ignored, QSizePolicy::Ignored);
    QWidget* controls = window->across({trims, feedback, mixture, picture}, {2, 2, 5, 2});
    controls->setSizePolicy(QSizePolicy::Preferred, QSizePolicy::Maximum);
    window->set_body(window->down({gauges(*window, f), controls}, {1, 0}));
    window->set_footer(window->buttons({&f.read_again, &f.update_button, &f.exit_button}));
    window->demo_badge(f.show_demo_mode);
    window->status_line(f.trim_status);
    window->focus_first([&f]() -> platform::Control& { return f.exit_button; });
    window->resize(1280, 800);
    return window;
}

} // namespace ecu::desktop
