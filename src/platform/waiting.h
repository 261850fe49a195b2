// The one place where the console lets pending events through and blocks. Everything runs on one thread: timers
// and clicks run inside these calls.
#pragma once

#include "platform/clock.h"

#include <concepts>

namespace ecu::platform {

class Waiting {
public:
    virtual ~Waiting() = default;
    // Handles what is pending and returns at once.
    virtual void process_events() = 0;
    // Sleeps until something happened (bytes, a timer, the user) or `seconds` have gone, and handles it.
    virtual void wait_for_events(float seconds) = 0;
};

// Waits until `done()` or until more than `seconds` have gone, events being handled meanwhile; events come first,
// so that the condition is looked at with everything that had arrived. Returns whether `done()` ended it.
template <std::predicate Condition>
bool wait_until(Waiting& waiting, const Clock& clock, float seconds, Condition done) {
    const float start = clock.seconds_since_midnight();
    waiting.process_events();
    for (;;) {
        const float elapsed = elapsed_between(start, clock.seconds_since_midnight());
        if (done()) {
            return true;
        }
        if (elapsed > seconds) {
            return false;
        }
        waiting.wait_for_events(seconds - elapsed + 0.001F);
    }
}

// A delay that goes on handling events.
inline void wait_seconds(Waiting& waiting, const Clock& clock, float seconds) {
    wait_until(waiting, clock, seconds, [] { return false; });
}

} // namespace ecu::platform
