// The message transaction: the only way to the controller. A request is 8 bytes; the reply's exact byte count is
// awaited while events are handled, checked, and offered to the decoders in order; ten tries, then the failure dialog.
// The caller learns of success only through SharedState::reply_accepted and what the decoders stored.
#pragma once

#include "link/frame.h"
#include "link/shared_state.h"
#include "platform/form.h"
#include "platform/ports.h"

#include <array>
#include <cstdint>
#include <functional>
#include <utility>
#include <vector>

namespace ecu::link {

// Command byte and up to three argument bytes; positions not supplied travel as the ASCII digit "0".
using Message = std::vector<std::uint8_t>;
// Called with the reply and its payload_count, the frame's length without the two checksum bytes.
using Decoder = std::function<void(const Reply& reply, int payload_count)>;

// What became of a message: a decoder took its reply; ten tries went without; it was never let through.
enum class Outcome : std::uint8_t { accepted, unanswered, not_sent };

struct FrmDialog;
struct FrmRetries;

class EcuComm {
public:
    // `group_delay` is the monitor's label of the mean reply interval.
    EcuComm(const platform::Ports& ports, SharedState& state, platform::SerialPort& comm1,
            platform::DatagramSocket& outgoing_sock, FrmDialog& dialog, FrmRetries& retries,
            platform::Label& group_delay);

    void set_decoders(std::array<Decoder, 3> decoders) { decoders_ = std::move(decoders); }

    // `expected_length` is the reply's length without its checksum bytes. Not sent in demo mode, after "Abort", and
    // before the link is open. May be called again from an event handled inside its own waits; the 16th of such a pile
    // of messages is dropped. SharedState::reply_accepted tells the same as the result: true for `accepted`.
    [[nodiscard]] Outcome send_ecu_message(const Message& message, int expected_length);
    // For what only its stored reply is wanted of, and what is asked again by itself.
    void poll(const Message& message, int expected_length) {
        static_cast<void>(send_ecu_message(message, expected_length));
    }
    // True while a transaction runs, also for an event handled inside its waits.
    bool busy() const { return depth_ > 0; }

private:
    bool remote() const { return !state_.remote_server_ip.empty(); }
    std::size_t receive_count() const;
    void drain_input();
    void write_and_wait(const Request& frame, int wanted_count);
    bool receive_ecu_reply();
    bool offer_to_decoders(const Reply& reply, int payload_count);
    void note_reply_interval();
    void watch_activity();
    void ask_after_failure();

    const platform::Ports& ports_;
    SharedState& state_;
    platform::SerialPort& comm1_;
    platform::DatagramSocket& outgoing_sock_;
    FrmDialog& dialog_;
    FrmRetries& retries_;
    platform::Label& group_delay_;
    std::array<Decoder, 3> decoders_;
    int depth_ = 0;
};

} // namespace ecu::link
