#include "cli/interrupt.h"

#include <chrono>
#include <csignal>

namespace ecu::cli {

namespace {

volatile std::sig_atomic_t signals_seen = 0;

// A second signal ends the program at once, should the first have met something that does not end.
void note_signal(int signal) {
    signals_seen = 1;
    std::signal(signal, SIG_DFL);
}

} // namespace

void catch_interrupts() {
    std::signal(SIGINT, note_signal);
    std::signal(SIGTERM, note_signal);
}

bool interrupted() { return signals_seen != 0; }

double monotonic_seconds() {
    return std::chrono::duration<double>(std::chrono::steady_clock::now().time_since_epoch()).count();
}

} // namespace ecu::cli
