// The main window's behaviour: its menus and the buttons beside them, the port menu, the controller's reset and its
// preparation for a new firmware, and the end of the program.
#pragma once

#include "shell/about.h"
#include "shell/frm_ecu.h"
#include "shell/navigation.h"
#include "shell/units.h"

namespace ecu::shell {

class MainConsole {
public:
    struct Use {
        const platform::Ports& ports;
        link::SharedState& state;
        link::EcuComm& comm;
        link::LinkSelection& link_selection;
        platform::SerialPort& comm1;
        Navigation& navigation;
        Units& units;
        About& about;
        FrmEcu& form;
    };
    explicit MainConsole(const Use& use);

    // What the remaining menu items do; one that is empty has its item disabled.
    std::function<void()> on_upload;        // menufileopen: a file to the controller
    std::function<void()> on_download;      // menufilesave: the controller to a file
    std::function<void()> on_flash_utility; // enabled by the controller's answer to the preparation only
    std::function<void()> on_compare;
    std::function<void()> on_upload_changes;
    std::function<void()> on_restore_points;
    std::function<void()> on_journal;
    std::function<void()> on_switch;
    std::function<void()> on_start_server;
    std::function<void()> on_start_client;
    std::function<void()> on_halt_client; // its item starts disabled: there is no client yet

    // Before the controller is stopped for new firmware, once that was agreed to; false keeps it running. May be empty.
    std::function<bool()> before_reflash;

    // Run with each tick while no view is open: what waited for the link to settle, and show_link_state.
    void look_around();
    // Says in the main window how the controller is reached.
    void show_link_state();
    // Enables what leads to an existing view or a hook and disables the rest; called once all of them are there.
    void offer_what_exists();

private:
    void wire_views();
    void wire_ports();
    void wire_tools();
    // Whatever else the user turns to takes the place of a view that still waits to be opened.
    std::function<void()> instead_of_a_view(std::function<void()> action);
    // The same for what sends messages: it waits while a server is being greeted.
    std::function<void()> over_the_link(std::function<void()> action);
    // The same for what changes the link: it also waits for the end of a message under way.
    std::function<void()> between_messages(std::function<void()> action);
    void when_settled(bool settled, const std::function<void()>& action);
    bool confirm_reflash_far_away();
    void activate();
    void name_ports();
    void choose_port(std::size_t index);
    void reset_controller();
    void prepare_to_reflash();
    void ask_to_quit();

    Use use_;
    std::function<void()> waiting_; // chosen by the user while it could not run
    std::string waiting_for_;       // the server that it was meant for, or empty
    bool activated_ = false;
};

} // namespace ecu::shell
