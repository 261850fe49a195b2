// The desktop of the command line: forms that nobody sees, boxes and dialogs that nobody answers. What would stop and
// ask a tuner ends the command instead: the failure dialog and the no-port dialog become LinkFailed.
#pragma once

#include "platform/dialogs.h"
#include "platform/form.h"

#include <exception>
#include <functional>
#include <string>
#include <vector>

namespace ecu::cli {

// The console would ask what to do about its link.
struct LinkFailed : std::exception {
    LinkFailed(std::string asked_text, std::string system_reason)
        : asked(std::move(asked_text)), reason(std::move(system_reason)) {}
    const char* what() const noexcept override { return asked.c_str(); }
    std::string asked;  // the dialog's caption
    std::string reason; // the system's, or empty
};

// The program asked for its own end.
struct ProgramEnded {
    int status;
};

class TerminalDesktop final : public platform::FormHost, public platform::Dialogs, public platform::Program {
public:
    // Texts of the message boxes so far, in order.
    const std::vector<std::string>& said() const { return said_; }
    // Called when a control of this form changes.
    void watch(std::string form, std::function<void(platform::Control&)> changed);

    platform::Answer message_box(const platform::MessageBox& box) override;
    std::string open_file(const platform::FileDialog&) override { return {}; }
    std::string save_file(const platform::FileDialog&) override { return {}; }
    [[noreturn]] void end(int status) override { throw ProgramEnded{status}; }

    void form_shown(platform::Form& form) override { form.activate(); }
    void form_hidden(platform::Form&) override {}
    void form_changed(platform::Form&, platform::FormChange) override {}
    void run_modal(platform::Form& form) override;
    void control_changed(platform::Control& control, platform::Property property) override;

private:
    std::vector<std::string> said_;
    std::string watched_form_;
    std::function<void(platform::Control&)> watcher_;
};

} // namespace ecu::cli
