#include "platform/form.h"

#include <algorithm>

namespace ecu::platform {

Form::Form(std::string_view name, std::string_view caption) : name_(name), caption_(caption) {}

void Form::add(Control& control) {
    if (!by_name_.emplace(std::pair{control.name(), control.index()}, &control).second) {
        throw std::logic_error("form " + name_ + " declares " + control.full_name() + " twice");
    }
    controls_.push_back(&control);
}

void Form::set_caption(std::string_view caption) {
    if (caption_ != caption) {
        caption_ = caption;
        if (host_ != nullptr) {
            host_->form_changed(*this, FormChange::caption);
        }
    }
}

void Form::set_enabled(bool enabled) {
    if (enabled_ != enabled) {
        enabled_ = enabled;
        if (host_ != nullptr) {
            host_->form_changed(*this, FormChange::enabled);
        }
    }
}

void Form::set_hourglass(bool hourglass) {
    if (hourglass_ != hourglass) {
        hourglass_ = hourglass;
        if (host_ != nullptr) {
            host_->form_changed(*this, FormChange::pointer);
        }
    }
}

void Form::raise() {
    if (host_ != nullptr && visible_) {
        host_->form_changed(*this, FormChange::raise);
    }
}

void Form::load() {
    if (!loaded_) {
        loaded_ = true;
        if (on_load) {
            on_load();
        }
    }
}

void Form::show() {
    load();
    if (!visible_) {
        visible_ = true;
        if (host_ != nullptr) {
            host_->form_shown(*this);
        }
    }
}

void Form::show_modal() {
    load();
    if (!visible_) {
        visible_ = true;
        if (host_ != nullptr) {
            host_->run_modal(*this);
        }
    }
}

void Form::hide() {
    if (visible_) {
        visible_ = false;
        if (host_ != nullptr) {
            host_->form_hidden(*this);
        }
    }
}

void Form::unload() {
    if (!loaded_) {
        return;
    }
    loaded_ = false;
    if (on_unload) {
        on_unload();
    }
    hide();
}

void Form::activate() {
    if (visible_ && on_activate) {
        on_activate();
    }
}

void Form::close_requested() {
    if (on_close) {
        on_close();
    } else {
        unload();
    }
}

Control* Form::find(std::string_view name, int index) const {
    const auto it = by_name_.find(std::pair{std::string(name), index});
    return it == by_name_.end() ? nullptr : it->second;
}

Control& Form::at(std::string_view name, int index) const {
    Control* control = find(name, index);
    if (control == nullptr) {
        throw std::logic_error("form " + name_ + " has no control " + std::string(name) +
                               (index < 0 ? "" : "(" + std::to_string(index) + ")"));
    }
    return *control;
}

void FormRegistry::add(Form& form) {
    if (find(form.name()) != nullptr) {
        throw std::logic_error("form " + form.name() + " is registered twice");
    }
    forms_.push_back(&form);
}

Form* FormRegistry::find(std::string_view name) const {
    const auto it = std::ranges::find_if(forms_, [&](const Form* form) { return form->name() == name; });
    return it == forms_.end() ? nullptr : *it;
}

Form& FormRegistry::at(std::string_view name) const {
    Form* form = find(name);
    if (form == nullptr) {
        throw std::logic_error("there is no form " + std::string(name));
    }
    return *form;
}

void FormRegistry::set_host(FormHost* host) {
    for (Form* form : forms_) {
        form->set_host(host);
    }
}

} // namespace ecu::platform
