// The autotune screen: the two grids of factors on two pages, criteria and counts beside them.
#include "autotune/frm_autotune.h"
#include "desktop/map_parts.h"
#include "desktop/theme.h"
#include "desktop/windows/windows.h"

#include <QLabel>
#include <QShortcut>
#include <QStatusBar>
#include <QTabWidget>

#include <algorithm>

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

// A grid with its axes: the load's marks beside the edges of the rows, the speed's below.
class FactorPlot final : public QWidget {
public:
    FactorPlot(FormWindow& window, platform::Grid& grid, const char* name,
               platform::ControlArray<platform::Label, 17>& load, const std::vector<QLabel*>& speed, const char* unit)
        : grid_(factors(window, grid, name)), speed_(speed), unit_(muted_label(QString::fromUtf8(unit))) {
        grid_->setParent(this);
        unit_->setParent(this);
        for (platform::Label& mark : load) {
            load_.push_back(static_cast<QLabel*>(window.make(mark, "Load axis")));
            load_.back()->setParent(this);
            load_.back()->setAlignment(Qt::AlignRight | Qt::AlignVCenter);
        }
        setFocusProxy(grid_);
        setSizePolicy(QSizePolicy::Expanding, QSizePolicy::Expanding);
    }
    QSize minimumSizeHint() const override { return grid_->minimumSize() + QSize(left() + 4, 2 * line() + 4); }

protected:
    void resizeEvent(QResizeEvent*) override {
        const QRect field(left() + 4, line() / 2, width() - left() - 8 - left() / 2,
                          height() - 2 * line() - line() / 2);
        grid_->setGeometry(field);
        for (std::size_t i = 0; i < load_.size(); ++i) {
            const int at = field.bottom() - field.height() * static_cast<int>(i) / 16;
            load_[i]->setGeometry(0, at - line() / 2, left(), line());
        }
        unit_->setGeometry(0, height() - line(), width() - 4, line());
        place_speed(field);
    }
    void showEvent(QShowEvent*) override { place_speed(grid_->geometry()); }

private:
    // One set of speed marks serves both pages, whichever is shown.
    void place_speed(const QRect& field) {
        for (std::size_t i = 0; isVisible() && i < speed_.size(); ++i) {
            speed_[i]->setParent(this);
            const int at = field.left() + field.width() * static_cast<int>(i) / 8;
            const int half = left() / 2 + 4;
            speed_[i]->setGeometry(std::min(at - half, width() - 2 * half), field.bottom() + 2, 2 * half, line());
            speed_[i]->show();
        }
    }
    int line() const { return fontMetrics().height(); }
    int left() const { return fontMetrics().horizontalAdvance(QStringLiteral("00000")); }

    QWidget* grid_;
    std::vector<QLabel*> load_;
    std::vector<QLabel*> speed_;
    QLabel* unit_;
};

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
    std::vector<QLabel*> speed;
    for (platform::Label& mark : f.speed_axis) {
        speed.push_back(static_cast<QLabel*>(window->make(mark, "Speed axis")));
        speed.back()->setAlignment(Qt::AlignCenter);
    }
    auto* injection = new FactorPlot(*window, f.autotune_inj_factors, "Factors of the injection map", f.pressure_axis,
                                     speed, "kPa over rpm");
    auto* throttle = new FactorPlot(*window, f.autotune_tps_factors, "Factors of the TPS map", f.throttle_axis, speed,
                                    "% throttle over rpm");
    QTabWidget* pages = window->tabs(f.autotune_tabs, {{"Injection Map", injection}, {"TPS Map", throttle}});
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
    window->set_footer(window->buttons({&f.apply_to_maps, &f.reset_autotune_params, &f.exit_button}));
    window->status(f.applied);
    auto* keys = new QLabel(QString::fromUtf8("Ctrl+1, Ctrl+2 grid   F6 to and from it"));
    theme::mute(*keys);
    window->statusBar()->addPermanentWidget(keys);
    add_shortcuts(*window, f, *pages, *window->binding().widget_of(f.apply_to_maps));
    pages->currentWidget()->setFocus();
    window->resize(1120, 660);
    return window;
}

} // namespace ecu::desktop
