#include "desktop/form_window.h"

#include "desktop/figure_label.h"
#include "desktop/qt_host.h"
#include "desktop/qt_text.h"
#include "desktop/status_line.h"
#include "desktop/theme.h"

#include <QApplication>
#include <QBoxLayout>
#include <QCloseEvent>
#include <QKeyEvent>
#include <QLabel>
#include <QMenuBar>
#include <QProgressBar>
#include <QPushButton>
#include <QScreen>
#include <QScrollArea>
#include <QStatusBar>
#include <QTabWidget>

#include <algorithm>

namespace ecu::desktop {

using platform::Property;

namespace {

constexpr int full_bar = 1000;

// A scroll area that is as small as the screen demands, not as small as its content allows.
class BodyArea final : public QScrollArea {
public:
    BodyArea() {
        setWidgetResizable(true);
        setFrameShape(QFrame::NoFrame);
        setFocusPolicy(Qt::NoFocus);
    }
    QSize sizeHint() const override { return widget() != nullptr ? widget()->sizeHint() : QSize(); }
};

QBoxLayout* make_layout(QWidget& parent, bool horizontal) {
    auto* layout = new QBoxLayout(horizontal ? QBoxLayout::LeftToRight : QBoxLayout::TopToBottom, &parent);
    layout->setContentsMargins(0, 0, 0, 0);
    layout->setSpacing(theme::margin);
    return layout;
}

} // namespace

FormWindow::FormWindow(platform::Form& form, QtHost& host, WindowKind kind)
    : form_(form), host_(host), kind_(kind), binding_(form) {
    setObjectName(qt(form.name()));
    setWindowTitle(qt(form.caption()));
    if (kind == WindowKind::dialog) {
        setWindowFlags(Qt::Dialog | Qt::CustomizeWindowHint | Qt::WindowTitleHint | Qt::WindowCloseButtonHint);
    }
    auto* content = new QWidget;
    outer_ = new QVBoxLayout(content);
    outer_->setContentsMargins(theme::margin, theme::margin, theme::margin, theme::margin);
    outer_->setSpacing(theme::margin);
    setCentralWidget(content);
    const auto controls = form.controls();
    if (std::ranges::any_of(controls, [](const auto* c) { return c->kind() == platform::Kind::menu_item; })) {
        binding_.build_menus(*menuBar());
    }
    if (auto* held = dynamic_cast<platform::Label*>(form.find("held_note"))) {
        auto* note = static_cast<QLabel*>(make(*held, "Held back"));
        note->setAutoFillBackground(true);
        note->setMargin(theme::gap);
        outer_->addWidget(note); // above the body
    }
    setEnabled(form.enabled());
    host.attach(form, *this);
}

FormWindow::~FormWindow() { host_.detach(form_); }

Panel FormWindow::panel(const char* title) { return {*this, new PanelBox(QString::fromUtf8(title))}; }

Panel FormWindow::frame(platform::Frame& control) { return {*this, static_cast<QGroupBox*>(binding_.make(control))}; }

QWidget* FormWindow::make(platform::Control& control, const Caption& name) {
    return binding_.make(control, name.text());
}

FigureLabel* FormWindow::make_figure(platform::Label& control, const Caption& name, const char* widest) {
    auto* label = new FigureLabel(QString::fromUtf8(widest));
    binding_.bind_custom(
        control, label,
        [this, &control, label](Property property) {
            if (property == Property::text && label->show_text(qt(control.text()))) {
                isVisible() ? fit_figures() : static_cast<void>(grown_unfitted_ = true);
            }
        },
        name.text());
    figures_.push_back(label);
    return label;
}

void FormWindow::follow_tabs(platform::Tabs& control, QTabWidget& tabs) {
    const QString kept = "tabs/" + qt(form_.name()) + '/' + qt(control.full_name());
    QObject::connect(&tabs, &QTabWidget::currentChanged, &tabs, [this, &control, kept](int page) {
        control.set_current(page);
        host_.remembered().set_value(kept, page);
    });
    const int last = host_.remembered().value(kept).toInt();
    if (last > 0 && last < tabs.count() && tabs.isTabVisible(last)) {
        tabs.setCurrentIndex(last);
    }
}

QTabWidget* FormWindow::tabs(platform::Tabs& control, const std::vector<std::pair<QString, QWidget*>>& pages) {
    auto* tabs = new QTabWidget;
    tabs->setDocumentMode(true);
    for (const auto& [title, page] : pages) {
        tabs->addTab(page, title);
    }
    binding_.bind_custom(
        control, tabs,
        [&control, tabs](Property property) {
            // Pages that are turned while nobody may use them are being read: they are not shown one by one.
            if (control.enabled() && (property == Property::value || property == Property::enabled)) {
                tabs->setCurrentIndex(control.current());
            }
        },
        qt(form_.caption()));
    follow_tabs(control, *tabs);
    return tabs;
}

QWidget* FormWindow::progress(platform::Shape& track, platform::Shape& fill, const Caption& name) {
    auto* frame = new QWidget;
    auto* layout = make_layout(*frame, true);
    auto* bar = new QProgressBar;
    bar->setRange(0, full_bar);
    bar->setTextVisible(false);
    layout->addWidget(bar);
    const auto show = [&track, &fill, bar](Property property) {
        if (property == Property::value) {
            const float share = track.width() > 0 ? fill.width() / track.width() : 0.0F;
            bar->setValue(std::clamp(static_cast<int>(share * full_bar), 0, full_bar));
        }
    };
    binding_.bind_custom(track, frame, show, name.text());
    binding_.bind_custom(fill, bar, show, name.text());
    return frame;
}

void FormWindow::keep_hidden(platform::Control& control) {
    auto* widget = new QWidget(centralWidget());
    binding_.bind_custom(control, widget, {});
    widget->setFixedSize(0, 0);
    widget->setFocusPolicy(Qt::NoFocus);
}

QWidget* FormWindow::box(bool horizontal, std::initializer_list<QWidget*> parts, std::initializer_list<int> stretches) {
    auto* holder = new QWidget;
    auto* layout = make_layout(*holder, horizontal);
    auto stretch = stretches.begin();
    for (QWidget* part : parts) {
        layout->addWidget(part, stretch != stretches.end() ? *stretch++ : 1);
    }
    return holder;
}

QWidget* FormWindow::across(std::initializer_list<QWidget*> parts, std::initializer_list<int> stretches) {
    return box(true, parts, stretches);
}

QWidget* FormWindow::down(std::initializer_list<QWidget*> parts, std::initializer_list<int> stretches) {
    return box(false, parts, stretches);
}

QWidget* FormWindow::stack(std::initializer_list<QWidget*> parts) {
    auto* holder = new QWidget;
    auto* layout = make_layout(*holder, false);
    for (QWidget* part : parts) {
        layout->addWidget(part);
    }
    layout->addStretch(1);
    return holder;
}

QWidget* FormWindow::buttons(std::initializer_list<platform::Button*> row) {
    auto* holder = new QWidget;
    auto* layout = make_layout(*holder, true);
    auto* strip = dynamic_cast<platform::Label*>(form_.find("link_strip"));
    if (strip != nullptr && binding_.widget_of(*strip) == nullptr) {
        layout->addWidget(link_strip(), 1);
    } else {
        layout->addStretch(1);
    }
    for (platform::Button* button : row) {
        QWidget* widget = make(*button);
        widget->setMinimumWidth(96);
        layout->addWidget(widget);
    }
    return holder;
}

// In one line as long as there is room for; red when the figures are old, which are greyed then.
QWidget* FormWindow::link_strip() {
    auto& label = form_.get<platform::Label>("link_strip");
    auto* line = new StatusLine;
    binding_.bind_custom(
        label, line,
        [this, &label, line](Property property) {
            if (property == Property::text) {
                line->setText(qt(label.text())); // its tip is the label's own
            } else if (property == Property::fore_colour) {
                for (FigureLabel* figure : figures_) {
                    figure->setEnabled(label.fore_colour() != platform::light_red);
                }
            }
        },
        "Link");
    return line;
}

void FormWindow::set_body(QWidget* body) {
    body_ = body;
    if (kind_ == WindowKind::dialog) {
        outer_->insertWidget(0, body, 1);
        outer_->setSizeConstraint(QLayout::SetMinimumSize);
        return;
    }
    scroll_ = new BodyArea;
    scroll_->setWidget(body);
    outer_->insertWidget(0, scroll_, 1);
}

void FormWindow::set_footer(QWidget* footer) { outer_->addWidget(footer); }

void FormWindow::demo_badge(platform::Label& label) {
    QWidget* badge = make(label, "Demo mode");
    badge->setToolTip("The figures are made up, and nothing is sent. It lasts until the next start");
    QFont bold = badge->font();
    bold.setBold(true);
    badge->setFont(bold);
    theme::in_each(*badge, [badge] {
        QPalette palette;
        palette.setColor(QPalette::WindowText,
                         theme::readable_on(QColor(0xd9, 0x82, 0x00), QPalette().color(QPalette::Window)));
        badge->setPalette(palette);
    });
    badge->setForegroundRole(QPalette::WindowText);
    badge->setContentsMargins(0, 0, theme::margin, 0);
    badge->setFixedHeight(menuBar()->sizeHint().height() - 2);
    menuBar()->setCornerWidget(badge);
    badge->setVisible(label.visible()); // the corner shows what it is given
}

QWidget* FormWindow::status(platform::Label& label) {
    QWidget* widget = make(label);
    statusBar()->addWidget(widget);
    return widget;
}

QWidget* FormWindow::status_line(platform::Label& label) {
    auto* line = new StatusLine;
    binding_.bind_custom(label, line, [&label, line](Property property) {
        if (property == Property::text) {
            line->show_text(qt(label.text()));
        }
    });
    statusBar()->addWidget(line, 1);
    return line;
}

void FormWindow::scale_figures(double smallest_points, double largest_points) {
    figure_points_ = {smallest_points, largest_points};
    set_figure_points(smallest_points);
}

// Captions grow with the figures, at a smaller size, and are never smaller than the desktop's own font.
void FormWindow::set_figure_points(double points) {
    QFont captions = QApplication::font();
    captions.setPointSizeF(std::max(captions.pointSizeF(), points * 0.62));
    body_->setFont(captions);
    for (FigureLabel* figure : figures_) {
        figure->set_points(points);
        // The boxes around hear of it with the next events only; the fit has to be known now.
        for (QWidget* around = figure->parentWidget(); around != nullptr && around != body_;
             around = around->parentWidget()) {
            around->updateGeometry();
        }
    }
    body_->layout()->invalidate();
}

// The largest half point at which the body still fits; what is left of the window goes to the gaps.
void FormWindow::fit_figures() {
    grown_unfitted_ = false;
    if (figures_.empty() || scroll_ == nullptr || figure_points_.first >= figure_points_.second) {
        return;
    }
    layout()->activate(); // at the first showing no layout has run yet, and the room would be any size
    outer_->activate();
    const QSize room = scroll_->maximumViewportSize();
    const auto fits = [&](int half_points) {
        set_figure_points(half_points / 2.0);
        const QSize needed = body_->minimumSizeHint();
        return needed.width() <= room.width() && needed.height() <= room.height();
    };
    int fitting = static_cast<int>(figure_points_.first * 2); // taken even when nothing fits: the body then scrolls
    int too_large = static_cast<int>(figure_points_.second * 2) + 1;
    while (too_large - fitting > 1) {
        const int middle = (fitting + too_large) / 2;
        (fits(middle) ? fitting : too_large) = middle;
    }
    set_figure_points(fitting / 2.0);
}

QSize FormWindow::wanted_size() const {
    const QSize wanted = testAttribute(Qt::WA_Resized) ? size() : sizeHint(); // as the window file set it, if it did
    const QScreen* on = screen() != nullptr ? screen() : QApplication::primaryScreen();
    return on != nullptr ? wanted.boundedTo(on->availableSize() - QSize(8, 40)) : wanted;
}

void FormWindow::open() {
    if (!opened_) {
        opened_ = true;
        const QByteArray kept = kind_ == WindowKind::view ? host_.remembered().geometry(objectName()) : QByteArray();
        if (kept.isEmpty() || !restoreGeometry(kept)) { // which brings a window back onto a smaller screen
            kind_ == WindowKind::dialog ? adjustSize() : resize(wanted_size());
        }
    } else if (!geometry_.isEmpty()) {
        restoreGeometry(geometry_);
    }
    const QWidget* front = QApplication::activeWindow();
    if (kind_ == WindowKind::dialog && front != nullptr && front != this) {
        adjustSize();
        move(front->geometry().center() - rect().center());
    }
    if (focus_first_) {
        setAttribute(Qt::WA_KeyboardFocusChange);
        binding_.widget_of(focus_first_())->setFocus(Qt::TabFocusReason);
    }
    show();
    if (grown_unfitted_) {
        fit_figures(); // a window of the size that it had last gets no resize event
    }
    raise();
    if (!testAttribute(Qt::WA_ShowWithoutActivating)) {
        activateWindow();
    }
}

void FormWindow::keyPressEvent(QKeyEvent* event) {
    auto* button = qobject_cast<QPushButton*>(focusWidget());
    if (button != nullptr && (event->key() == Qt::Key_Return || event->key() == Qt::Key_Enter)) {
        button->click();
        return;
    }
    if (closes_on_escape_ && event->key() == Qt::Key_Escape) {
        close();
        return;
    }
    QMainWindow::keyPressEvent(event);
}

void FormWindow::put_away() {
    geometry_ = saveGeometry();
    if (opened_ && kind_ == WindowKind::view) {
        host_.remembered().set_geometry(objectName(), geometry_);
    }
    hide();
}

void FormWindow::show_caption() {
    if (!form_.caption().empty()) {
        setWindowTitle(qt(form_.caption()));
    }
}

void FormWindow::closeEvent(QCloseEvent* event) {
    event->ignore(); // the form decides, and hides the window itself
    if (form_.enabled()) {
        form_.close_requested();
    }
}

// The boxes' colours are made of the theme's, and so are the figures' sizes of its font.
void FormWindow::changeEvent(QEvent* event) {
    QMainWindow::changeEvent(event);
    if (event->type() == QEvent::PaletteChange) {
        binding_.recolour();
    } else if (event->type() == QEvent::FontChange && body_ != nullptr) {
        fit_figures();
    }
}

void FormWindow::resizeEvent(QResizeEvent* event) {
    QMainWindow::resizeEvent(event);
    fit_figures();
}

} // namespace ecu::desktop
