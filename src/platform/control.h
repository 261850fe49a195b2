// Controls as models: what the rules of the console read back (text, colours, enabled, visible, checked, tag)
// with no toolkit behind it. A control belongs to one form, registers there under its name and index, and
// announces each change to the form's host, the desktop, which repaints that widget alone.
// A write of the same text still fires `changed`: a cell is pending because it was written, not because it differs.
#pragma once

#include "platform/colour.h"

#include <array>
#include <cstdint>
#include <functional>
#include <optional>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

namespace ecu::platform {

class Form;

enum class Kind : std::uint8_t {
    label,
    text_box,
    check_box,
    option_button,
    button,
    menu_item,
    frame,
    tabs,
    scroll_bar,
    shape,
    grid,
    picture,
    strip_chart,
    gauge,
    list,
};

enum class Property : std::uint8_t {
    text,
    back_colour,
    fore_colour,
    enabled,
    visible,
    checked,
    tool_tip,
    focus,   // the program asks for the keyboard focus
    value,   // position of a scroll bar, bar width, current tab, needle of a gauge
    content, // cells of a grid, drawing of a picture, samples of a chart
    scale,   // limits and zones of a gauge, column widths of a grid
    origin,  // where a box's value came from
};

// Where the text of a box or cell came from. What is unread shows no value: a reply or an entry has yet to fill it, and
// until then nothing is sent, drawn or calculated from it. An entry differs from what the controller last
// confirmed, whatever its background says.
enum class Origin : std::uint8_t {
    none, // no value of the controller: never blanked, never confirmed
    unread,
    reply,
    entry,
};
// After a text was written that no reply brought; an empty one fills nothing.
constexpr Origin after_entry(Origin before, bool empty) {
    return before == Origin::none || (before == Origin::unread && empty) ? before : Origin::entry;
}

// A key as the controls report it. A handler that consumes the key sets code to 0.
struct KeyPress {
    int code = 0;       // virtual key: 13 Enter, 37 Left, 38 Up, 39 Right, 40 Down, letters as upper case
    bool shift = false; // Shift held
    bool ctrl = false;  // Ctrl held
};

namespace key {
inline constexpr int enter = 13;
inline constexpr int shift = 16;
inline constexpr int left = 37;
inline constexpr int up = 38;
inline constexpr int right = 39;
inline constexpr int down = 40;
inline constexpr int period = 190;
} // namespace key

// The properties that every control has. `index` is -1 for a control that is not in an array.
class Control {
public:
    Control(const Control&) = delete;
    Control& operator=(const Control&) = delete;
    virtual ~Control() = default;

    Form& form() const { return *form_; }
    const std::string& name() const { return name_; }
    int index() const { return index_; }
    std::string full_name() const; // "inj_pw(3)" in an array, else the bare name
    Kind kind() const { return kind_; }

    const std::string& text() const { return text_; }
    virtual void set_text(std::string_view text);
    // No colour means that of the desktop's theme.
    std::optional<Colour> back_colour() const { return back_; }
    void set_back_colour(std::optional<Colour> colour);
    std::optional<Colour> fore_colour() const { return fore_; }
    void set_fore_colour(std::optional<Colour> colour);
    bool enabled() const { return enabled_; }
    void set_enabled(bool enabled);
    bool visible() const { return visible_; }
    void set_visible(bool visible);
    const std::string& tool_tip() const { return tool_tip_; }
    void set_tool_tip(std::string_view tip);
    const std::string& tag() const { return tag_; }
    void set_tag(std::string_view tag) { tag_ = tag; }
    void set_focus() { announce(Property::focus); }

