#include "link/ecu_comm.h"

#include "link/answers.h"
#include "link/frm_dialog.h"
#include "link/frm_retries.h"
#include "link/remote_link.h"
#include "platform/display_mask.h"

#include <algorithm>
#include <limits>

namespace ecu::link {

namespace {

constexpr int tries_before_dialog = 10;
constexpr int first_try_shown = 3;
constexpr int deepest_nesting = 16;
constexpr float serial_timeout = 0.1F;
constexpr float remote_timeout = 1.0F;
constexpr float quiet_link_seconds = 2.0F;
constexpr float widest_interval_shown = 9999.9F; // ms

// Both counters, held at the top of their range.
void count_bytes(std::array<std::int32_t, 2>& counters, std::size_t bytes) {
    for (std::int32_t& counter : counters) {
        const std::size_t room = static_cast<std::size_t>(std::numeric_limits<std::int32_t>::max() - counter);
        counter += static_cast<std::int32_t>(std::min(bytes, room));
    }
}

std::string failed_frame(const Request& frame, std::size_t last_count) {
    constexpr std::string_view digits = "0123456789ABCDEF";
    std::string text = "Buffer = ";
    for (const std::uint8_t byte : frame) {
        text += {digits[byte >> 4], digits[byte & 0xF], ' '};
    }
    return text + "   Cnt = " + std::to_string(last_count);
}

std::string what_arrived(std::size_t bytes, Verdict verdict) {
    const std::string count = std::to_string(bytes) + (bytes == 1 ? " byte" : " bytes");
    switch (verdict) {
    case Verdict::silent:
    case Verdict::accepted:
    case Verdict::given_up:
        return "nothing arrived";
    case Verdict::damaged:
        return "the last brought " + count + " that are no whole reply";
    case Verdict::untaken:
        return "the last brought a reply of another size, " + count;
    case Verdict::foreign:
        return "the last brought the reply of another message";
    }
    return {};
}

// Counts how deep transactions are nested, also when the program is ended out of one.
class Nesting {
public:
    explicit Nesting(int& depth) : depth_(depth) { ++depth_; }
    ~Nesting() { --depth_; }
    Nesting(const Nesting&) = delete;
    Nesting& operator=(const Nesting&) = delete;

private:
    int& depth_;
};

} // namespace

EcuComm::EcuComm(const platform::Ports& ports, SharedState& state, platform::SerialPort& comm1,
                 platform::DatagramSocket& outgoing_sock, FrmDialog& dialog, FrmRetries& retries,
                 platform::Label& group_delay)
    : ports_(ports), state_(state), comm1_(comm1), outgoing_sock_(outgoing_sock), dialog_(dialog), retries_(retries),
      group_delay_(group_delay) {}

// Everything that one transaction works on is on its own stack, so that a transaction started by an event inside
// this one's waits takes bytes from it at worst: both then try again, up to their ten times. A pile of them, as a
// key held down on a dead link makes, is cut off before it can fill the stack.
Outcome EcuComm::send_ecu_message(const Message& message, int expected_length) {
    if (state_.comm_aborted || state_.demo_mode || !state_.comm_ready || depth_ >= deepest_nesting) {
        state_.reply_accepted = false;
        return Outcome::not_sent;
    }
    const Nesting nesting(depth_);
    drain_input();
    const std::string server = state_.remote_server_ip;
    Try now{.frame = build_request(message), .wanted_count = expected_length + static_cast<int>(checksum_size)};
    while (now.number < tries_before_dialog) {
        ports_.waiting.process_events();
        note_opening();
        if (!way_is_clear()) {
            tell(now, {}, Verdict::given_up);
            return Outcome::unanswered;
        }
        state_.reply_accepted = false;
        if (++now.number == 1 && before_sending) {
            before_sending(now.frame);
        }
        count_bytes(state_.tx_byte_count, now.frame.size());
        now.sent_at = ports_.now();
        now.sent_fine = ports_.clock.fine_seconds();
        write(now);
        await_bytes(now, reply_timeout());
        Verdict verdict = take_reply(now);
        if (verdict == Verdict::foreign) {
            verdict = let_line_rest(now);
        }
        // Set here once more, because a transaction inside the waits leaves its own outcome in the shared flag.
        state_.reply_accepted = verdict == Verdict::accepted;
        if (state_.reply_accepted) {
            return Outcome::accepted;
        }
        if (state_.remote_server_ip != server) {
            // The user has turned to another link meanwhile; this message was not for it.
            tell(now, {}, Verdict::given_up);
            return Outcome::unanswered;
        }
        now.last_verdict = verdict;
        if (now.number >= first_try_shown) {
            retries_.write_retries(std::to_string(now.number));
            ports_.waiting.process_events();
        }
    }
    state_.reply_accepted = false;
    state_.failed_frame_text = failed_frame(now.frame, now.last_count);
    tell(now, {}, Verdict::given_up);
    if (!state_.demo_mode) {
        ask_after_failure(now);
    }
    return Outcome::unanswered;
}

// A device that was plugged in again may be another one: what was known of the controller goes.
void EcuComm::note_opening() {
    if (!remote()) {
        comm1_.reopen_lost();
        if (known_opening_ != comm1_.openings()) {
            known_opening_ = comm1_.openings();
            state_.identity = {};
        }
    }
}

// What is asked meanwhile is held to nothing: it finds out who is there.
bool EcuComm::way_is_clear() {
    if (!hold_.confirm || hold_.way == way()) {
        return true;
    }
    Hold held = hold({});
    const std::optional<Way> found = held.confirm();
    const bool clear = found == way();
    if (clear) {
        held.way = *found;
    }
    hold_ = std::move(held);
    return clear;
}

void EcuComm::link_changed() {
    ++breaks_;
    state_.identity = {};
}

// What came too late for an earlier message must not stand before this one's reply.
void EcuComm::drain_input() {
    if (!remote()) {
        comm1_.discard_input();
        return;
    }
    outgoing_sock_.discard_input();
}

void EcuComm::write(const Try& now) {
    if (remote()) {
        // The far end is told how many bytes to wait for.
        std::array<std::uint8_t, 1 + request_size> datagram{static_cast<std::uint8_t>(now.wanted_count)};
        std::ranges::copy(now.frame, datagram.begin() + 1);
        outgoing_sock_.send(datagram);
    } else {
        comm1_.write(now.frame);
    }
}

float EcuComm::reply_timeout() const { return remote() ? remote_timeout : serial_timeout; }

// A count that has overshot never becomes equal; its wait runs out.
void EcuComm::await_bytes(const Try& now, float seconds) {
    platform::wait_until(ports_.waiting, ports_.clock, seconds,
                         [&] { return receive_count() == static_cast<std::size_t>(now.wanted_count); });
}

Verdict EcuComm::take_reply(Try& now) {
    now.last_count = receive_count();
    count_bytes(state_.rx_byte_count, now.last_count);
    return receive_ecu_reply(now);
}

// A frame of another message came in this one's place, so the answer may be on its way behind it, and behind that the
// answers of tries that were thought lost. They have the time of one try to arrive and are received like any other, so
// that the next try meets a line at rest.
Verdict EcuComm::let_line_rest(Try& now) {
    const float start = ports_.now();
    for (;;) {
        const float left = reply_timeout() - ports_.elapsed_since(start);
        if (left <= 0) {
            break;
        }
        await_bytes(now, left);
        if (receive_count() > 0 && take_reply(now) == Verdict::accepted) {
            return Verdict::accepted;
        }
    }
    return Verdict::foreign;
}

std::size_t EcuComm::receive_count() const { return remote() ? outgoing_sock_.available() : comm1_.available(); }

// A frame that fails a check is dropped without a word; the sender tries again.
Verdict EcuComm::receive_ecu_reply(const Try& now) {
    if (remote()) {
        state_.remote_answering = false;
    }
    Verdict verdict = Verdict::silent;
    std::vector<std::uint8_t> received;
    if (const std::size_t count = receive_count(); count > 0) {
        state_.last_activity_time = ports_.now();
        received = remote() ? outgoing_sock_.read(count) : comm1_.read(count);
        if (remote() && count > 1) {
            state_.remote_answering = true;
        }
        Reply reply{};
        std::copy_n(received.begin(), std::min(received.size(), reply.size()), reply.begin());
        const ReplyCheck check = check_reply(reply, received.size());
        if (check.fault != FrameFault::none) {
            if (remote() && says(received, no_reply)) {
                ++breaks_;
            }
            tell(now, received, Verdict::damaged, check.fault);
            return Verdict::damaged;
        }
        const bool taken = offer_to_decoders(reply, check.payload_count);
        verdict = !answers(now.frame, reply) ? Verdict::foreign : taken ? Verdict::accepted : Verdict::untaken;
        note_reply_interval();
    }
    if (remote() && verdict == Verdict::silent) {
        ++breaks_;
    }
    watch_activity();
    tell(now, received, verdict);
    return verdict;
}

// All decoders see every reply; each does nothing for a code that is not its own.
bool EcuComm::offer_to_decoders(const Reply& reply, int payload_count) {
    bool accepted = false;
    for (const Decoder& decode : decoders_) {
        ports_.waiting.process_events();
        state_.reply_accepted = false;
        if (decode) {
            decode(reply, payload_count);
        }
        accepted = accepted || state_.reply_accepted;
    }
    return accepted;
}

void EcuComm::note_reply_interval() {
    const float now = ports_.now();
    const float interval = std::max(0.0F, platform::elapsed_between(state_.last_reply_time, now));
    state_.last_reply_time = now;
    auto& intervals = state_.reply_intervals;
    float sum = 0;
    for (std::size_t i = 0; i + 1 < intervals.size(); ++i) {
        intervals[i] = intervals[i + 1];
        sum += intervals[i];
    }
    intervals.back() = interval;
    if (state_.current_view == View::monitor) {
        float mean_ms = (sum + interval) / static_cast<float>(intervals.size()) * 1000;
        if (mean_ms >= 10000) {
            mean_ms = widest_interval_shown;
        }
        group_delay_.set_text(platform::masked(mean_ms, "###0.0"));
    }
}

// A quiet link restarts its own watch; it raises nothing and must stay that harmless.
void EcuComm::watch_activity() {
    float elapsed = ports_.elapsed_since(state_.last_activity_time);
    if (state_.demo_mode || state_.reset_comm_watch) {
        elapsed = 0;
        state_.reset_comm_watch = false;
    }
    ports_.waiting.process_events();
    if (elapsed > quiet_link_seconds) {
        state_.last_activity_time = ports_.now();
        ports_.waiting.process_events();
    }
}

Observation EcuComm::observe(Observer observer) {
    std::erase_if(observers_, [](const auto& gone) { return gone.expired(); });
    auto observation = std::make_shared<const Observer>(std::move(observer));
    observers_.push_back(observation);
    return observation;
}

void EcuComm::tell(const Try& now, std::span<const std::uint8_t> reply, Verdict verdict, FrameFault fault) const {
    if (observers_.empty()) {
        return;
    }
    const Observed observed{.request = now.frame,
                            .reply = reply,
                            .verdict = verdict,
                            .fault = fault,
                            .sent_at = now.sent_at,
                            .seconds = static_cast<float>(ports_.clock.fine_seconds() - now.sent_fine),
                            .tries = now.number,
                            .depth = depth_};
    // By index and held: an observer may begin or end an observation.
    for (std::size_t i = 0; i < observers_.size(); ++i) {
        if (const Observation observer = observers_[i].lock()) {
            (*observer)(observed);
        }
    }
}

// What is known of a link that does not answer, for the tuner who has to find the fault.
std::string EcuComm::failure_details(const Try& last) const {
    const std::string tries = std::to_string(last.number) + " tries, ";
    const std::string demo = "\nDemo shows made-up values; it lasts until the program is started anew.";
    if (remote()) {
        return "Server " + state_.remote_server_ip + ": " + tries + what_arrived(last.last_count, last.last_verdict) +
               (state_.remote_answering ? ".\nCheck the controller's power and its cable at the server."
                                        : ".\nCheck the network, and that the server still runs there. It may serve "
                                          "another console now: its window tells whom.") +
               demo;
    }
    const std::string device = comm1_.device_of(state_.comm_port_number);
    const std::string port =
        "COM" + std::to_string(state_.comm_port_number) + (device.empty() ? "" : " (" + device + ")");
    if (!comm1_.is_open()) {
        return "The device of the serial port is gone. Plug it in again, then choose Try Again.\n" + port + demo;
    }
    return port + ", " + std::to_string(controller_baud) + " baud: " + tries +
           what_arrived(last.last_count, last.last_verdict) +
           ".\nCheck the controller's power, the cable, and that this is the port it is plugged into." + demo;
}

// The message is lost whatever the answer: one that is polled comes again by itself.
void EcuComm::ask_after_failure(const Try& last) {
    std::string_view text = "Communications has failed, Run Demo mode?";
    if (remote()) {
        text = state_.remote_answering ? "Communications has failed, Remote server IS responding, ECU hardware is NOT."
                                       : "Communications has failed, Remote server IS NOT responding";
    }
    switch (dialog_.ask(text, {"Try Again", "Demo", "Abort", "Terminate"}, failure_details(last)).value_or(0)) {
    case 1:
        state_.demo_mode = true;
        break;
    case 2:
        state_.comm_aborted = true;
        break;
    case 3:
        ports_.program.end(0);
    }
}

} // namespace ecu::link
