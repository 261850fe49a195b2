// Joins the controls of one form to the widgets of its window. A widget carries its control's full name as object
// name; a change of the control repaints that widget alone, and what the user does goes to the control as the classic
// event, without coming back as an echo. A control that is another form's, or bound already, throws std::logic_error,
// so that a window that names its controls wrongly fails when it is built.
#pragma once

#include "platform/form.h"

#include <QObject>
#include <QPointer>

#include <functional>
#include <map>
#include <string>
#include <unordered_map>
#include <vector>

class QAction;
class QButtonGroup;
class QMenuBar;
class QWidget;

namespace ecu::desktop {

class Binding final : public QObject {
public:
    using Update = std::function<void(platform::Property)>;

    explicit Binding(platform::Form& form) : form_(form) {}

    // The Qt widget for the control's kind, bound; `spoken_name` is what a screen reader says, the label beside it.
    // Throws for a kind that has no plain widget (tabs, shape, gauge, strip chart): those go through bind_custom.
    QWidget* make(platform::Control& control, const QString& spoken_name = {});
    // Binds a widget of the caller's. Enabled, visible, tool tip and focus are cared for; `update` is called for every
    // other property, and once for each of them now.
    void bind_custom(platform::Control& control, QWidget* widget, Update update, const QString& spoken_name = {});
    // A caption or unit that shows, hides and greys with the control beside it.
    void follow(const platform::Control& control, QWidget* companion);
    // Whether something beside it says what it is.
    bool has_caption(const platform::Control& control) const { return bound_.at(&control).own_name.isEmpty(); }
    // Whether the widget is a plain caption, bound to no control.
    bool is_fixed_text(const QObject& widget) const { return !controls_.contains(&widget); }
    // Builds the menu bar from the form's menu items in their order; items that have children become menus.
    void build_menus(QMenuBar& bar);

    void refresh(platform::Control& control, platform::Property property);
    void recolour();                                            // when the theme has changed
    QWidget* widget_of(const platform::Control& control) const; // null when not bound to a widget
    std::vector<platform::Control*> unbound() const;

protected:
    bool eventFilter(QObject* watched, QEvent* event) override;

private:
    struct Bound {
        QWidget* widget = nullptr;
        QAction* action = nullptr;
        Update update;
        std::vector<QPointer<QWidget>> companions;
        QString own_name; // the accessible name, where the control's text gives it
    };

    Bound& add(platform::Control& control);
    void refresh_common(platform::Control& control, Bound& bound, platform::Property property);
    static void name_by_text(const platform::Control& control, Bound& bound);
    void paint_colours(platform::Control& control, QWidget& widget);
    void refresh_now(platform::Control& control, Bound& bound, platform::Property property);
    void refresh_later(platform::TextBox& box);
    void refresh_stale();
    void move_focus(platform::Control* to);
    void mark(const platform::MenuItem& item, QAction& action);

    QWidget* make_label(platform::Label& control);
    QWidget* make_text_box(platform::TextBox& control);
    QWidget* make_text_area(platform::TextBox& control);
    QWidget* make_check_box(platform::CheckBox& control);
    QWidget* make_option(platform::OptionButton& control);
    QWidget* make_button(platform::Button& control);
    QWidget* make_scroll_bar(platform::ScrollBar& control);
    QWidget* make_frame(platform::Frame& control);

    platform::Form& form_;
    std::unordered_map<const platform::Control*, Bound> bound_;
    std::unordered_map<const QObject*, platform::Control*> controls_;
    std::map<std::string, QButtonGroup*> groups_; // children of this object
    std::vector<platform::TextBox*> stale_;       // whose widgets are behind
    platform::Control* focused_ = nullptr;
};

} // namespace ecu::desktop