    // Called by the desktop for what the user does, and by tests in its place.
    std::function<void()> got_focus;
    std::function<void()> lost_focus;
    std::function<void(KeyPress&)> key_down;
    std::function<void()> double_clicked;

protected:
    Control(Form& form, std::string_view name, int index, Kind kind, std::string_view text);
    void announce(Property property);
    // Of the backgrounds that `change` paints one after the other only the last is announced, if it differs at all.
    void announce_back_once(const std::function<void()>& change);

private:
    Form* form_;
    std::string name_;
    int index_;
    Kind kind_;
    std::string text_;
    std::string tool_tip_;
    std::string tag_;
    std::optional<Colour> back_;
    std::optional<Colour> fore_;
    bool back_held_ = false;
    bool enabled_ = true;
    bool visible_ = true;
};

class Label : public Control {
public:
    Label(Form& form, std::string_view name, std::string_view text = "", int index = -1)
        : Control(form, name, index, Kind::label, text) {}
};

// A line of text. Its background is its edit state; it starts confirmed.
class TextBox : public Control {
public:
    TextBox(Form& form, std::string_view name, std::string_view text = "", int index = -1)
        : Control(form, name, index, Kind::text_box, text) {
        set_back_colour(confirmed);
        set_fore_colour(black);
    }
    void set_text(std::string_view text) override; // fires changed, whether or not the text differs
    // Writes the controller's value: the text first, then the white that the text's own event took away.
    void confirm(std::string_view text);
    bool is_pending() const { return back_colour() == pending; }
    Origin origin() const { return origin_; }
    bool unread() const { return origin_ == Origin::unread; }
    bool unconfirmed() const { return origin_ == Origin::entry; }
    // What Update sends.
    bool to_be_sent() const { return is_pending() && !unread(); }
    void forget();           // unread; text and colour stay
    void mark_unread();      // the same, and yellow
    void blank();            // the same, and empty
    bool multi_line = false; // shown as a text area, read-only for the user
    std::function<void()> changed;

