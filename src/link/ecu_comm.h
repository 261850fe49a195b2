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

struct FrmDialog;
struct FrmRetries;

class EcuComm {
public:
    // `group_delay` is the monitor's label of the mean reply interval.
    EcuComm(const platform::Ports& ports, SharedState& state, platform::SerialPort& comm1,
            platform::DatagramSocket& outgoing_sock, FrmDialog& dialog, FrmRetries& retries,
            platform::Label& group_delay);

    void set_decoders(std::array<Decoder, 3> decoders) { decoders_ = std::move(decoders); }

    // `expected_length` is the reply's length without its checksum bytes; it is raised by 2 once the message is
    // let through, and stays raised for the caller. Returns at once in demo mode, after "Abort", and before the
    // link is open. Success is SharedState::reply_accepted. May be called again from an event handled inside its
    // own waits; the 16th of such a pile of messages is dropped.
    void send_ecu_message(const Message& message, std::int16_t& expected_length);
    void send_ecu_message(const Message& message, int expected_length) {
        auto length = static_cast<std::int16_t>(expected_length);
        send_ecu_message(message, length);
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
