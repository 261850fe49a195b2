#include "desktop/binding.h"

#include "desktop/box_marks.h"
#include "desktop/grid_view.h"
#include "desktop/keys.h"
#include "desktop/list_view.h"
#include "desktop/picture_view.h"
#include "desktop/qt_text.h"
#include "desktop/theme.h"

#include <QAction>
#include <QCoreApplication>
#include <QFocusEvent>
#include <QHelpEvent>
#include <QKeyEvent>
#include <QLineEdit>
#include <QMenuBar>
#include <QTimer>
#include <QToolTip>

#include <algorithm>
#include <array>
#include <chrono>
#include <stdexcept>
#include <utility>

namespace ecu::desktop {

namespace {
constexpr std::chrono::milliseconds after_the_next_request{1};
} // namespace

using platform::Control;
using platform::Kind;
using platform::Property;

Binding::Bound& Binding::add(Control& control) {
    if (&control.form() != &form_) {
        throw std::logic_error("window of " + form_.name() + ": " + control.full_name() + " belongs to " +
                               control.form().name());
    }
    const auto [place, is_new] = bound_.try_emplace(&control);
    if (!is_new) {
        throw std::logic_error("window of " + form_.name() + ": " + control.full_name() + " is bound twice");
    }
    return place->second;
}

QWidget* Binding::make(Control& control, const QString& spoken_name) {
    switch (control.kind()) {
    case Kind::label:
        make_label(static_cast<platform::Label&>(control));
        break;
    case Kind::text_box: {
        auto& box = static_cast<platform::TextBox&>(control);
        box.multi_line ? make_text_area(box) : make_text_box(box);
        break;
    }
    case Kind::check_box:
        make_check_box(static_cast<platform::CheckBox&>(control));
        break;
    case Kind::option_button:
        make_option(static_cast<platform::OptionButton&>(control));
        break;
    case Kind::button:
        make_button(static_cast<platform::Button&>(control));
        break;
    case Kind::frame:
        make_frame(static_cast<platform::Frame&>(control));
        break;
    case Kind::scroll_bar:
        make_scroll_bar(static_cast<platform::ScrollBar&>(control));
        break;
    case Kind::grid: {
        auto* view = new GridView(static_cast<platform::Grid&>(control));
        bind_custom(control, view, [view](Property property) { view->refresh(property); });
        break;
    }
    case Kind::picture: {
        auto* view = new PictureView(static_cast<platform::Picture&>(control));
        bind_custom(control, view, [view](Property) { view->update(); });
        break;
    }
    case Kind::list: {
        auto* view = new ListView(static_cast<platform::List&>(control));
        bind_custom(control, view, [view](Property property) { view->refresh(property); });
        break;
    }
    case Kind::menu_item:
    case Kind::tabs:
    case Kind::shape:
    case Kind::strip_chart:
    case Kind::gauge:
        throw std::logic_error("window of " + form_.name() + ": " + control.full_name() + " has no plain widget");
    }
    QWidget* widget = widget_of(control);
    if (!spoken_name.isEmpty()) {
        bound_.at(&control).own_name.clear();
        widget->setAccessibleName(spoken(spoken_name));
    }
    return widget;
}

void Binding::bind_custom(Control& control, QWidget* widget, Update update, const QString& spoken_name) {
    Bound& bound = add(control);
    bound.widget = widget;
    bound.update = std::move(update);
    controls_.emplace(widget, &control);
    widget->setObjectName(qt(control.full_name()));
    if (widget->accessibleName().isEmpty()) {
        spoken_name.isEmpty() ? name_by_text(control, bound) : widget->setAccessibleName(spoken(spoken_name));
    }
    widget->installEventFilter(this);
    for (const Property property :
         {Property::scale, Property::value, Property::text, Property::content, Property::checked, Property::fore_colour,
          Property::back_colour, Property::tool_tip, Property::enabled}) {
        refresh(control, property);
    }
    if (!control.visible()) {
        refresh(control, Property::visible);
    }
}

// A control with nothing beside it is called by its text; what stands in a box for entries is no name.
void Binding::name_by_text(const Control& control, Bound& bound) {
    const QString text = control.kind() == Kind::text_box ? QString() : spoken(qt(control.text()));
    bound.own_name = text.isEmpty() ? qt(control.full_name()).replace('_', ' ') : text;
    bound.widget->setAccessibleName(bound.own_name);
}

void Binding::follow(const Control& control, QWidget* companion) {
    Bound& bound = bound_.at(&control);
    bound.companions.emplace_back(companion);
    companion->setEnabled(control.enabled());
    if (!control.visible()) {
        companion->hide();
    }
}

QWidget* Binding::widget_of(const Control& control) const {
    const auto found = bound_.find(&control);
    return found == bound_.end() ? nullptr : found->second.widget;
}

std::vector<Control*> Binding::unbound() const {
    std::vector<Control*> result;
    for (Control* control : form_.controls()) {
        if (!bound_.contains(control)) {
            result.push_back(control);
        }
    }
    return result;
}

void Binding::refresh(Control& control, Property property) {
    const auto found = bound_.find(&control);
    if (found == bound_.end()) {
        return;
    }
    const bool looks = property == Property::text || property == Property::back_colour ||
                       property == Property::fore_colour || property == Property::origin;
    const QWidget* widget = found->second.widget;
    if (looks && qobject_cast<const QLineEdit*>(widget) != nullptr && widget->window()->focusWidget() != widget) {
        refresh_later(static_cast<platform::TextBox&>(control));
        return;
    }
    refresh_now(control, found->second, property);
}

void Binding::refresh_now(Control& control, Bound& bound, Property property) {
    if (bound.widget != nullptr) {
        refresh_common(control, bound, property);
    }
    if (bound.update) {
        bound.update(property);
    }
}

void Binding::refresh_common(Control& control, Bound& bound, Property property) {
    QWidget& widget = *bound.widget;
    switch (property) {
    case Property::enabled:
        widget.setEnabled(control.enabled());
        for (const auto& companion : bound.companions) {
            if (companion != nullptr) {
                companion->setEnabled(control.enabled());
            }
        }
        break;
    case Property::visible:
        widget.setVisible(control.visible());
        for (const auto& companion : bound.companions) {
            if (companion != nullptr) {
                companion->setVisible(control.visible());
            }
        }
        break;
    case Property::tool_tip:
        widget.setToolTip(qt(control.tool_tip()));
        if (control.kind() == Kind::text_box) {
            paint_colours(control, widget); // which adds what its marks say
        }
        break;
    case Property::focus:
        if (control.kind() != Kind::grid) { // a grid tells its active cell by the same announcement
            widget.setFocus(Qt::OtherFocusReason);
        }
        break;
    case Property::back_colour:
    case Property::fore_colour:
    case Property::origin:
        paint_colours(control, widget);
        break;
    case Property::text:
        if (control.kind() == Kind::text_box) {
            paint_colours(control, widget); // what is no number shows it
        }
        if (!bound.own_name.isEmpty() && widget.accessibleName() == bound.own_name) {
            name_by_text(control, bound);
        }
        break;
    case Property::checked:
    case Property::value:
    case Property::content:
    case Property::scale:
        break;
    }
}

void Binding::recolour() {
    for (Control* control : form_.controls()) {
        refresh(*control, Property::back_colour);
    }
}

// What a box shows that has not the focus: while many are read, it takes no time from the line.
void Binding::refresh_later(platform::TextBox& box) {
    if (stale_.empty()) {
        QTimer::singleShot(after_the_next_request, Qt::PreciseTimer, this, &Binding::refresh_stale);
    }
    if (std::ranges::find(stale_, &box) == stale_.end()) {
        stale_.push_back(&box);
    }
}

void Binding::refresh_stale() {
    for (platform::TextBox* box : std::exchange(stale_, {})) {
        refresh_now(*box, bound_.at(box), Property::text);
        refresh_now(*box, bound_.at(box), Property::back_colour);
    }
}

void Binding::paint_colours(Control& control, QWidget& widget) {
    QPalette palette; // what is not set here comes from the theme
    const auto back = control.back_colour();
    auto fore = control.fore_colour();
    if (fore == platform::black && !back && control.kind() != Kind::text_box) {
        fore.reset(); // black on no colour of its own is the theme's ordinary text
    }
    switch (control.kind()) {
    case Kind::text_box:
        if (static_cast<platform::TextBox&>(control).multi_line) {
            return; // read-only: no edit state to be told
        }
        paint_box(static_cast<platform::TextBox&>(control), widget);
        return;
    case Kind::label:
    case Kind::check_box:
    case Kind::option_button:
    case Kind::frame:
        if (back) {
            palette.setColor(QPalette::Window, theme::to_qt(*back));
            palette.setColor(QPalette::WindowText, theme::text_on(theme::to_qt(*back)));
        }
        if (fore) {
            palette.setColor(
                QPalette::WindowText,
                theme::readable_on(theme::to_qt(*fore), back ? theme::to_qt(*back) : theme::panel_fill(QPalette())));
            palette.setColor(QPalette::Text, palette.color(QPalette::WindowText)); // of the mark in a box or circle
        }
        widget.setAutoFillBackground(back.has_value());
        break;
    case Kind::button:
        if (back) {
            palette.setColor(QPalette::Button, theme::to_qt(*back));
            palette.setColor(QPalette::ButtonText, theme::text_on(theme::to_qt(*back)));
        }
        if (fore) {
            palette.setColor(QPalette::ButtonText,
                             theme::readable_on(theme::to_qt(*fore), palette.color(QPalette::Button)));
        }
        break;
    case Kind::menu_item:
    case Kind::tabs:
    case Kind::scroll_bar:
    case Kind::shape:
    case Kind::grid:
    case Kind::picture:
    case Kind::strip_chart:
    case Kind::gauge:
    case Kind::list:
        return; // these paint themselves
    }
    const bool ticked = control.kind() == Kind::check_box || control.kind() == Kind::option_button;
    if (ticked && fore == platform::pending) { // the mark's field takes the colour on, but does not look filled in
        const QColor field = theme::pending_field(QPalette());
        palette.setColor(QPalette::Base, field);
        palette.setColor(QPalette::Text, theme::text_on(field));
    }
    if (!back && !fore) {
        palette = QPalette();
    }
    widget.setPalette(palette);
}

// Focus as the forms know it: it stays with a control while another window or a menu is in front.
void Binding::move_focus(Control* to) {
    if (focused_ == to) {
        return;
    }
    Control* from = std::exchange(focused_, to);
    if (from != nullptr && from->lost_focus) {
        from->lost_focus();
    }
    if (to != nullptr && focused_ == to && to->got_focus) {
        to->got_focus();
    }
}

bool Binding::eventFilter(QObject* watched, QEvent* event) {
    if (auto* bar = qobject_cast<QMenuBar*>(watched); bar != nullptr && event->type() == QEvent::ToolTip) {
        const auto& help = static_cast<QHelpEvent&>(*event); // menus show their tips themselves, a menu bar does not
        const QAction* action = bar->actionAt(help.pos());
        QToolTip::showText(help.globalPos(), action != nullptr && !action->isEnabled() ? action->toolTip() : "", bar);
        return true;
    }
    const auto found = controls_.find(watched);
    if (found == controls_.end()) {
        return false;
    }
    Control& control = *found->second;
    switch (event->type()) {
    case QEvent::FocusIn:
    case QEvent::KeyPress:
    case QEvent::InputMethod:
    case QEvent::MouseButtonPress:
        refresh_stale(); // what is entered is added to what the box holds, not to what it showed
        break;
    default:
        break;
    }
    if (control.kind() == Kind::text_box && form_.find("menu_edit_undo") != nullptr && is_undo_key(*event)) {
        event->ignore(); // the form's, not the line's
        return true;
    }
    switch (event->type()) {
    case QEvent::FocusIn: {
        move_focus(&control);
        const auto reason = static_cast<QFocusEvent*>(event)->reason();
        if (auto* edit = qobject_cast<QLineEdit*>(watched);
            edit != nullptr && reason != Qt::MouseFocusReason && reason != Qt::PopupFocusReason) {
            edit->selectAll(); // what is typed next replaces the value, it never runs into it
        }
        return false;
    }
    case QEvent::FocusOut: {
        const auto reason = static_cast<QFocusEvent*>(event)->reason();
        if (reason != Qt::ActiveWindowFocusReason && reason != Qt::PopupFocusReason && focused_ == &control) {
            move_focus(nullptr);
        }
        return false;
    }
    case QEvent::KeyPress: {
        if (control.kind() == Kind::text_box && is_decimal_comma(control, *static_cast<QKeyEvent*>(event))) {
            QKeyEvent point(QEvent::KeyPress, Qt::Key_Period, Qt::NoModifier, QStringLiteral("."));
            QCoreApplication::sendEvent(watched, &point);
            return true;
        }
        if (auto* edit = qobject_cast<QLineEdit*>(watched);
            edit != nullptr && control.kind() == Kind::text_box &&
            paste_value(control, *edit, *static_cast<QKeyEvent*>(event))) {
            return true;
        }
        if (control.kind() == Kind::grid || !control.key_down) {
            return false; // a grid's view reports its keys itself
        }
        platform::KeyPress key = key_of(*static_cast<QKeyEvent*>(event));
        const int code = key.code;
        if (code != 0) {
            control.key_down(key);
        }
        return key.code != code;
    }
    case QEvent::MouseButtonDblClick:
        if (control.double_clicked && control.enabled()) {
            control.double_clicked();
        }
        return false;
    default:
        return false;
    }
}

} // namespace ecu::desktop
