#include "link/same_controller.h"

#include <utility>

namespace ecu::link {

namespace {

constexpr std::uint8_t firmware_revision = 'R';
constexpr int firmware_reply = 5;
constexpr std::uint8_t serial_number = '-';
constexpr int serial_reply = 6;
constexpr int most_questions = 3; // a way that breaks again each time that it is asked is no way

} // namespace

SameController::SameController(EcuComm& comm, SharedState& state)
    : comm_(comm), state_(state), held_before_(comm.hold({comm.way(), [this] { return confirm(); }})),
      known_(state.identity) {}

SameController::~SameController() { comm_.hold(std::move(held_before_)); }

// Through a server every datagram may be lost, and with it the sign that somebody else has come to answer. So the
// first sequence of a client asks who is there before it begins; from then on it is known.
Outcome SameController::get_to_know() {
    const bool unknown = !known_.firmware || !known_.serial;
    if (std::exchange(begun_, true) || !comm_.remote() || !unknown) {
        return Outcome::accepted;
    }
    EcuComm::Hold held = comm_.hold({});
    const Outcome outcome = comm_.send_ecu_message({firmware_revision}, firmware_reply);
    if (outcome == Outcome::accepted) {
        comm_.poll({serial_number}, serial_reply);
    }
    held.way = comm_.way();
    comm_.hold(std::move(held));
    known_ = state_.identity;
    return outcome;
}

Outcome SameController::send(const Message& message, int expected_length) {
    if (const Outcome outcome = get_to_know(); outcome != Outcome::accepted) {
        return outcome;
    }
    if (!lost()) {
        const Outcome outcome = comm_.send_ecu_message(message, expected_length);
        if (!lost()) {
            known_ = state_.identity; // R or - may have been among the messages
            return outcome;
        }
    }
    state_.reply_accepted = false;
    return Outcome::not_sent;
}

std::optional<EcuComm::Way> SameController::confirm() {
    if (lost()) {
        return std::nullopt;
    }
    const auto way = ask_who();
    const ControllerIdentity& now = state_.identity;
    const std::string broken = comm_.remote() ? "the server did not answer for a while" : "the port was lost";
    if (!way) {
        trouble_ = broken + ", and the controller behind it did not tell who it is";
    } else if ((known_.serial && known_.serial != now.serial) || (known_.firmware && known_.firmware != now.firmware)) {
        trouble_ = broken + ", and another controller answers there now, serial number " + std::to_string(*now.serial) +
                   (known_.serial ? " in place of " + std::to_string(*known_.serial) : "");
    } else if (!known_.serial || !known_.firmware) {
        trouble_ = broken + ", and what answers there now cannot be shown to be the same controller, since its serial "
                            "number was not known before";
    }
    return lost() ? std::nullopt : way;
}

// The way that both answers came by.
std::optional<EcuComm::Way> SameController::ask_who() {
    for (int asked = 0; asked < most_questions; ++asked) {
        state_.identity = {};
        if (comm_.send_ecu_message({firmware_revision}, firmware_reply) == Outcome::not_sent) {
            return std::nullopt;
        }
        const EcuComm::Way way = comm_.way();
        if (state_.identity.firmware && comm_.send_ecu_message({serial_number}, serial_reply) == Outcome::accepted &&
            state_.identity.serial && comm_.way() == way) {
            return way;
        }
    }
    return std::nullopt;
}

} // namespace ecu::link
