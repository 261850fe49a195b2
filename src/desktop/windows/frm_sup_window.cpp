// The window of the general purpose outputs: one page for each channel, with its output at the left and its boost
// control at the right, one below the other where the screen is narrow.
#include "desktop/map_parts.h"
#include "desktop/nine_plot.h"
#include "desktop/theme.h"
#include "desktop/windows/windows.h"
#include "maps/frm_sup.h"

#include <QBoxLayout>
#include <QEvent>
#include <QGridLayout>
#include <QLineEdit>
#include <QScrollArea>
#include <QShortcut>
#include <QStatusBar>
#include <QTabWidget>

#include <array>

namespace ecu::desktop {

namespace {

using maps::FrmSup;
using platform::Property;

constexpr std::size_t channels = 4;

QWidget* chosen_option(FormWindow& window, FrmSup& f, std::size_t n) {
    const int mode = std::max(platform::chosen(f.gpo_mode[n]), 0);
    return window.binding().widget_of(f.gpo_mode[n][static_cast<std::size_t>(mode)]);
}

// The two halves of a page side by side where they fit, else one below the other; then it scrolls.
class PageArea final : public QScrollArea {
public:
    PageArea(QWidget* left, QWidget* right) : left_(left), right_(right) {
        setWidgetResizable(true);
        setFrameShape(QFrame::NoFrame);
        setFocusPolicy(Qt::NoFocus);
        keep_focus_in_sight(*this);
    }
    void set_page(QWidget* page, QBoxLayout* halves) {
        halves_ = halves;
        setWidget(page);
    }

protected:
    void resizeEvent(QResizeEvent* event) override {
        const int needed = left_->minimumSizeHint().width() + right_->minimumSizeHint().width() + 3 * theme::margin;
        halves_->setDirection(needed <= maximumViewportSize().width() ? QBoxLayout::LeftToRight
                                                                      : QBoxLayout::TopToBottom);
        QScrollArea::resizeEvent(event);
    }

private:
    QWidget* left_;
    QWidget* right_;
    QBoxLayout* halves_ = nullptr;
};

// When a mode without a map is chosen, the keyboard goes from the map to the modes. Left alone it would go to the next
// box, and what is typed on would replace a value of the servo.
class MapHolder final : public QWidget {
public:
    MapHolder(FormWindow& window, FrmSup& f, std::size_t n) : window_(window), form_(f), channel_(n) {}

protected:
    void hideEvent(QHideEvent*) override {
        QWidget* const focus = window_.focusWidget();
        if (!form_.gpo_map_holder[channel_].visible() && focus != nullptr && isAncestorOf(focus)) {
            chosen_option(window_, form_, channel_)->setFocus(Qt::OtherFocusReason);
        }
    }

private:
    FormWindow& window_;
    FrmSup& form_;
    std::size_t channel_;
};

struct Page {
    QWidget* widget = nullptr;
    QWidget* first_box = nullptr;
    NinePlot* output = nullptr;
    NinePlot* boost = nullptr;
    QLabel* pending = nullptr;
};

std::string numbered(std::string_view what, std::size_t n) { return std::string(what) + std::to_string(n + 1); }

QLabel* words(FormWindow& window, platform::Label& control, const std::string& name, int lines) {
    auto* label = static_cast<QLabel*>(window.make(control, Caption(name)));
    label->setWordWrap(true);
    label->setAlignment(Qt::AlignLeft | Qt::AlignTop);
    label->setMinimumHeight(lines * label->fontMetrics().lineSpacing() + 2);
    return label;
}

// Parameters at the left, the map at the right.
QWidget* beside_map(QWidget* parameters, QWidget* map) {
    auto* holder = new QWidget;
    auto* row = new QHBoxLayout(holder);
    row->setContentsMargins(0, 0, 0, 0);
    row->setSpacing(theme::margin);
    row->addWidget(parameters);
    row->addWidget(map, 1);
    return holder;
}

// Rows of caption, box and unit, together at the top.
class Rows {
public:
    explicit Rows(FormWindow& window) : window_(window), layout_(new QGridLayout(holder_)) {
        layout_->setContentsMargins(0, 0, 0, 0);
        layout_->setHorizontalSpacing(theme::gap);
        layout_->setVerticalSpacing(3);
        layout_->setColumnStretch(0, 1);
    }
    QWidget* box(const char* name, platform::TextBox& control, const char* unit = "") {
        QWidget* edit = window_.make(control, name);
        edit->setFixedWidth(edit->fontMetrics().horizontalAdvance(QStringLiteral("00.000")) + 16);
        auto* caption = new QLabel(QString::fromUtf8(name));
        auto* behind = muted_label(QString::fromUtf8(unit));
        const int row = layout_->rowCount();
        layout_->addWidget(caption, row, 0);
        layout_->addWidget(edit, row, 1);
        layout_->addWidget(behind, row, 2);
        for (QWidget* companion : {static_cast<QWidget*>(caption), static_cast<QWidget*>(behind)}) {
            window_.binding().follow(control, companion);
        }
        return edit;
    }
    QWidget* add(QWidget* widget) {
        layout_->addWidget(widget, layout_->rowCount(), 0, 1, 3);
        return widget;
    }
    QWidget* add(platform::Control& control) { return add(window_.make(control)); }
    void gap() { layout_->setRowMinimumHeight(layout_->rowCount(), theme::gap); }
    QWidget* finished() {
        layout_->setRowStretch(layout_->rowCount(), 1);
        holder_->setSizePolicy(QSizePolicy::Fixed, QSizePolicy::Preferred);
        return holder_;
    }

private:
    FormWindow& window_;
    QWidget* holder_ = new QWidget;
    QGridLayout* layout_;
};

Panel output_panel(FormWindow& window, FrmSup& f, std::size_t n, Page& page) {
    Panel panel = window.panel(numbered("Output driver ", n).c_str());
    panel.add(words(window, f.gpo_words[n], numbered("What output does ", n), 2));
    panel.add(words(window, f.gpo_now[n], numbered("Output now ", n), 1))->setContentsMargins(0, 0, 0, theme::gap);
    Rows rows(window);
    rows.add(new QLabel(QStringLiteral("Mapping Input Source")));
    for (platform::OptionButton& option : f.gpo_mode[n]) {
        rows.add(option);
    }
    rows.gap();
    rows.add(f.dont_interpolate[n]);
    rows.box("Relay switches at", f.cool_rly_temp[n], "\302\260C");
    rows.box("Full on at or above", f.rpm_switch[n], "rpm");

    const std::string name = numbered("Duty map of GPO ", n);
    page.output = new NinePlot(window, {.grid = f.GPO_tbl[n],
                                        .name = name.c_str(),
                                        .x_captions = f.GPO_X_lbl[n],
                                        .y_captions = f.GPO_Y_lbl[n],
                                        .x_title = f.gpo_x_text[n],
                                        .y_title = f.gpo_y_text[n]});
    auto* holder = new MapHolder(window, f, n);
    auto* layout = new QVBoxLayout(holder);
    layout->setContentsMargins(0, 0, 0, 0);
    layout->addWidget(page.output);
    QSizePolicy stays(QSizePolicy::Expanding, QSizePolicy::Expanding);
    stays.setRetainSizeWhenHidden(true); // nothing moves when a mode without a map is chosen
    holder->setSizePolicy(stays);
    window.binding().bind_custom(f.gpo_map_holder[n], holder, {}, QString::fromStdString(name));
    panel.add(beside_map(rows.finished(), holder), 1);
    return panel;
}

Panel boost_panel(FormWindow& window, FrmSup& f, std::size_t n, Page& page) {
    Panel panel = window.panel(numbered("Boost control ", n).c_str());
    panel.add(words(window, f.boost_words[n], numbered("What boost control does ", n), 3));
    Rows rows(window);
    page.first_box = rows.box("Proportional Gain", f.boost_p[n]);
    rows.box("Integral Gain", f.boost_i[n]);
    rows.box("Derivative Gain", f.boost_d[n]);
    rows.box("Enable if MAP above", f.boost_enable_press[n], "kPa");
    rows.box("Integrator Preset", f.boost_integ_preset[n], "%");
    rows.box("Loop Rate", f.boost_loop_rate[n]);
    rows.gap();
    rows.add(f.boost_ctrl_invert[n]);
    rows.add(f.use_as_pwm[n]);
    const std::string name = numbered("Boost map ", n);
    page.boost = new NinePlot(window, {.grid = f.boost_gpo[n],
                                       .name = name.c_str(),
                                       .x_captions = f.GPO_boost_X_lbl[n],
                                       .y_captions = f.GPO_boost_Y_lbl[n],
                                       .x_title = f.boost_x_text[n],
                                       .y_title = f.boost_y_text[n]});
    panel.add(beside_map(rows.finished(), page.boost), 1);
    return panel;
}

// A channel that the controller lacks hides its frame; the page stays and says why it is empty.
Page make_page(FormWindow& window, FrmSup& f, std::size_t n) {
    Page page;
    QWidget* left = output_panel(window, f, n, page);
    QWidget* right = boost_panel(window, f, n, page);
    auto* area = new PageArea(left, right);
    auto* params = new QWidget;
    auto* halves = new QBoxLayout(QBoxLayout::LeftToRight, params);
    halves->setContentsMargins(0, 0, 0, 0);
    halves->setSpacing(theme::margin);
    halves->addWidget(left, 1);
    halves->addWidget(right, 1);
    auto* missing =
        muted_label(QString::fromStdString("This controller has no output driver " + std::to_string(n + 1) + "."));
    missing->setAlignment(Qt::AlignCenter);
    window.binding().bind_custom(
        f.GPO_params[n], params,
        [&f, n, missing](Property property) {
            if (property == Property::visible || property == Property::text) {
                missing->setHidden(f.GPO_params[n].visible());
            }
        },
        QString::fromStdString(numbered("GPO ", n)));

    auto* inside = new QWidget;
    auto* column = new QVBoxLayout(inside);
    column->setContentsMargins(0, theme::gap, 0, 0);
    column->addWidget(params, 1);
    column->addWidget(missing, 1);
    area->set_page(inside, halves);
    page.widget = area;
    return page;
}

// Markers go to the page that shows.
class Markers {
public:
    Markers(FormWindow& window, FrmSup& f, const std::array<Page, channels>& pages)
        : window_(window), form_(f), pages_(pages) {
        output_x_ = make(window, f.supp_x_ptr, "Output, across now", true);
        output_y_ = make(window, f.supp_y_ptr, "Output, upward now", false);
        boost_x_ = make(window, f.boost_x_ptr, "Boost, across now", true);
        boost_y_ = make(window, f.boost_y_ptr, "Boost, upward now", false);
        show_on(static_cast<std::size_t>(f.GPO_tab.current()));
    }

