// A polite kill, Ctrl+C, or the end of the terminal or session that the program was started from: all end it as its own
// exit does, so that nothing unfinished is left behind. A second signal ends it at once, should the first have met
// something that does not end.
#pragma once

#include <functional>
#include <memory>

namespace ecu::adapters {

class EndSignals {
public:
    // `end` runs from the event loop, wherever that runs. A write beyond the limit of a file's size becomes an error
    // of that write rather than the end of the program. One of its kind at a time.
    explicit EndSignals(std::function<void()> end);
    EndSignals(const EndSignals&) = delete;
    EndSignals& operator=(const EndSignals&) = delete;
    ~EndSignals();

private:
    class Watch;
    std::unique_ptr<Watch> watch_;
};

} // namespace ecu::adapters
