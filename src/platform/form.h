// A form is a struct of controls that lives for the whole run; this is its window side: caption, loaded, visible
// and enabled state, its life-cycle handlers, and the register of its controls by name and index.
// One host (the desktop, or the simulated one of the tests) hears of every change and shows the form.
#pragma once

#include "platform/control.h"

#include <functional>
#include <map>
#include <span>
#include <stdexcept>
#include <string>
#include <string_view>
#include <vector>

namespace ecu::platform {

enum class FormChange : std::uint8_t { caption, enabled, pointer, raise };

// What stands behind the forms. All calls come from the one thread.
class FormHost {
public:
    virtual ~FormHost() = default;
    // The form became visible. The host runs form.activate() from its next round of events, never inside this call.
    virtual void form_shown(Form& form) = 0;
    virtual void form_hidden(Form& form) = 0;
    virtual void form_changed(Form& form, FormChange change) = 0;
    // The form became visible and holds the user until it is hidden: returns when it is.
    virtual void run_modal(Form& form) = 0;
    virtual void control_changed(Control& control, Property property) = 0;
};

class Form {
public:
    Form(std::string_view name, std::string_view caption);
    Form(const Form&) = delete;
    Form& operator=(const Form&) = delete;

    const std::string& name() const { return name_; }
    const std::string& caption() const { return caption_; }
    void set_caption(std::string_view caption);
    bool loaded() const { return loaded_; }
    bool visible() const { return visible_; }
    bool enabled() const { return enabled_; }
    void set_enabled(bool enabled);
    bool hourglass() const { return hourglass_; }
    void set_hourglass(bool hourglass);
    void raise(); // to the front

    void load();       // runs on_load once until unloaded
    void show();       // loads, becomes visible; activation follows with the next events
    void show_modal(); // the same, and returns when hidden again
    void hide();
    void unload(); // runs on_unload, then hides; the controls keep their contents
    // Called by the host.
    void activate();        // runs on_activate if still visible
    void close_requested(); // the window's close button or Alt+F4: on_close, or else unload

    std::function<void()> on_load;
    std::function<void()> on_activate;
    std::function<void()> on_unload;
    std::function<void()> on_close;

    void set_host(FormHost* host) { host_ = host; }
    FormHost* host() const { return host_; }

    // The controls in order of declaration, which is also the order of menus.
    std::span<Control* const> controls() const { return controls_; }
    // Null when there is none of that name and index.
    Control* find(std::string_view name, int index = -1) const;
    // Throws std::logic_error naming form and control when there is none, or it is of another kind.
    Control& at(std::string_view name, int index = -1) const;
    template <typename ControlType> ControlType& get(std::string_view name, int index = -1) const {
        auto* typed = dynamic_cast<ControlType*>(&at(name, index));
        if (typed == nullptr) {
            throw std::logic_error("control " + std::string(name) + " of " + name_ + " is of another kind");
        }
        return *typed;
    }

private:
    friend class Control;
    void add(Control& control);

    std::string name_;
    std::string caption_;
    bool loaded_ = false;
    bool visible_ = false;
    bool enabled_ = true;
    bool hourglass_ = false;
    FormHost* host_ = nullptr;
    std::vector<Control*> controls_;
    std::map<std::pair<std::string, int>, Control*, std::less<>> by_name_;
};

// All forms of the console, so that a decoder or table row reaches a control of a form above its own floor by name.
class FormRegistry {
public:
    void add(Form& form);
    std::span<Form* const> forms() const { return forms_; }
    Form* find(std::string_view name) const;
    Form& at(std::string_view name) const; // throws std::logic_error when there is none
    template <typename ControlType>
    ControlType& get(std::string_view form, std::string_view name, int index = -1) const {
        return at(form).get<ControlType>(name, index);
    }
    void set_host(FormHost* host);

private:
    std::vector<Form*> forms_;
};

} // namespace ecu::platform
