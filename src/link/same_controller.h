// For a sequence of messages that must reach one controller, or be read from one: a transfer, the walk of an Update.
// A port that was lost and is back may have another engine behind it, and so may a server that had no answer. From
// then on nothing more of the sequence goes out until revision and serial number, asked anew, are those that were known
// before. As long as every message is answered nothing is asked; but a client that does not know yet who is behind its
// server asks that once, before its first sequence.
#pragma once

#include "link/ecu_comm.h"

namespace ecu::link {

class SameController {
public:
    // From now on messages go out only to the controller that is there now.
    SameController(EcuComm& comm, SharedState& state);
    ~SameController();
    SameController(const SameController&) = delete;
    SameController& operator=(const SameController&) = delete;

    // EcuComm's, and where the way was broken, before its next try, the question who answers. `not_sent` for good once
    // another controller answers, or one that can't be told from another.
    Outcome send(const Message& message, int expected_length);

    bool lost() const { return !trouble_.empty(); }
    // What happened, as a sentence; empty while all is well.
    const std::string& trouble() const { return trouble_; }

private:
    Outcome get_to_know();
    std::optional<EcuComm::Way> confirm();
    std::optional<EcuComm::Way> ask_who();

    EcuComm& comm_;
    SharedState& state_;
    EcuComm::Hold held_before_;
    ControllerIdentity known_; // as it told before the way was broken
    bool begun_ = false;
    std::string trouble_;
};

} // namespace ecu::link
