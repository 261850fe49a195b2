// Ctrl+C, a polite kill, or the terminal's end: remembered here, and acted upon where a command can end cleanly.
#pragma once

namespace ecu::cli {

void catch_interrupts();
bool interrupted();

// Thrown where a command cannot just return.
struct Interrupted {};

// Seconds of a clock that is never set.
double monotonic_seconds();

} // namespace ecu::cli
