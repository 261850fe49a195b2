#include "shell/main_console.h"

#include "messages/reply_decoders.h"

#include <utility>

namespace ecu::shell {

namespace {

using link::View;
using messages::restart;

struct ViewEntry {
    View view;
    platform::MenuItem FrmEcu::*item;
    platform::Button FrmEcu::*button;
};
constexpr std::array<ViewEntry, 8> view_entries{{
    {View::monitor, &FrmEcu::Menu_View_Monitor, &FrmEcu::monitor_button},
    {View::dashboard, &FrmEcu::menu_view_dashboard, &FrmEcu::dashboard_button},
    {View::configuration, &FrmEcu::Menu_View_Injection, &FrmEcu::configuration_button},
    {View::basic_mapping, &FrmEcu::menu_View_Mapping, &FrmEcu::basic_map_button},
    {View::additional_mapping, &FrmEcu::menu_view_temperature, &FrmEcu::additional_map_button},
    {View::gpo_mapping, &FrmEcu::menu_View_supp, &FrmEcu::gpo_button},
    {View::plotter, &FrmEcu::menu_View_Plotter, &FrmEcu::plotter_button},
    {View::diagnostics, &FrmEcu::menu_view_diagnostic, &FrmEcu::diagnostics_button},
}};

} // namespace

MainConsole::MainConsole(const Use& use) : use_(use) {
    FrmEcu& form = use_.form;
    form.form.on_activate = [this] { activate(); };
    form.form.on_close = instead_of_a_view([this] { ask_to_quit(); });
    form.form.on_unload = [this] { use_.ports.program.end(0); };
    form.menu_file_exit.clicked = form.exit_button.clicked = instead_of_a_view([this] { ask_to_quit(); });
    form.menu_about.clicked = form.about_button.clicked = over_the_link([this] { use_.about.open(); });
    wire_views();
    wire_ports();
    wire_tools();
}

void MainConsole::wire_views() {
    for (const ViewEntry& entry : view_entries) {
        const auto open = [this, view = entry.view] {
            waiting_ = nullptr;
            use_.navigation.open(view);
        };
        (use_.form.*entry.item).clicked = open;
        (use_.form.*entry.button).clicked = open;
    }
}

void MainConsole::wire_ports() {
    for (std::size_t i = 0; i < use_.form.ports.size(); ++i) {
        use_.form.ports[i]->clicked = [this, i] { choose_port(i); };
    }
    use_.form.menu_comm.clicked = [this] { name_ports(); }; // as the menu opens: an adapter may have been plugged in
    name_ports();
}

void MainConsole::wire_tools() {
    FrmEcu& form = use_.form;
    form.menu_tool_reset.clicked = over_the_link([this] { reset_controller(); });
    form.menu_tool_reflash.clicked = over_the_link([this] { prepare_to_reflash(); });
    form.menufileopen.clicked = over_the_link([this] { on_upload(); });
    form.menufilesave.clicked = over_the_link([this] { on_download(); });
    form.menu_remote_setup_start_server.clicked = between_messages([this] { on_start_server(); });
    form.menu_remote_setup_start_client.clicked = between_messages([this] { on_start_client(); });
    form.menu_remote_setup_halt_client.clicked = instead_of_a_view([this] { on_halt_client(); });
    form.menu_tool_flash_utility.clicked = instead_of_a_view([this] { on_flash_utility(); });
    form.menu_tool_compare.clicked = instead_of_a_view([this] { on_compare(); });
    form.menu_tool_upload_changes.clicked = between_messages([this] { on_upload_changes(); });
    form.menu_tool_restore_point.clicked = instead_of_a_view([this] { on_restore_points(); });
    form.menu_tool_journal.clicked = instead_of_a_view([this] { on_journal(); });
    form.menu_tool_switch.clicked = between_messages([this] { on_switch(); });
    offer_what_exists();
}

std::function<void()> MainConsole::instead_of_a_view(std::function<void()> action) {
    return [this, action = std::move(action)] {
        use_.state.drop_view_requests();
        waiting_ = nullptr;
        action();
    };
}

std::function<void()> MainConsole::over_the_link(std::function<void()> action) {
    return instead_of_a_view(
        [this, action = std::move(action)] { when_settled(!use_.state.remote_connecting, action); });
}

std::function<void()> MainConsole::between_messages(std::function<void()> action) {
    return instead_of_a_view([this, action = std::move(action)] {
        when_settled(!use_.state.remote_connecting && !use_.comm.busy(), action);
    });
}

void MainConsole::when_settled(bool settled, const std::function<void()>& action) {
    if (settled) {
        action();
    } else {
        waiting_ = action;
        waiting_for_ = use_.state.remote_server_ip;
    }
}

// A tick comes neither inside a message nor inside another tick. What was meant for the controller behind a server does
// not go to the one at this machine's own port.
void MainConsole::look_around() {
    show_link_state();
    if (waiting_ && !use_.state.remote_connecting) {
        const auto action = std::exchange(waiting_, nullptr);
        if (waiting_for_ == use_.state.remote_server_ip) {
            use_.ports.timers.post(action);
        }
    }
}

void MainConsole::offer_what_exists() {
    FrmEcu& form = use_.form;
    for (const ViewEntry& entry : view_entries) {
        const bool exists = use_.navigation.available(entry.view);
        offer(form.*entry.item, exists);
        offer(form.*entry.button, exists);
    }
    const auto offer_tool = [](platform::MenuItem& item, const std::function<void()>& action) {
        offer(item, static_cast<bool>(action), tool_missing);
    };
    offer_tool(form.menufileopen, on_upload);
    offer_tool(form.menufilesave, on_download);
    offer_tool(form.menu_remote_setup_start_server, on_start_server);
    offer_tool(form.menu_remote_setup_start_client, on_start_client);
    offer_tool(form.menu_remote_setup_halt_client, on_halt_client);
    offer_tool(form.menu_tool_flash_utility, on_flash_utility);
    offer_tool(form.menu_tool_compare, on_compare);
    offer_tool(form.menu_tool_upload_changes, on_upload_changes);
    offer_tool(form.menu_tool_restore_point, on_restore_points);
    offer_tool(form.menu_tool_journal, on_journal);
    offer_tool(form.menu_tool_switch, on_switch);
    form.menu_remote_setup_halt_client.set_enabled(false);
    form.menu_tool_flash_utility.set_enabled(false);
    form.menu_tool_flash_utility.set_tag(on_flash_utility ? "" : messages::nothing_behind);
}

void MainConsole::show_link_state() {
    const link::SharedState& state = use_.state;
    const std::string port = "COM" + std::to_string(state.comm_port_number);
    std::string text = port + " is opened with the first view";
    if (state.demo_mode) {
        text = "Demo mode, no controller";
    } else if (!state.remote_server_ip.empty() && state.remote_connecting) {
        text = "Asking the console at " + state.remote_server_ip + "...";
    } else if (!state.remote_server_ip.empty()) {
        text = "Through the console at " + state.remote_server_ip;
    } else if (state.comm_aborted) {
        text = "Aborted: nothing is sent until a view is opened";
    } else if (use_.comm1.is_open()) {
        text = port + " is open";
    }
    use_.form.link_state.set_text(text);
}

void MainConsole::activate() {
    show_link_state();
    if (!activated_) {
        activated_ = true;
        use_.state.first_tick_pending = true;
        use_.units.keep_choices();
    }
}

void MainConsole::name_ports() {
    for (std::size_t i = 0; i < use_.form.ports.size(); ++i) {
        const int number = static_cast<int>(i) + 1;
        const std::string device = use_.comm1.device_of(number);
        std::string caption = number < 10 ? "COM &" + std::to_string(number) : "COM 1&0";
        if (!device.empty()) {
            caption += "  (" + device + ")";
        }
        use_.form.ports[i]->set_text(caption);
        use_.form.ports[i]->set_tool_tip(device.empty() ? "No device stands for port " + std::to_string(number) + " now"
                                                        : "Port " + std::to_string(number) + " is " + device);
    }
}

void MainConsole::choose_port(std::size_t index) {
    for (std::size_t i = 0; i < use_.form.ports.size(); ++i) {
        use_.form.ports[i]->set_checked(i == index);
    }
    use_.link_selection.choose_port(static_cast<int>(index) + 1);
}

void MainConsole::reset_controller() {
    use_.link_selection.open_comm_link();
    use_.comm.poll({restart.code, messages::restart_now, 0, 0}, restart.reply);
}

// The flash utility writes through a cable; over the network it would leave the far engine with a stopped controller.
bool MainConsole::confirm_reflash_far_away() {
    const std::string& server = use_.state.remote_server_ip;
    return server.empty() ||
           use_.ports.dialogs.message_box(
               {.text = "The flash utility needs the controller's cable at this machine. The controller behind " +
                        server +
                        " would be stopped and could not be re-flashed over the network.\nGo on only if its cable is "
                        "going to be moved to this machine; otherwise re-flash it from the console there.",
                .buttons = platform::Buttons::ok_cancel,
                .icon = platform::Icon::warning,
                .preset = platform::Answer::cancel}) == platform::Answer::ok;
}

void MainConsole::prepare_to_reflash() {
    if (!confirm_reflash_far_away()) {
        return;
    }
    const platform::Answer answer =
        use_.ports.dialogs.message_box({.text = "Do you really want to stop the controller and re-flash its memory?",
                                        .buttons = platform::Buttons::ok_cancel,
                                        .icon = platform::Icon::warning,
                                        .preset = platform::Answer::cancel});
    if (answer == platform::Answer::ok && before_reflash && !before_reflash()) {
        return;
    }
    use_.link_selection.open_comm_link();
    if (answer == platform::Answer::ok) {
        use_.state.reset_comm_watch = true;
        use_.comm.poll({restart.code, messages::restart_for_flash, 0, 0}, restart.reply);
    }
    // The flash utility takes the port for itself, whatever the answer was.
    use_.state.comm_ready = false;
    use_.comm1.close();
    use_.state.link_title_suffix.clear();
}

void MainConsole::ask_to_quit() {
    const platform::Answer answer = use_.ports.dialogs.message_box({.text = "Are you sure you want to quit?",
                                                                    .title = "ECU",
                                                                    .buttons = platform::Buttons::yes_no,
                                                                    .icon = platform::Icon::question,
                                                                    .preset = platform::Answer::yes});
    if (answer == platform::Answer::yes) {
        use_.form.form.unload();
    }
}

} // namespace ecu::shell
