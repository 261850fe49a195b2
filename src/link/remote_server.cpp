#include "link/remote_server.h"

#include "link/frm_dialog.h"

#include <algorithm>
#include <limits>
#include <utility>

namespace ecu::link {

namespace {

constexpr std::size_t most_waiting = 16;
constexpr std::size_t clients_remembered = 16;
constexpr float oldest_written = 1.0F; // seconds: whoever asked before that has given up, or asked again
constexpr float standstill = 2.0F;     // without a tick of the timer that comes each second
constexpr float reply_timeout = 0.1F;
constexpr std::size_t shortest_passed = 3;
constexpr int seconds_until_inactive = 5;
constexpr int look_again_ms = 5;
constexpr const char* inactive = "INACTIVE";

// Sets a flag and puts back what it was.
struct Kept {
    explicit Kept(bool& flag) : flag_(flag), was_(std::exchange(flag, true)) {}
    ~Kept() { flag_ = was_; }
    Kept(const Kept&) = delete;
    Kept& operator=(const Kept&) = delete;

private:
    bool& flag_;
    bool was_;
};

// A label that stays as it is makes nobody repaint it.
void show(platform::Label& label, const std::string& text) {
    if (label.text() != text) {
        label.set_text(text);
    }
}

std::string joined(const std::vector<platform::Ipv4>& addresses, const char* between) {
    std::string text;
    for (const platform::Ipv4 address : addresses) {
        text += (text.empty() ? "" : between) + platform::dotted(address);
    }
    return text;
}

} // namespace

RemoteServer::RemoteServer(const Use& use) : use_(use), again_(use.ports.timers.make_timer(look_again_ms)) {
    use_.form.form.on_activate = [this] { activate(); };
    use_.form.form.on_unload = [this] { stop(); };
    use_.form.server_cancel.clicked = [this] { use_.form.form.unload(); };
    use_.form.Timer1->on_tick = [this] { second_passed(); };
    again_->on_tick = [this] {
        if (!line_is_taken()) {
            again_->set_running(false);
            serve_waiting();
        }
    };
}

void RemoteServer::start() {
    if (use_.state.demo_mode) {
        use_.ports.dialogs.say("This program is running in demo mode, so this feature cannot be executed.");
        return;
    }
    auto [settings, fault] = read_remote_settings(use_.ports.environment);
    settings_ = settings;
    if (fault.empty()) {
        const auto bound = use_.incomming_sock.bind(settings_.bind_address, settings_.server_port);
        fault = bound.fault == platform::BindFault::none ? "" : bind_refusal(bound, settings_, settings_.server_port);
    }
    if (!fault.empty()) {
        use_.ports.dialogs.message_box({.text = fault, .icon = platform::Icon::warning});
        return;
    }
    ++session_;
    open_ = true;
    alive_at_ = use_.ports.now();
    use_.form.sock_byte_count = use_.form.comm_byte_count = 0;
    use_.form.refused_count.fill(0);
    use_.form.idle_seconds = 0;
    use_.incomming_sock.on_datagrams = [this] { take_arrived(); };
    use_.main_form.hide();
    use_.form.form.show();
    if (use_.comm1.is_open()) {
        use_.comm1.close();
        use_.state.link_title_suffix.clear();
        use_.main_form.set_caption("ECU System Console");
    }
    use_.state.comm_ready = false;
    use_.form.Timer1->set_running(true);
    show_counts();
    show_refused();
    show_state();
}

void RemoteServer::activate() {
    show(use_.form.Client_IP, inactive);
    use_.link_selection.open_comm_link();
    show_state();
}

void RemoteServer::stop() {
    ++session_;
    open_ = false;
    served_.reset();
    waiting_.clear();
    again_->set_running(false);
    use_.form.Timer1->set_running(false);
    use_.incomming_sock.close();
    use_.main_form.show();
}

void RemoteServer::count(std::int32_t& counter, std::size_t more) {
    const auto room = static_cast<std::size_t>(std::numeric_limits<std::int32_t>::max() - counter);
    counter += static_cast<std::int32_t>(std::min(more, room));
}

// What the system has kept while this program stood still, suspended or held by something else, has been given up by
// whoever sent it.
void RemoteServer::drop_what_a_standstill_kept() {
    if (use_.ports.elapsed_since(alive_at_) > standstill) {
        while (const auto datagram = use_.incomming_sock.take_datagram()) {
            refuse(Refusal::too_late);
        }
        use_.incomming_sock.discard_input();
        for (; !waiting_.empty(); waiting_.pop_front()) {
            refuse(Refusal::too_late);
        }
    }
    alive_at_ = use_.ports.now();
}

void RemoteServer::take_arrived() {
    drop_what_a_standstill_kept();
    while (const auto datagram = use_.incomming_sock.take_datagram()) {
        process_server_incomming_packet(*datagram);
    }
    if (!waiting_.empty()) {
        serve_soon();
    }
}

void RemoteServer::process_server_incomming_packet(const platform::Datagram& server_packet) {
    count(use_.form.sock_byte_count, server_packet.bytes.size());
    if (const auto refusal = refusal_of(server_packet)) {
        refuse(*refusal);
        return;
    }
    use_.form.idle_seconds = 0;
    served_ = server_packet.from;
    if (says(server_packet.bytes, server_call)) {
        use_.incomming_sock.send_to(server_packet.from, bytes_of(server_answer));
        note_opening_for(server_packet.from);
        show(use_.form.Client_IP, platform::dotted(server_packet.from.address));
        show_counts();
    } else if (waiting_.size() < most_waiting) {
        waiting_.push_back({server_packet, use_.ports.now()});
    } else {
        refuse(Refusal::too_many);
    }
}

// Without a list the first to ask is served; it need not greet, for it may have been served before this start.
std::optional<Refusal> RemoteServer::refusal_of(const platform::Datagram& packet) const {
    if (packet.from.port == settings_.server_port) {
        return Refusal::server_port;
    }
    if (!settings_.allowed.empty() && std::ranges::count(settings_.allowed, packet.from.address) == 0) {
        return Refusal::not_allowed;
    }
    if (!says(packet.bytes, server_call) && !carries_a_request(packet.bytes)) {
        return Refusal::no_request;
    }
    if (settings_.allowed.empty() && served_ && *served_ != packet.from) {
        return Refusal::another_served;
    }
    return std::nullopt;
}

// Never inside the socket's own delivery: the exchange lets events through, and datagrams are among them.
void RemoteServer::serve_soon() {
    if (!called_ && !serving_) {
        called_ = true;
        use_.ports.timers.post([this] {
            called_ = false;
            serve_waiting();
        });
    }
}

// The console's own messages go down the same line: the first tick's question for the scales above all. While one of
// them only waits for the user's answer to its failure, the line is free.
bool RemoteServer::line_is_taken() const { return use_.comm.busy() && !use_.dialog.form.visible(); }

bool RemoteServer::may_write() const {
    return use_.state.comm_ready && !use_.state.demo_mode && !use_.state.comm_aborted;
}

// Behind a port that was lost and is back another controller may stand, of which the client knows nothing. It learns of
// it by one frame without an answer, as when the server itself was gone: who must not mix two controllers asks then.
bool RemoteServer::meets_a_new_opening(const platform::Peer& client) {
    use_.comm1.reopen_lost();
    const auto last = std::ranges::find(last_opening_, client, [](const auto& entry) { return entry.first; });
    const bool other = last != last_opening_.end() && use_.comm1.is_open() && last->second != use_.comm1.openings();
    note_opening_for(client);
    return other;
}

void RemoteServer::note_opening_for(const platform::Peer& client) {
    if (!use_.comm1.is_open()) {
        return;
    }
    std::erase_if(last_opening_, [&](const auto& entry) { return entry.first == client; });
    last_opening_.emplace_back(client, use_.comm1.openings());
    if (last_opening_.size() > clients_remembered) {
        last_opening_.pop_front();
    }
}

void RemoteServer::serve_waiting() {
    if (serving_) {
        return; // an event inside the exchange under way, which goes on with whatever waits
    }
    const Kept serving(serving_);
    while (open_ && !waiting_.empty()) {
        if (line_is_taken()) {
            again_->set_running(true);
            return;
        }
        const Asked asked = std::move(waiting_.front());
        waiting_.pop_front();
        if (use_.ports.elapsed_since(asked.when) > oldest_written) {
            refuse(Refusal::too_late);
        } else if (may_write() && meets_a_new_opening(asked.packet.from)) {
            refuse(Refusal::opened_anew);
        } else {
            pass_on(asked);
        }
    }
}

void RemoteServer::pass_on(const Asked& asked) {
    const int session = session_;
    const std::size_t wanted = asked.packet.bytes.front();
    std::vector<std::uint8_t> reply;
    if (may_write()) {
        const Kept paused(use_.state.polling_paused); // no tick's message into the middle of this one
        use_.comm1.discard_input();                   // an earlier request's late reply is not this one's
        use_.comm1.write(std::span(asked.packet.bytes).subspan(1));
        // So few bytes are never a reply: the controller is then given the time that it may take.
        platform::wait_until(use_.ports.waiting, use_.ports.clock, reply_timeout,
                             [&] { return wanted >= shortest_passed && use_.comm1.available() == wanted; });
        reply = use_.comm1.read_all();
    }
    if (session != session_) {
        return; // cancelled meanwhile
    }
    count(use_.form.comm_byte_count, reply.size());
    use_.incomming_sock.send_to(
        asked.packet.from, reply.size() < shortest_passed ? bytes_of(no_reply) : std::span<const std::uint8_t>(reply));
    show(use_.form.Client_IP, platform::dotted(asked.packet.from.address));
    show_counts();
}

void RemoteServer::second_passed() {
    drop_what_a_standstill_kept();
    use_.form.idle_seconds = static_cast<std::int16_t>(std::min(use_.form.idle_seconds + 1, 32767));
    if (use_.form.idle_seconds > seconds_until_inactive) {
        served_.reset(); // the next to ask may be another one
        show(use_.form.Client_IP, inactive);
    }
    show_counts();
    show_refused();
    show_state();
}

void RemoteServer::show_counts() {
    show(use_.form.num_sock_bytes, std::to_string(use_.form.sock_byte_count));
    show(use_.form.num_comm_bytes, std::to_string(use_.form.comm_byte_count));
}

// With the seconds: a flood must not keep the screen busy.
void RemoteServer::show_refused() {
    std::int32_t total = 0;
    for (std::size_t i = 0; i < refusal_kinds; ++i) {
        const std::int32_t number = use_.form.refused_count[i];
        count(total, static_cast<std::size_t>(number));
        show(use_.form.refused[i], std::to_string(number));
    }
    show(use_.form.num_refused, std::to_string(total));
}

void RemoteServer::show_state() {
    const std::string port = std::to_string(settings_.server_port);
    const auto addresses =
        settings_.bind_address ? std::vector{*settings_.bind_address} : use_.incomming_sock.local_addresses();
    show(use_.form.server_address, addresses.empty() ? "No network" : joined(addresses, " or "));
    show(use_.form.server_serial, serial_state());
    show(use_.form.server_allowed, settings_.allowed.empty()
                                       ? "Whoever asks first, until it has been idle for 6 seconds"
                                       : "Only " + joined(settings_.allowed, ", "));
    show(use_.form.server_warning,
         "Whoever reaches port " + port +
             " of this machine can write to the engine. Nothing is encrypted and nobody is asked for a password. Serve "
             "on a network of your own only, or through a tunnel that carries UDP, such as a VPN; ECU_REMOTE_ALLOW "
             "names the addresses that may ask.");
}

std::string RemoteServer::serial_state() const {
    const int number = use_.state.comm_port_number;
    const std::string port = "COM" + std::to_string(number);
    const std::string device = use_.comm1.device_of(number);
    const std::string named = device.empty() ? port : port + " (" + device + ")";
    if (use_.state.demo_mode) {
        return "Demo mode: nothing is passed on. Start the console again";
    }
    if (use_.state.comm_aborted) {
        return "Aborted: nothing is passed on. Cancel, and start the server again";
    }
    return use_.comm1.is_open() ? named + " is open" : named + " is closed. Plug the cable in";
}

} // namespace ecu::link
