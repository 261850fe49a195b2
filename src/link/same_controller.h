// For a sequence of messages that must reach one controller, or be read from one: a transfer, the walk of an Update.
// A port that was lost and is back may have another engine behind it. From then on nothing more of the sequence goes
// out until revision and serial number, asked anew, are those that were known before. As long as the port stays open
// there is no message more and nothing is asked.
#pragma once

#include "link/ecu_comm.h"

namespace ecu::link {

class SameController {
public:
    // From now on messages go out through this opening of the port only.
    SameController(EcuComm& comm, SharedState& state);
    ~SameController();
    SameController(const SameController&) = delete;
    SameController& operator=(const SameController&) = delete;

    // EcuComm's, and where the port was lost on the way: the question who answers, and the message once more.
    // `not_sent` for good once another controller answers, or one that can't be told from another.
    Outcome send(const Message& message, int expected_length);

    bool lost() const { return !trouble_.empty(); }
    // What happened, as a sentence; empty while all is well.
    const std::string& trouble() const { return trouble_; }

private:
    bool confirm();

    EcuComm& comm_;
    SharedState& state_;
    EcuComm::Opening held_before_;
    ControllerIdentity known_; // as it told through the opening that is held to
    std::string trouble_;
};

} // namespace ecu::link
