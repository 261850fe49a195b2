#include "link/remote_client.h"

namespace ecu::link {

namespace {

constexpr float answer_seconds = 5;
constexpr const char* plain_caption = "ECU System Console";

struct Raised {
    explicit Raised(bool& flag) : flag_(flag) { flag_ = true; }
    ~Raised() { flag_ = false; }
    Raised(const Raised&) = delete;
    Raised& operator=(const Raised&) = delete;

private:
    bool& flag_;
};

} // namespace

RemoteClient::RemoteClient(const Use& use) : use_(use) {
    use_.form.remote_ip_done.clicked = [this] { close_dialog(use_.form.address()); };
    use_.form.remote_ip_cancel.clicked = [this] { close_dialog(""); };
}

void RemoteClient::close_dialog(const std::string& server) {
    use_.state.remote_server_ip = server;
    use_.form.form.hide();
}

void RemoteClient::start() {
    if (use_.state.demo_mode) {
        use_.ports.dialogs.say("This program is running in demo mode, so this feature cannot be executed.");
        return;
    }
    // Until the greeting is over nothing may be sent to the server, whatever is clicked meanwhile.
    const Raised connecting(use_.state.remote_connecting);
    use_.form.form.show_modal();
    const std::string server = use_.state.remote_server_ip;
    if (server.empty()) {
        return;
    }
    if (use_.comm1.is_open()) {
        use_.comm1.close();
        use_.state.link_title_suffix.clear();
    }
    use_.state.comm_ready = false;
    use_.comm.link_changed();
    offer_start(false);
    const int attempt = ++attempt_;
    const Greeting greeting = greet(server, [this, attempt] { return attempt != attempt_; });
    if (attempt != attempt_) {
        return; // halted, and all is undone
    }
    if (greeting.answered) {
        connected_to(server);
    } else {
        not_connected(server, greeting);
    }
}

RemoteClient::Greeting RemoteClient::greet(const std::string& server, const std::function<bool()>& given_up) {
    const auto [settings, fault] = read_remote_settings(use_.ports.environment);
    if (!fault.empty()) {
        return {.fault = fault};
    }
    platform::DatagramSocket& socket = use_.outgoing_sock;
    if (const auto bound = socket.bind(settings.bind_address, settings.client_port);
        bound.fault != platform::BindFault::none) {
        return {.fault = bind_refusal(bound, settings, settings.client_port)};
    }
    const auto address = platform::ipv4_of(server);
    if (!address) {
        return {}; // a field above 255: nobody is there
    }
    socket.set_remote(platform::Peer{*address, settings.server_port}, true);
    // Between messages nobody reads; what comes then answers nothing.
    socket.on_datagrams = [this] {
        if (!greeting_ && !use_.comm.busy()) {
            use_.outgoing_sock.discard_input();
        }
    };
    const Raised greeting(greeting_);
    socket.send(bytes_of(server_call));
    bool answered = false;
    platform::wait_until(use_.ports.waiting, use_.ports.clock, answer_seconds, [&] {
        if (given_up()) {
            return true;
        }
        while (const auto datagram = socket.take_datagram()) {
            answered = answered || says(datagram->bytes, server_answer);
        }
        return answered;
    });
    return {.answered = answered};
}

void RemoteClient::connected_to(const std::string& server) {
    use_.ports.dialogs.message_box(
        {.text = "Succesful connection to remote IP address " + server, .icon = platform::Icon::information});
    use_.state.link_title_suffix = server + " -> ";
    use_.main_form.set_caption(use_.state.link_title_suffix + plain_caption);
}

void RemoteClient::not_connected(const std::string& server, const Greeting& greeting) {
    if (greeting.fault.empty()) {
        use_.ports.dialogs.message_box(
            {.text = "Unable to connect to remote IP address " + server,
             .icon = platform::Icon::warning,
             .details = "No console there has answered. Start the server on it (Tools, Remote Setup, Start server), "
                        "check the address, and see that no firewall between the two machines stops the datagrams. A "
                        "server that is serving another console does not answer."});
    } else {
        use_.ports.dialogs.message_box({.text = greeting.fault, .icon = platform::Icon::warning});
    }
    back_to_local();
}

void RemoteClient::halt() {
    ++attempt_;
    use_.state.remote_connecting = false;
    back_to_local();
}

void RemoteClient::back_to_local() {
    use_.state.remote_server_ip.clear();
    use_.state.link_title_suffix.clear();
    use_.state.drop_view_requests(); // a view asked for meanwhile was meant to show the far controller
    use_.state.comm_ready = false;   // the next view opens the serial port
    use_.comm.link_changed();
    use_.main_form.set_caption(plain_caption);
    offer_start(true);
}

void RemoteClient::offer_start(bool offered) {
    use_.start_server.set_enabled(offered);
    use_.start_client.set_enabled(offered);
    use_.halt_client.set_enabled(!offered);
}

} // namespace ecu::link
