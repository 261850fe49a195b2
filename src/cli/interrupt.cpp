#include "cli/interrupt.h"

#include <chrono>
#include <csignal>

namespace ecu::cli {

namespace {

volatile std::sig_atomic_t signals_seen = 0;

void note_signal(int) { signals_seen = 1; }

} // namespace

void catch_interrupts() {
    // A call that waits for the keyboard ends with the signal. A second signal ends the program at once, should the
    // first have met something that does not end.
    struct sigaction noted {};
    noted.sa_handler = note_signal;
    noted.sa_flags = SA_RESETHAND;
    for (const int signal : {SIGINT, SIGTERM, SIGHUP}) {
        sigaction(signal, &noted, nullptr);
    }
    std::signal(SIGXFSZ, SIG_IGN); // a file beyond the limit is an error of its writing
}

bool interrupted() { return signals_seen != 0; }

double monotonic_seconds() {
    return std::chrono::duration<double>(std::chrono::steady_clock::now().time_since_epoch()).count();
}

} // namespace ecu::cli