    // While its text is on the way to the controller: what is entered meanwhile is a new entry, and the reply, which
    // answers the old one, leaves it alone.
    void begin_sending();
    void end_sending() { sending_ = false; }
    bool entered_behind() const { return entered_behind_; } // since the last begin

private:
    void set_origin(Origin origin);
    Origin origin_ = Origin::none;
    bool sending_ = false;
    bool entered_behind_ = false;
};

// A button with two states. Setting a different state from the program fires `clicked`, as a click does.
class CheckBox : public Control {
public:
    CheckBox(Form& form, std::string_view name, std::string_view text = "", int index = -1)
        : Control(form, name, index, Kind::check_box, text) {}
    bool checked() const { return checked_; }
    void set_checked(bool checked);
    void click(); // what the mouse does
    std::function<void()> clicked;

private:
    bool checked_ = false;
};

// One of a group of which at most one is chosen; the group is the control array of the same name.
class OptionButton : public Control {
public:
    OptionButton(Form& form, std::string_view name, std::string_view text = "", int index = -1)
        : Control(form, name, index, Kind::option_button, text) {}
    bool checked() const { return checked_; }
    void set_checked(bool checked); // choosing one clears its siblings and fires `clicked`
    void click();
    std::function<void()> clicked;

private:
    void clear_siblings();
    bool checked_ = false;
};

class Button : public Control {
public:
    Button(Form& form, std::string_view name, std::string_view text = "", int index = -1)
        : Control(form, name, index, Kind::button, text) {}
    void press(); // runs `clicked` if enabled, as the mouse does
    std::function<void()> clicked;
};

// An entry of the form's menu bar, or of another entry. An ampersand in the text marks the access key.
class MenuItem : public Control {
public:
    MenuItem(Form& form, std::string_view name, std::string_view text, int index = -1)
        : Control(form, name, index, Kind::menu_item, text) {}
    MenuItem(MenuItem& parent, std::string_view name, std::string_view text, int index = -1)
        : Control(parent.form(), name, index, Kind::menu_item, text), parent_(&parent) {}
    MenuItem* parent() const { return parent_; }
    bool checked() const { return checked_; }
    void set_checked(bool checked); // never fires `clicked`
    void click();                   // runs `clicked` if enabled; for a parent, as its menu opens
    bool separator_before = false;
    std::string shortcut = {}; // "Ctrl+Z"; set before the window is made
    std::function<void()> clicked;

private:
    MenuItem* parent_ = nullptr;
    bool checked_ = false;
};

// A box around other controls; hiding it hides them.
class Frame : public Control {
public:
    Frame(Form& form, std::string_view name, std::string_view text = "", int index = -1)
        : Control(form, name, index, Kind::frame, text) {}
};

// Pages of which one shows. A page may carry a mark: the number of values pending on it.
class Tabs : public Control {
public:
    Tabs(Form& form, std::string_view name) : Control(form, name, -1, Kind::tabs, "") {}
    int current() const { return current_; }
    void set_current(int page); // fires `changed` when it differs
    std::function<void()> changed;
    int pending_on(int page) const;
    void set_pending_on(int page, int count);

private:
    int current_ = 0;
    std::vector<int> pending_;
};

class ScrollBar : public Control {
public:
    ScrollBar(Form& form, std::string_view name, int minimum, int maximum, int value)
        : Control(form, name, -1, Kind::scroll_bar, ""), minimum_(minimum), maximum_(maximum), value_(value) {}
    int minimum() const { return minimum_; }
    int maximum() const { return maximum_; }
    int value() const { return value_; }
    void set_value(int value); // held to the limits; fires `changed` when it differs
    std::function<void()> changed;

private:
    int minimum_;
    int maximum_;
    int value_;
};

// A drawn shape with a place and an extent in the form's own units: a progress bar, an axis line, a marker, a lamp.
class Shape : public Control {
public:
    Shape(Form& form, std::string_view name, int index = -1) : Control(form, name, index, Kind::shape, "") {}
    Shape(Form& form, std::string_view name, std::string_view text, int index)
        : Control(form, name, index, Kind::shape, text) {}
    float left() const { return left_; }
    float top() const { return top_; }
    float width() const { return width_; }
    float height() const { return height_; }
    void place(float left, float top, float width, float height);
    void set_left(float left) { place(left, top_, width_, height_); }
    void set_top(float top) { place(left_, top, width_, height_); }
    void set_width(float width) { place(left_, top_, width, height_); }

private:
    float left_ = 0;
    float top_ = 0;
    float width_ = 0;
    float height_ = 0;
};

// A control array: N controls of one name, indices 0 to N - 1.
template <typename ControlType, std::size_t N> class ControlArray {
public:
    // Every element with the same text (or none).
    ControlArray(Form& form, std::string_view name, std::string_view text = "")
        : ControlArray(form, name, text, std::make_index_sequence<N>{}) {}
    // Each element with its own text.
    ControlArray(Form& form, std::string_view name, const std::array<std::string_view, N>& texts)
        : ControlArray(form, name, texts, std::make_index_sequence<N>{}) {}
    // Menu items under one parent, each with its own text.
    ControlArray(MenuItem& parent, std::string_view name, const std::array<std::string_view, N>& texts)
        : ControlArray(parent, name, texts, std::make_index_sequence<N>{}) {}

    ControlType& operator[](std::size_t i) { return controls_.at(i); }
    const ControlType& operator[](std::size_t i) const { return controls_.at(i); }
    static constexpr std::size_t size() { return N; }
    auto begin() { return controls_.begin(); }
    auto end() { return controls_.end(); }
    auto begin() const { return controls_.begin(); }
    auto end() const { return controls_.end(); }

private:
    template <std::size_t... I>
    ControlArray(Form& form, std::string_view name, std::string_view text, std::index_sequence<I...>)
        : controls_{{ControlType(form, name, text, static_cast<int>(I))...}} {}
    template <typename Owner, std::size_t... I>
    ControlArray(Owner& owner, std::string_view name, const std::array<std::string_view, N>& texts,
                 std::index_sequence<I...>)
        : controls_{{ControlType(owner, name, texts[I], static_cast<int>(I))...}} {}
    std::array<ControlType, N> controls_;
};

// Index of the first chosen element of an option array, or -1.
template <std::size_t N> int chosen(const ControlArray<OptionButton, N>& group) {
    for (std::size_t i = 0; i < N; ++i) {
        if (group[i].checked()) {
            return static_cast<int>(i);
        }
    }
    return -1;
}

} // namespace ecu::platform
