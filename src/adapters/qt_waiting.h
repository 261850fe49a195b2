// Waiting on Qt's event loop. A wait sleeps in the loop until something happens: serial bytes, datagrams, timers and
// the user all wake it at once, and a single-shot timer of its own bounds it. It never spins.
#pragma once

#include "platform/waiting.h"

namespace ecu::adapters {

class QtWaiting final : public platform::Waiting {
public:
    void process_events() override;
    void wait_for_events(float seconds) override;
};

} // namespace ecu::adapters
