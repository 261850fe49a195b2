#include "platform/control.h"

#include "platform/form.h"

#include <algorithm>

namespace ecu::platform {

Control::Control(Form& form, std::string_view name, int index, Kind kind, std::string_view text)
    : form_(&form), name_(name), index_(index), kind_(kind), text_(text) {
    form.add(*this);
}

std::string Control::full_name() const { return index_ < 0 ? name_ : name_ + "(" + std::to_string(index_) + ")"; }

void Control::announce(Property property) {
    if (FormHost* host = form_->host()) {
        host->control_changed(*this, property);
    }
}

void Control::set_text(std::string_view text) {
    if (text_ != text) {
        text_ = text;
        announce(Property::text);
    }
}

void Control::set_back_colour(std::optional<Colour> colour) {
    if (back_ != colour) {
        back_ = colour;
        if (!back_held_) {
            announce(Property::back_colour);
        }
    }
}

void Control::announce_back_once(const std::function<void()>& change) {
    const auto before = back_;
    const bool held = std::exchange(back_held_, true);
    change();
    back_held_ = held;
    if (!held && back_ != before) {
        announce(Property::back_colour);
    }
}

void Control::set_fore_colour(std::optional<Colour> colour) {
    if (fore_ != colour) {
        fore_ = colour;
        announce(Property::fore_colour);
    }
}

void Control::set_enabled(bool enabled) {
    if (enabled_ != enabled) {
        enabled_ = enabled;
        announce(Property::enabled);
    }
}

void Control::set_visible(bool visible) {
    if (visible_ != visible) {
        visible_ = visible;
        announce(Property::visible);
    }
}

void Control::set_tool_tip(std::string_view tip) {
    if (tool_tip_ != tip) {
        tool_tip_ = tip;
        announce(Property::tool_tip);
    }
}

void TextBox::set_origin(Origin origin) {
    if (origin_ != origin) {
        origin_ = origin;
        announce(Property::origin);
    }
}

void TextBox::set_text(std::string_view text) {
    Control::set_text(text);
    set_origin(after_entry(origin_, text.empty()));
    entered_behind_ = entered_behind_ || sending_;
    if (changed) {
        changed();
    }
}

void TextBox::confirm(std::string_view text) {
    if (sending_ && entered_behind_) {
        return;
    }
    const bool sending = std::exchange(sending_, false);
    announce_back_once([&] {
        set_text(text);
        set_back_colour(confirmed); // before the origin is announced, which may repaint the box
        set_origin(Origin::reply);
    });
    sending_ = sending;
}

void TextBox::begin_sending() {
    sending_ = true;
    entered_behind_ = false;
}

void TextBox::forget() { set_origin(Origin::unread); }

void TextBox::mark_unread() {
    set_back_colour(pending);
    forget();
}

void TextBox::blank() {
    set_text("");
    mark_unread();
}

void CheckBox::set_checked(bool checked) {
    if (checked_ != checked) {
        checked_ = checked;
        announce(Property::checked);
        if (clicked) {
            clicked();
        }
    }
}

void CheckBox::click() {
    if (enabled()) {
        set_checked(!checked_);
    }
}

void OptionButton::clear_siblings() {
    for (Control* other : form().controls()) {
        if (other != this && other->name() == name()) {
            auto& option = static_cast<OptionButton&>(*other);
            if (option.checked_) {
                option.checked_ = false;
                option.announce(Property::checked);
            }
        }
    }
}

void OptionButton::set_checked(bool checked) {
    if (checked_ == checked) {
        return;
    }
    checked_ = checked;
    if (checked) {
        clear_siblings();
    }
    announce(Property::checked);
    if (checked && clicked) {
        clicked();
    }
}

void OptionButton::click() {
    if (!enabled()) {
        return;
    }
    if (!checked_) {
        set_checked(true);
    } else if (clicked) {
        clicked();
    }
}

void Button::press() {
    if (enabled() && clicked) {
        clicked();
    }
}

void MenuItem::set_checked(bool checked) {
    if (checked_ != checked) {
        checked_ = checked;
        announce(Property::checked);
    }
}

void MenuItem::click() {
    if (enabled() && clicked) {
        clicked();
    }
}

void Tabs::set_current(int page) {
    if (current_ != page) {
        current_ = page;
        announce(Property::value);
        if (changed) {
            changed();
        }
    }
}

int Tabs::pending_on(int page) const {
    const auto at = static_cast<std::size_t>(page);
    return at < pending_.size() ? pending_[at] : 0;
}

void Tabs::set_pending_on(int page, int count) {
    if (pending_on(page) != count) {
        pending_.resize(std::max(pending_.size(), static_cast<std::size_t>(page) + 1));
        pending_[static_cast<std::size_t>(page)] = count;
        announce(Property::content);
    }
}

void ScrollBar::set_value(int value) {
    value = std::clamp(value, minimum_, maximum_);
    if (value_ != value) {
        value_ = value;
        announce(Property::value);
        if (changed) {
            changed();
        }
    }
}

void Shape::place(float left, float top, float width, float height) {
    if (left_ != left || top_ != top || width_ != width || height_ != height) {
        left_ = left;
        top_ = top;
        width_ = width;
        height_ = height;
        announce(Property::value);
    }
}

} // namespace ecu::platform
