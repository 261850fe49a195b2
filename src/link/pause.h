// Keeps the scheduler out while a screen runs a sequence of messages of its own, whatever way it is left. A sequence
// inside another's leaves the outer one's pause as it was.
#pragma once

#include "link/shared_state.h"

namespace ecu::link {

class Pause {
public:
    explicit Pause(SharedState& state) : state_(state), before_(state.polling_paused) { state_.polling_paused = true; }
    ~Pause() { state_.polling_paused = before_; }
    Pause(const Pause&) = delete;
    Pause& operator=(const Pause&) = delete;

private:
    SharedState& state_;
    bool before_;
};

} // namespace ecu::link
