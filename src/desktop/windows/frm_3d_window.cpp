// The basic mapping window: the map fills it and grows with it, each axis caption standing at its row or column, with
// the single values, the engine's figures and the legend beside it.
#include "desktop/grid_delegate.h"
#include "desktop/grid_view.h"
#include "desktop/map_parts.h"
#include "desktop/theme.h"
#include "desktop/windows/windows.h"
#include "maps/frm_3d.h"

#include <QEvent>
#include <QHBoxLayout>
#include <QLabel>
#include <QLineEdit>
#include <QPainter>
#include <QRadioButton>
#include <QShortcut>
#include <QStatusBar>

#include <algorithm>

namespace ecu::desktop {

namespace {

using maps::Frm3d;

constexpr int marker_size = AxisMarker::size;
constexpr int cells_per_side = 16;
constexpr int smallest_figures = 8; // pixels

// The four grids in one place with the axes around them.
class MapPlot final : public QWidget {
public:
    MapPlot(FormWindow& window, Frm3d& f) : form_(f) {
        constexpr std::array<const char*, 4> names{"Fuel map", "Ignition map", "TPS fuel map", "TPS mix map"};
        for (std::size_t n = 0; n < grids_.size(); ++n) {
            grids_[n] = adopt(window.make(*f.grids[n], names[n]));
            grids_[n]->installEventFilter(this);
        }
        for (std::size_t i = 0; i < load_.size(); ++i) {
            load_[i] = caption(window, f.Label5[i], "Load axis", Qt::AlignRight);
        }
        for (std::size_t i = 0; i < speed_.size(); ++i) {
            speed_[i] = caption(window, f.Label6[i], "Speed axis", Qt::AlignHCenter);
        }
        load_unit_ = caption(window, f.Map_dims[0], "Unit of the load axis", Qt::AlignLeft);
        speed_unit_ = caption(window, f.Label2, "Unit of the speed axis", Qt::AlignHCenter);
        load_marker_ = marker(window, f.map_p_ptr, "Load now", false);
        speed_marker_ = marker(window, f.map_r_ptr, "Speed now", true);
        for (platform::Shape* end : {&f.map_beg, &f.map_end, &f.rpm_beg, &f.rpm_end}) {
            window.keep_hidden(*end);
        }
    }

    QWidget* shown_grid() const {
        const auto found = std::ranges::find_if(form_.grids, [](const platform::Grid* g) { return g->visible(); });
        return grids_[found == form_.grids.end() ? 0 : static_cast<std::size_t>(found - form_.grids.begin())];
    }
    QSize sizeHint() const override { return around(QSize(50, 27) * cells_per_side); }
    QSize minimumSizeHint() const override { return around(QSize(30, 14) * cells_per_side); }

protected:
    void resizeEvent(QResizeEvent*) override {
        const QSize room = size() - around({0, 0});
        const QSize cell(std::max(1, (room.width() - 2) / cells_per_side),
                         std::max(1, (room.height() - 2) / cells_per_side));
        field_ = QRect(QPoint(caption_width() + marker_size + 2, line()), cell * cells_per_side);
        const QFont font = figures_for(cell);
        for (QWidget* grid : grids_) {
            grid->setFont(font);
            grid->setGeometry(field_.adjusted(-1, -1, 1, 1));
        }
        place_captions();
        place_markers();
    }

    void paintEvent(QPaintEvent*) override {
        QPainter painter(this);
        painter.setPen(theme::muted_text(QPalette()));
        for (int i = 0; i <= cells_per_side; ++i) {
            const int y = load_place(i);
            painter.drawLine(field_.left() - 5, y, field_.left() - 1, y);
        }
        for (int i = 0; i <= 8; ++i) {
            const int x = speed_place(i);
            painter.drawLine(x, field_.bottom() + 1, x, field_.bottom() + 5);
        }
    }

