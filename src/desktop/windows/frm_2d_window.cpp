// The additional mapping window: three pages of curves, each graph above its boxes, and on the last the lambda target
// table with its surface. What is pending is marked on the pages' tabs.
#include "desktop/grid_view.h"
#include "desktop/map_parts.h"
#include "desktop/qt_text.h"
#include "desktop/theme.h"
#include "desktop/windows/curve_panel.h"
#include "desktop/windows/windows.h"
#include "maps/correction_curves.h"
#include "maps/frm_3d.h"

#include <QGridLayout>
#include <QLabel>
#include <QPainter>
#include <QScrollArea>
#include <QScrollBar>
#include <QShortcut>
#include <QStatusBar>
#include <QTabBar>
#include <QTabWidget>

#include <algorithm>
#include <ranges>

namespace ecu::desktop {

namespace {

using maps::Frm2d;

constexpr int points = 9;
constexpr int smallest_figures = 9; // pixels
constexpr int largest_figures = 18;

// The target table with engine speed below it and manifold pressure beside it.
class TargetPlot final : public QWidget {
public:
    TargetPlot(FormWindow& window, Frm2d& f) {
        grid_ = window.make(f.lambda_sp_table, "Lambda target table");
        grid_->setParent(this);
        for (std::size_t i = 0; i < points; ++i) {
            load_[i] = caption(window, f.Label5[i], "Manifold Pressure, kPa", Qt::AlignRight | Qt::AlignVCenter);
            speed_[i] = caption(window, f.Label7[i], "Engine Speed, RPM", Qt::AlignHCenter | Qt::AlignTop);
        }
    }
    QSize sizeHint() const override { return around(QSize(60, 24) * points); }
    QSize minimumSizeHint() const override { return around(QSize(36, 15) * points); }

protected:
    void resizeEvent(QResizeEvent*) override {
        const QSize room = size() - around({2, 2});
        const QSize cell(std::max(1, room.width() / points), std::max(1, room.height() / points));
        field_ = QRect(QPoint(beside(), line() + 1), cell * points);
        grid_->setFont(figures_for(cell));
        grid_->setGeometry(field_.adjusted(-1, -1, 1, 1));
        for (int i = 0; i < points; ++i) {
            const auto at = static_cast<std::size_t>(i);
            load_[at]->setGeometry(0, field_.bottom() + 1 - (i + 1) * cell.height(), beside() - 5, cell.height());
            speed_[at]->setGeometry(field_.left() + i * cell.width(), field_.bottom() + 3, cell.width(), line());
        }
    }
    void paintEvent(QPaintEvent*) override {
        QPainter painter(this);
        painter.setPen(theme::muted_text(QPalette()));
        painter.drawText(QRect(0, 0, width(), line()), Qt::AlignLeft | Qt::AlignVCenter, QStringLiteral("kPa"));
        painter.drawText(QRect(field_.right() + 4, field_.bottom() + 3, width(), line()),
                         Qt::AlignLeft | Qt::AlignVCenter, QStringLiteral("RPM"));
    }

private:
    QWidget* caption(FormWindow& window, platform::Label& control, const char* name, Qt::Alignment alignment) {
        auto* label = static_cast<QLabel*>(window.make(control, name));
        label->setParent(this);
        label->setAlignment(alignment);
        label->setToolTip(QString::fromUtf8(name));
        return label;
    }
    static QFont figures_for(QSize cell) {
        QFont font = theme::figure_font(10);
        font.setWeight(QFont::Normal);
        font.setPixelSize(std::clamp(cell.height() * 6 / 10, smallest_figures, largest_figures));
        while (font.pixelSize() > smallest_figures &&
               QFontMetrics(font).horizontalAdvance(QStringLiteral("00.000")) > cell.width() * 6 / 7) {
            font.setPixelSize(font.pixelSize() - 1);
        }
        return font;
    }
    int line() const { return fontMetrics().height(); }
    int beside() const { return fontMetrics().horizontalAdvance(QStringLiteral("0000")) + 5; }
    QSize around(QSize field) const {
        return field + QSize(beside() + fontMetrics().horizontalAdvance(QStringLiteral("RPM ")), 2 * line() + 5);
    }

