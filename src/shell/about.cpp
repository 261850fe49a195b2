#include "shell/about.h"

#include "link/pause.h"
#include "messages/catalogue.h"

namespace ecu::shell {

namespace {

constexpr float a_moment = 0.1F; // seconds

} // namespace

About::About(const platform::Ports& ports, link::SharedState& state, link::EcuComm& comm,
             link::LinkSelection& link_selection, FrmAbout& form)
    : ports_(ports), state_(state), comm_(comm), link_selection_(link_selection), form_(form) {
    form_.form.on_activate = [this] { activate(); };
    form_.exit_button.clicked = [this] { form_.form.unload(); };
    form_.menu_file_exit.clicked = [this] { form_.form.unload(); };
}

void About::open() {
    link_selection_.open_comm_link();
    state_.polling_paused = false;
    form_.form.show_modal();
}

void About::activate() {
    ask_controller();
    ports_.wait_seconds(a_moment);
}

void About::ask_controller() {
    const link::Pause paused(state_);
    ports_.wait_seconds(a_moment);
    for (const messages::Command& question : {messages::firmware_revision, messages::serial_number}) {
        if (form_.form.visible()) { // not if the user left during the first
            comm_.poll({question.code}, question.reply);
        }
    }
    if (state_.demo_mode) { // nothing was sent, or the user gave up waiting
        form_.serial_num.set_text("DEMO MODE");
    }
    form_.comm_details.set_text(state_.failed_frame_text.empty() ? "No message has failed since the start."
                                                                 : state_.failed_frame_text);
}

} // namespace ecu::shell
