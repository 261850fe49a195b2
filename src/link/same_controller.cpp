#include "link/same_controller.h"

namespace ecu::link {

namespace {

constexpr std::uint8_t firmware_revision = 'R';
constexpr int firmware_reply = 5;
constexpr std::uint8_t serial_number = '-';
constexpr int serial_reply = 6;
constexpr int openings_asked = 3; // a port that comes and goes while it is asked is no port

} // namespace

SameController::SameController(EcuComm& comm, SharedState& state)
    : comm_(comm), state_(state), held_before_(comm.hold_to(comm.this_opening())), known_(state.identity) {}

SameController::~SameController() { comm_.hold_to(held_before_); }

Outcome SameController::send(const Message& message, int expected_length) {
    for (int again = 0; again < openings_asked && !lost(); ++again) {
        const Outcome outcome = comm_.send_ecu_message(message, expected_length);
        if (!comm_.opened_anew()) {
            known_ = state_.identity; // R or - may have been among the messages
            return outcome;
        }
        if (!confirm()) {
            break;
        }
    }
    if (!lost()) {
        trouble_ = "the port was lost again and again";
    }
    state_.reply_accepted = false;
    return Outcome::not_sent;
}

bool SameController::confirm() {
    comm_.hold_to(comm_.this_opening()); // with it went what was known of who answers
    comm_.poll({firmware_revision}, firmware_reply);
    comm_.poll({serial_number}, serial_reply);
    const ControllerIdentity& now = state_.identity;
    if (comm_.opened_anew()) {
        trouble_ = "the port was lost, and lost again while the controller was asked who it is";
    } else if (!now.firmware || !now.serial) {
        trouble_ = "the port was lost, and the controller behind it did not tell who it is";
    } else if ((known_.serial && known_.serial != now.serial) || (known_.firmware && known_.firmware != now.firmware)) {
        trouble_ = "the port was lost, and another controller answers there now, serial number " +
                   std::to_string(*now.serial) +
                   (known_.serial ? " in place of " + std::to_string(*known_.serial) : "");
    } else if (!known_.serial || !known_.firmware) {
        trouble_ = "the port was lost, and what answers there now cannot be shown to be the same controller, since "
                   "its serial number was not known before";
    }
    return trouble_.empty();
}

} // namespace ecu::link