    QWidget* grid_ = nullptr;
    std::array<QWidget*, points> load_{};
    std::array<QWidget*, points> speed_{};
    QRect field_;
};

// A page scrolls when the screen is too small for it.
QWidget* page(QWidget* content) {
    auto* area = new QScrollArea;
    area->setWidgetResizable(true);
    area->setFrameShape(QFrame::NoFrame);
    area->setFocusPolicy(Qt::NoFocus);
    content->setContentsMargins(0, theme::gap, 0, 0);
    area->setWidget(content);
    keep_focus_in_sight(*area);
    return area;
}

std::vector<QWidget*> curves_of(FormWindow& window, Frm2d& f, std::size_t of_page) {
    std::vector<QWidget*> panels;
    for (const std::string_view key : maps::reading_order) {
        if (const maps::CorrectionCurve& curve = maps::curve_of(key); curve.page == of_page) {
            panels.push_back(make_curve_panel(window, f, curve));
        }
    }
    return panels;
}

QWidget* in_columns(const std::vector<QWidget*>& panels, int columns) {
    auto* holder = new QWidget;
    auto* grid = new QGridLayout(holder);
    grid->setContentsMargins(0, 0, 0, 0);
    grid->setSpacing(theme::gap);
    for (int i = 0; i < static_cast<int>(panels.size()); ++i) {
        grid->addWidget(panels[static_cast<std::size_t>(i)], i / columns, i % columns);
        grid->setRowStretch(i / columns, 1);
        grid->setColumnStretch(i % columns, 1);
    }
    return holder;
}

QWidget* surface(FormWindow& window, Frm2d& f) {
    auto* holder = new QWidget;
    auto* layout = new QGridLayout(holder);
    layout->setContentsMargins(0, 0, 0, 0);
    layout->setSpacing(2);
    QWidget* picture = window.make(f.ego_sp_graph, "Surface of the lambda target table");
    picture->setMinimumSize(160, 70);
    picture->setSizePolicy(QSizePolicy::Expanding, QSizePolicy::Expanding);
    layout->addWidget(picture, 0, 0);
    auto* tilt = static_cast<QScrollBar*>(window.make(f.ego_v_perspective, "View from above"));
    tilt->setOrientation(Qt::Vertical);
    layout->addWidget(tilt, 0, 1);
    layout->addWidget(window.make(f.ego_h_perspective, "View from the side"), 1, 0);
    return holder;
}

QWidget* last_page(FormWindow& window, Frm2d& f) {
    Panel targets = window.panel("Lambda Targets");
    targets.add(new TargetPlot(window, f), 3);
    std::vector<QWidget*> scale;
    for (const platform::Colour colour : maps::shading_colours | std::views::reverse) {
        scale.push_back(swatch(colour));
        scale.back()->setFixedWidth(10);
    }
    targets.add(cell_legend({CellState::pending, CellState::unread, CellState::unconfirmed}, scale));
    targets.add(surface(window, f), 2);
    return window.across({in_columns(curves_of(window, f, maps::target_page), 1), targets});
}

// A page's count of pending values stands in its tab, on their colour.
void mark_tab(FormWindow& window, QTabWidget& tabs, int index, platform::Label& control) {
    auto* mark = new QLabel;
    mark->setContentsMargins(3, 0, 3, 0);
    mark->hide();
    tabs.tabBar()->setTabButton(index, QTabBar::RightSide, mark);
    window.binding().bind_custom(
        control, mark,
        [&tabs, &control, mark, index](platform::Property property) {
            if (property == platform::Property::text) {
                mark->setText(qt(control.text()));
                mark->setVisible(!control.text().empty());
                mark->adjustSize();
                tabs.setTabText(index, tabs.tabText(index)); // so that the bar makes room for it
            }
        },
        "Pending on page " + tabs.tabText(index));
    mark->setToolTip(QStringLiteral("Values of this page that Update will send"));
}

QWidget* live_figures(FormWindow& window, Frm2d& f) {
    auto* holder = new QWidget;
    auto* row = new QHBoxLayout(holder);
    row->setContentsMargins(0, 0, 0, 0);
    for (const auto& [name, label, unit, widest] :
         {std::tuple{"Injection PW", &f.inj_pw, "ms", "00.000"}, std::tuple{"Timing", &f.ign_deg, "deg", "-00.00B"}}) {
        row->addWidget(new QLabel(name));
        auto* figure = static_cast<QLabel*>(window.make(*label, name));
        figure->setFont(theme::figure_font(12));
        figure->setAlignment(Qt::AlignRight | Qt::AlignVCenter);
        figure->setMinimumWidth(figure->fontMetrics().horizontalAdvance(widest));
        row->addWidget(figure);
        row->addWidget(muted_label(unit));
        row->addSpacing(2 * theme::margin);
    }
    row->addStretch(1);
    return holder;
}

void add_shortcuts(FormWindow& window, Frm2d& f) {
    const std::array<platform::Control*, 3> first{&f.clt_map[0], &f.ign_map[0], &f.dwell_vbat[0]};
    for (int n = 0; n < 3; ++n) {
        auto* choose = new QShortcut(QKeySequence(Qt::CTRL | static_cast<Qt::Key>(Qt::Key_1 + n)), &window);
        QObject::connect(choose, &QShortcut::activated, &window, [&f, n, box = first[static_cast<std::size_t>(n)]] {
            if (f.map_tabs.enabled()) { // an opening read leads through the pages itself
                f.map_tabs.set_current(n);
                box->set_focus();
            }
        });
    }
    auto* to_grid = new QShortcut(QKeySequence(Qt::Key_F6), &window);
    QObject::connect(to_grid, &QShortcut::activated, &window, [&window, &f] {
        if (!f.map_tabs.enabled()) {
            return;
        }
        QWidget* grid = window.binding().widget_of(f.lambda_sp_table);
        const bool in_grid = grid->isAncestorOf(window.focusWidget());
        f.map_tabs.set_current(static_cast<int>(maps::target_page));
        (in_grid ? window.binding().widget_of(f.dwell_vbat[0]) : grid)->setFocus();
    });
}

} // namespace

std::unique_ptr<FormWindow> make_frm_2d_window(maps::Frm2d& f, QtHost& host) {
    auto window = std::make_unique<FormWindow>(f.form, host);
    const std::array<QWidget*, 3> contents{in_columns(curves_of(*window, f, 0), 2),
                                           in_columns(curves_of(*window, f, 1), 2), last_page(*window, f)};
    std::vector<std::pair<QString, QWidget*>> pages;
    for (std::size_t i = 0; i < contents.size(); ++i) {
        pages.emplace_back(qt(Frm2d::tab_captions[i]), page(contents[i]));
    }
    QTabWidget* tabs = window->tabs(f.map_tabs, pages);
    tabs->setMinimumSize(320, 160);
    for (std::size_t i = 0; i < pages.size(); ++i) {
        mark_tab(*window, *tabs, static_cast<int>(i), f.tab_status[i]);
    }
    window->set_body(tabs);
    window->set_footer(
        window->across({live_figures(*window, f), window->buttons({&f.read_again, &f.update_button, &f.exit_button})}));
    window->demo_badge(f.show_demo_mode);
    window->status_line(f.map_status);
    window->statusBar()->addPermanentWidget(
        muted_label("Ctrl+1–3 page   F6 targets   Shift+↑↓ step   Ctrl+Shift+C curve"));
    for (platform::Label& label : f.Label12) {
        window->keep_hidden(label); // a third barometric axis, of no curve
    }
    add_shortcuts(*window, f);
    window->resize(1240, 720);
    return window;
}

} // namespace ecu::desktop