    void show_on(std::size_t page) {
        shown_ = &pages_[page];
        shown_->output->adopt_markers(output_x_, output_y_);
        shown_->boost->adopt_markers(boost_x_, boost_y_);
        for (platform::Shape* marker : {&form_.supp_x_ptr, &form_.supp_y_ptr, &form_.boost_x_ptr, &form_.boost_y_ptr}) {
            window_.binding().refresh(*marker, Property::visible); // a new parent hides what it is given
        }
        place();
    }

private:
    QWidget* make(FormWindow& window, platform::Shape& shape, const char* name, bool upward) {
        auto* marker = new AxisMarker(upward, &window);
        window.binding().bind_custom(
            shape, marker, [this](Property) { place(); }, QString::fromUtf8(name));
        return marker;
    }
    // From places on the form's axes to shares of them.
    void place() {
        if (shown_ == nullptr) {
            return;
        }
        const auto share = [](float place, float from, float to) {
            return to == from ? 0.0 : static_cast<double>((place - from) / (to - from));
        };
        const auto put = [&](NinePlot& plot, const platform::Shape& x, const platform::Shape& y) {
            plot.place_markers(share(x.left(), form_.supp_x_beg.left(), form_.supp_x_end.left()),
                               share(y.top(), form_.supp_y_beg.top(), form_.supp_y_end.top()));
        };
        put(*shown_->output, form_.supp_x_ptr, form_.supp_y_ptr);
        put(*shown_->boost, form_.boost_x_ptr, form_.boost_y_ptr);
    }

