// Ctrl+C, a polite kill and the end of the session, handled as an event: what the console does then may close the port,
// write files and talk to Qt, which no signal handler may. A second signal ends the program at once.
#pragma once

#include <functional>

namespace ecu::adapters {

// Calls `asked_to_end` with the signal from the event loop. For the rest of the run; once in a program, after the
// application object is made.
void on_end_signal(std::function<void(int signal)> asked_to_end);

} // namespace ecu::adapters