    // The keyboard is with the map that is shown, never with one that is hidden; only somebody who walks through the
    // options by keys stays there.
    bool eventFilter(QObject* watched, QEvent* event) override {
        auto* grid = qobject_cast<QWidget*>(watched);
        QWidget* const focus = window()->focusWidget();
        if (event->type() == QEvent::Hide && focus != nullptr && (focus == grid || grid->isAncestorOf(focus))) {
            focus->clearFocus();
            grid->clearFocus(); // a cell's editor gave it back
            if (QWidget* other = shown_grid(); other != grid && other->isVisible()) {
                other->setFocus();
            }
        } else if (event->type() == QEvent::Show && qobject_cast<QRadioButton*>(focus) == nullptr) {
            grid->setFocus();
        }
        return false;
    }

private:
    QWidget* adopt(QWidget* widget) {
        widget->setParent(this);
        return widget;
    }
    QWidget* caption(FormWindow& window, platform::Label& control, const char* name, Qt::Alignment alignment) {
        auto* label = static_cast<QLabel*>(adopt(window.make(control, name)));
        label->setAlignment(alignment | Qt::AlignVCenter);
        return label;
    }
    QWidget* marker(FormWindow& window, platform::Shape& control, const char* name, bool upward) {
        auto* widget = new AxisMarker(upward, this);
        window.binding().bind_custom(
            control, widget, [this](platform::Property) { place_markers(); }, name);
        return widget;
    }

    int line() const { return fontMetrics().height(); }
    int caption_width() const { return fontMetrics().horizontalAdvance(QStringLiteral("0000")); }
    // The room that the axes take around a field of this size.
    QSize around(QSize field) const {
        return field +
               QSize(caption_width() + marker_size + 2 + caption_width() / 2, line() + marker_size + 2 * line() + 2);
    }
    int load_place(int i) const { return field_.bottom() + 1 - field_.height() * i / cells_per_side; }
    int speed_place(int i) const { return field_.left() + field_.width() * i / 8; }

    static QFont figures_for(QSize cell) {
        QFont font = theme::figure_font(10);
        font.setWeight(QFont::Normal);
        font.setPixelSize(std::clamp(cell.height() * 11 / 20, smallest_figures, 22));
        while (font.pixelSize() > smallest_figures &&
               QFontMetrics(font).horizontalAdvance(QStringLiteral("-00.00")) > cell.width() * 6 / 7) {
            font.setPixelSize(font.pixelSize() - 1);
        }
        return font;
    }

    void place_captions() {
        const int height = line();
        for (std::size_t i = 0; i < load_.size(); ++i) {
            load_[i]->setGeometry(0, load_place(static_cast<int>(i)) - height / 2, caption_width(), height);
        }
        const int below = field_.bottom() + marker_size + 1;
        for (std::size_t i = 0; i < speed_.size(); ++i) {
            const int width = fontMetrics().horizontalAdvance(QStringLiteral("000000"));
            speed_[i]->setGeometry(speed_place(static_cast<int>(i)) - width / 2, below, width, height);
        }
        load_unit_->setGeometry(field_.left(), 0, 3 * caption_width(), height - 2);
        speed_unit_->setGeometry(field_.left(), below + height, field_.width(), height);
    }

    // From places on the form's axes to places beside the field.
    void place_markers() {
        if (load_marker_ == nullptr || speed_marker_ == nullptr) {
            return;
        }
        const auto share = [](float place, float from, float to) {
            return to == from ? 0.0F : (place - from) / (to - from);
        };
        const float load = share(form_.map_p_ptr.top(), form_.map_end.top(), form_.map_beg.top());
        const float speed = share(form_.map_r_ptr.left(), form_.rpm_beg.left(), form_.rpm_end.left());
        load_marker_->move(field_.left() - marker_size - 1,
                           field_.top() + static_cast<int>(load * static_cast<float>(field_.height())) -
                               marker_size / 2);
        speed_marker_->move(field_.left() + static_cast<int>(speed * static_cast<float>(field_.width())) -
                                marker_size / 2,
                            field_.bottom() + 2);
    }