    FormWindow& window_;
    FrmSup& form_;
    std::array<Page, channels> pages_;
    const Page* shown_ = nullptr;
    QWidget *output_x_ = nullptr, *output_y_ = nullptr, *boost_x_ = nullptr, *boost_y_ = nullptr;
};

// Pending values mark the tab by their number and the swatch of their colour.
void mark_tabs(FormWindow& window, FrmSup& f, QTabWidget& tabs, const std::array<Page, channels>& pages) {
    for (std::size_t n = 0; n < channels; ++n) {
        window.binding().bind_custom(
            f.pending_on_page[n], pages[n].pending,
            [&f, &tabs, n](Property property) {
                if (property != Property::text) {
                    return;
                }
                const int at = static_cast<int>(n);
                const QString title = QString::fromUtf8(FrmSup::tab_captions[n].data());
                const QString pending = QString::fromStdString(f.pending_on_page[n].text());
                tabs.setTabText(at, pending.isEmpty() ? title : title + ": " + pending);
                tabs.setTabIcon(at, pending.isEmpty() ? QIcon() : QIcon(pending_picture()));
            },
            QString::fromStdString(numbered("Pending on GPO ", n)));
    }
}

void add_shortcuts(FormWindow& window, FrmSup& f, const std::array<Page, channels>& pages) {
    for (int n = 0; n < static_cast<int>(channels); ++n) {
        auto* choose = new QShortcut(QKeySequence(Qt::CTRL | static_cast<Qt::Key>(Qt::Key_1 + n)), &window);
        QObject::connect(choose, &QShortcut::activated, &window, [&f, pages, n] {
            f.GPO_tab.set_current(n);
            const Page& page = pages[static_cast<std::size_t>(n)];
            (page.output->isVisible() ? page.output : page.boost)->grid()->setFocus();
        });
    }
    // From the modes to the map, to the servo, to its map, and round.
    auto* onward = new QShortcut(QKeySequence(Qt::Key_F6), &window);
    QObject::connect(onward, &QShortcut::activated, &window, [&window, &f, pages] {
        const auto n = static_cast<std::size_t>(f.GPO_tab.current());
        const Page& page = pages[n];
        const std::array<QWidget*, 4> stops{chosen_option(window, f, n), page.output->grid(), page.first_box,
                                            page.boost->grid()};
        QWidget* const focus = window.focusWidget();
        std::size_t at = stops.size() - 1;
        for (std::size_t i = 0; i < stops.size(); ++i) {
            const QWidget* around = i % 2 == 0 ? stops[i]->parentWidget() : stops[i]; // all boxes beside the stop
            at = focus != nullptr && (focus == stops[i] || around->isAncestorOf(focus)) ? i : at;
        }
        do {
            at = (at + 1) % stops.size();
        } while (!stops[at]->isVisible() && at != stops.size() - 1);
        stops[at]->setFocus(Qt::ShortcutFocusReason);
    });
}

QWidget* footer(FormWindow& window, FrmSup& f) {
    auto* holder = new QWidget;
    auto* row = new QHBoxLayout(holder);
    row->setContentsMargins(0, 0, 0, 0);
    row->addWidget(cell_legend({CellState::pending, CellState::confirmed, CellState::unread}));
    row->addSpacing(theme::margin);
    row->addWidget(window.buttons({&f.read_again, &f.update_button, &f.exit_button}), 1);
    return holder;
}

} // namespace

std::unique_ptr<FormWindow> make_frm_sup_window(maps::FrmSup& f, QtHost& host) {
    auto window = std::make_unique<FormWindow>(f.form, host);
    std::array<Page, channels> pages;
    std::vector<std::pair<QString, QWidget*>> tabs;
    for (std::size_t n = 0; n < channels; ++n) {
        pages[n] = make_page(*window, f, n);
        tabs.emplace_back(QString::fromUtf8(FrmSup::tab_captions[n].data()), pages[n].widget);
    }
    QTabWidget* tab_widget = window->tabs(f.GPO_tab, tabs);
    for (std::size_t n = 0; n < channels; ++n) {
        pages[n].pending = new QLabel(window->centralWidget());
        pages[n].pending->hide();
    }
    mark_tabs(*window, f, *tab_widget, pages);
    auto markers = std::make_shared<Markers>(*window, f, pages);
    QObject::connect(tab_widget, &QTabWidget::currentChanged, window.get(),
                     [markers](int page) { markers->show_on(static_cast<std::size_t>(page)); });
    for (platform::Shape* end : {&f.supp_x_beg, &f.supp_x_end, &f.supp_y_beg, &f.supp_y_end}) {
        window->keep_hidden(*end);
    }
    window->set_body(tab_widget);
    window->set_footer(footer(*window, f));
    window->demo_badge(f.show_demo_mode);
    window->status_line(f.map_status);
    window->statusBar()->addPermanentWidget(
        muted_label("Ctrl+1\u20134 page   F6 onward   Shift+\u2191\u2193 step   Ctrl+S, Ctrl+F block"));
    add_shortcuts(*window, f, pages);
    window->resize(1280, 700);
    return window;
}

} // namespace ecu::desktop
