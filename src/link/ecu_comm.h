// The message transaction: the only way to the controller. A request is 8 bytes; the reply's exact byte count is
// awaited while events are handled, checked, and offered to the decoders in order; ten tries, then the failure dialog.
// The decoders see every good frame; a try is answered only by one of its own request (answers.h). After a foreign
// frame the line is let come to rest before the next try, so that no reply stays one behind its request.
#pragma once

#include "link/frame.h"
#include "link/observation.h"
#include "link/shared_state.h"
#include "platform/form.h"
#include "platform/ports.h"

#include <array>
#include <cstdint>
#include <functional>
#include <optional>
#include <utility>
#include <vector>

namespace ecu::link {

// Command byte and up to three argument bytes; positions not supplied travel as the ASCII digit "0".
using Message = std::vector<std::uint8_t>;
// Called with the reply and its payload_count, the frame's length without the two checksum bytes.
using Decoder = std::function<void(const Reply& reply, int payload_count)>;

inline constexpr int controller_baud = 38400;

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

    // From now on every frame that passes is told to `observer`, for as long as the result is held.
    [[nodiscard]] Observation observe(Observer observer);
    // Told of each message's request just before its first try goes out, for the journal, which must know of a write
    // that nothing answers any more. Lets no events through; may be empty.
    std::function<void(const Request&)> before_sending;

    // A sequence for one controller only (same_controller.h). As long as the way to it is unbroken nothing is asked.
    // Once it was broken, by a port opened anew or by a server that had no answer, no try of any message goes out
    // before `confirm` has found the same controller: it returns the way that it found it by. Else the message ends
    // unanswered, without its dialog. Returns what was held before.
    using Way = std::uint32_t;
    struct Hold {
        Way way = 0;
        std::function<std::optional<Way>()> confirm; // may send; empty: nothing is held
    };
    Hold hold(Hold hold) { return std::exchange(hold_, std::move(hold)); }
    // Another number for each time that somebody else may have come to answer.
    Way way() const { return comm1_.openings() + breaks_; }
    bool remote() const { return !state_.remote_server_ip.empty(); }
    // From now on messages go to another link.
    void link_changed();
    // The device of the serial port went away, and nothing has been sent since.
    bool port_gone() const { return !remote() && !comm1_.is_open(); }

private:
    // One message on its way, on the stack of its call.
    struct Try {
        Request frame;
        int wanted_count = 0;
        int number = 0;
        float sent_at = 0;
        double sent_fine = 0; // by the clock that measures
        std::size_t last_count = 0;
        Verdict last_verdict = Verdict::silent;
    };

    std::size_t receive_count() const;
    void drain_input();
    void write(const Try& now);
    void await_bytes(const Try& now, float seconds);
    float reply_timeout() const;
    Verdict take_reply(Try& now);
    Verdict let_line_rest(Try& now);
    Verdict receive_ecu_reply(const Try& now);
    bool offer_to_decoders(const Reply& reply, int payload_count);
    void note_opening();
    bool way_is_clear();
    void tell(const Try& now, std::span<const std::uint8_t> reply, Verdict verdict, FrameFault fault = {}) const;
    void note_reply_interval();
    void watch_activity();
    std::string failure_details(const Try& last) const;
    void ask_after_failure(const Try& last);

    const platform::Ports& ports_;
    SharedState& state_;
    platform::SerialPort& comm1_;
    platform::DatagramSocket& outgoing_sock_;
    FrmDialog& dialog_;
    FrmRetries& retries_;
    platform::Label& group_delay_;
    std::array<Decoder, 3> decoders_;
    std::vector<std::weak_ptr<const Observer>> observers_;
    Hold hold_;
    Way breaks_ = 0;                  // tries over the remote link that neither the server nor the controller answered
    std::uint32_t known_opening_ = 0; // of SharedState::identity
    int depth_ = 0;
};

} // namespace ecu::link