    Frm3d& form_;
    std::array<QWidget*, 4> grids_{};
    std::array<QWidget*, 17> load_{};
    std::array<QWidget*, 9> speed_{};
    QWidget* load_unit_ = nullptr;
    QWidget* speed_unit_ = nullptr;
    QWidget* load_marker_ = nullptr;
    QWidget* speed_marker_ = nullptr;
    QRect field_; // of the cells
};

Panel values_panel(FormWindow& window, Frm3d& f) {
    Panel panel = window.panel("Single Values");
    panel.row("Injector Main Adj. [MS]", f.ecu_pgm[0]);
    panel.row("Injector Idle Adj. [MS]", f.ecu_pgm[1]);
    panel.row("TPS Map cut-in RPM", f.tps_rpm);
    return panel;
}

Panel engine_panel(FormWindow& window, Frm3d& f) {
    Panel panel = window.panel("Engine");
    panel.figure("Engine Speed", f.mapping_rpm[0], "RPM", "00000");
    panel.figure("Timing", f.base_timing, "deg", "00.00B");
    panel.figure("Injection PW", f.Inj_pulse_width, "ms", "00.000");
    panel.figure("Map Enrichment", f.control_map_gain, "", "0.000");
    panel.figure("EGO Correction", f.control_ego_gain, "", "0.000");
    panel.figure("Current Lamda", f.control_lambda, f.AF_condition, "0.000");
    QWidget* condition = window.binding().widget_of(f.AF_condition);
    condition->setFixedWidth(condition->fontMetrics().horizontalAdvance(QStringLiteral("Lean ")));
    return panel;
}

// The eight boxes of the scale are the form's own, lowest first.
QWidget* legend(FormWindow& window, Frm3d& f) {
    std::vector<QWidget*> scale;
    for (std::size_t i = f.bk_color.size(); i-- > 0;) {
        auto* box = static_cast<QLineEdit*>(window.make(f.bk_color[i], "Shading"));
        box->setReadOnly(true);
        box->setFocusPolicy(Qt::NoFocus);
        box->setFrame(false);
        box->setFixedSize(18, 16);
        scale.push_back(box);
    }
    return cell_legend({CellState::pending, CellState::confirmed, CellState::unread, CellState::unconfirmed}, scale);
}

// Above the map, where they take the least of a low screen.
QWidget* map_options(FormWindow& window, Frm3d& f) {
    auto* options = new QWidget;
    auto* row = new QHBoxLayout(options);
    row->setContentsMargins(0, 0, 0, 0);
    row->setSpacing(theme::margin);
    for (platform::OptionButton& map : f.show_map_type) {
        QWidget* option = window.make(map);
        option->setFocusPolicy(Qt::TabFocus); // a click on it leaves the keyboard to the map
        row->addWidget(option);
    }
    row->addStretch(1);
    return options;
}

void add_shortcuts(FormWindow& window, Frm3d& f, MapPlot& plot) {
    for (int n = 0; n < 4; ++n) {
        auto* choose = new QShortcut(QKeySequence(Qt::CTRL | static_cast<Qt::Key>(Qt::Key_1 + n)), &window);
        QObject::connect(choose, &QShortcut::activated, &window, [&f, &plot, n] {
            f.show_map_type[static_cast<std::size_t>(n)].click();
            plot.shown_grid()->setFocus();
        });
    }
    auto* change_sides = new QShortcut(QKeySequence(Qt::Key_F6), &window);
    QWidget* first_box = window.binding().widget_of(f.ecu_pgm[0]);
    QObject::connect(change_sides, &QShortcut::activated, &window, [&window, &plot, first_box] {
        const bool in_map = plot.isAncestorOf(window.focusWidget());
        (in_map ? first_box : plot.shown_grid())->setFocus();
    });
}

} // namespace

std::unique_ptr<FormWindow> make_frm_3d_window(maps::Frm3d& f, QtHost& host) {
    auto window = std::make_unique<FormWindow>(f.form, host);
    auto* plot = new MapPlot(*window, f);
    plot->setSizePolicy(QSizePolicy::Expanding, QSizePolicy::Expanding);
    QWidget* side = window->stack({values_panel(*window, f), engine_panel(*window, f)});
    side->setMaximumWidth(300);
    QWidget* maps = window->down({map_options(*window, f), plot}, {0, 1});
    window->set_body(window->down({window->across({maps, side}, {1, 0}), legend(*window, f)}, {1, 0}));
    window->set_footer(window->buttons({&f.show_this_graph, &f.read_again, &f.update_button, &f.exit_button}));
    window->demo_badge(f.show_demo_mode);
    window->status_line(f.map_status);
    window->statusBar()->addPermanentWidget(
        muted_label("Ctrl+1\u20134 map   F6 to and from it   Shift+\u2191\u2193 step   Ctrl+S, Ctrl+F block"));
    window->keep_hidden(f.Picture1); // nothing is drawn in it
    window->scale_figures(9, 15);
    add_shortcuts(*window, f, *plot);
    plot->shown_grid()->setFocus();
    window->resize(1180, 720);
    return window;
}

} // namespace ecu::desktop
