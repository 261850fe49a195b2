#include "cli/terminal_desktop.h"

namespace ecu::cli {

void TerminalDesktop::watch(std::string form, std::function<void(platform::Control&)> changed) {
    watched_form_ = std::move(form);
    watcher_ = std::move(changed);
}

// Nobody is there to agree to anything: the careful answer is given.
platform::Answer TerminalDesktop::message_box(const platform::MessageBox& box) {
    said_.push_back(box.text);
    switch (box.buttons) {
    case platform::Buttons::ok:
        return platform::Answer::ok;
    case platform::Buttons::ok_cancel:
    case platform::Buttons::yes_no_cancel:
        return platform::Answer::cancel;
    case platform::Buttons::yes_no:
        return platform::Answer::no;
    }
    return platform::Answer::cancel;
}

void TerminalDesktop::run_modal(platform::Form& form) {
    const auto text_of = [&form](std::string_view label) {
        const platform::Control* control = form.find(label);
        return control != nullptr ? control->text() : std::string();
    };
    form.hide();
    throw LinkFailed(text_of("dialog_caption"), text_of("dialog_details"));
}

void TerminalDesktop::control_changed(platform::Control& control, platform::Property) {
    if (watcher_ && control.form().name() == watched_form_) {
        watcher_(control);
    }
}

} // namespace ecu::cli
