#include "link/ecu_comm.h"

#include "link/frm_dialog.h"
#include "link/frm_retries.h"
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
    const Request frame = build_request(message);
    const int wanted_count = expected_length + static_cast<int>(checksum_size);
    const std::string server = state_.remote_server_ip;
    std::size_t last_count = 0;
    for (int tries = 0; tries < tries_before_dialog;) {
        ports_.waiting.process_events();
        state_.reply_accepted = false;
        count_bytes(state_.tx_byte_count, frame.size());
        write_and_wait(frame, wanted_count);
        last_count = receive_count();
        count_bytes(state_.rx_byte_count, last_count);
        // Set here once more, because a transaction inside the waits leaves its own outcome in the shared flag.
        state_.reply_accepted = receive_ecu_reply();
        if (state_.reply_accepted) {
            return Outcome::accepted;
        }
        if (state_.remote_server_ip != server) {
            return Outcome::unanswered; // the user has turned to another link meanwhile; this message was not for it
        }
        if (++tries >= first_try_shown) {
            retries_.write_retries(std::to_string(tries));
            ports_.waiting.process_events();
        }
    }
    state_.failed_frame_text = failed_frame(frame, last_count);
    if (!state_.demo_mode) {
        ask_after_failure();
    }
    return Outcome::unanswered;
}

// What came too late for an earlier message must not stand before this one's reply.
void EcuComm::drain_input() {
    if (!remote()) {
        comm1_.discard_input();
        return;
    }
    outgoing_sock_.discard_input();
}

void EcuComm::write_and_wait(const Request& frame, int wanted_count) {
    const bool over_network = remote();
    if (over_network) {
        // The far end is told how many bytes to wait for.
        std::array<std::uint8_t, 1 + request_size> datagram{static_cast<std::uint8_t>(wanted_count)};
        std::ranges::copy(frame, datagram.begin() + 1);
        outgoing_sock_.send(datagram);
    } else {
        comm1_.write(frame);
    }
    // A count that has overshot never becomes equal; its wait runs out.
    platform::wait_until(ports_.waiting, ports_.clock, over_network ? remote_timeout : serial_timeout,
                         [&] { return receive_count() == static_cast<std::size_t>(wanted_count); });
}

std::size_t EcuComm::receive_count() const { return remote() ? outgoing_sock_.available() : comm1_.available(); }

// Whether a decoder accepted the reply. A frame that fails a check is dropped without a word; the sender tries again.
bool EcuComm::receive_ecu_reply() {
    if (remote()) {
        state_.remote_answering = false;
    }
    bool accepted = false;
    if (const std::size_t count = receive_count(); count > 0) {
        state_.last_activity_time = ports_.now();
        const std::vector<std::uint8_t> received = remote() ? outgoing_sock_.read(count) : comm1_.read(count);
        if (remote() && count > 1) {
            state_.remote_answering = true;
        }
        Reply reply{};
        std::copy_n(received.begin(), std::min(received.size(), reply.size()), reply.begin());
        const ReplyCheck check = check_reply(reply, received.size());
        if (check.fault != FrameFault::none) {
            return false;
        }
        accepted = offer_to_decoders(reply, check.payload_count);
        note_reply_interval();
    }
    watch_activity();
    return accepted;
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

// The message is lost whatever the answer: one that is polled comes again by itself.
void EcuComm::ask_after_failure() {
    std::string_view text = "Communications has failed, Run Demo mode?";
    if (remote()) {
        text = state_.remote_answering ? "Communications has failed, Remote server IS responding, ECU hardware is NOT."
                                       : "Communications has failed, Remote server IS NOT responding";
    }
    const std::string_view reason =
        remote() || comm1_.is_open()
            ? ""
            : "The device of the serial port is gone. Plug it in again, then choose Try Again.";
    switch (dialog_.ask(text, {"Try Again", "Demo", "Abort", "Terminate"}, reason).value_or(0)) {
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
