// Looks on at the link and says how well it does: round trips by their time, tries that failed by their kind, and what
// to do about it, in plain words. It hangs on EcuComm's observer, off until it is asked to look on, and sends nothing.
// Of each frame it keeps counts alone; the trace, off at first, keeps the latest frames themselves.
#pragma once

#include "link/ecu_comm.h"
#include "link/port_facts.h"

#include <array>
#include <deque>
#include <string>
#include <vector>

namespace ecu::link {

// Why a try failed. `size` is a good frame of the request's own that no decoder took.
enum class RetryKind : std::uint8_t { no_answer, too_short, checksum, size, foreign };
inline constexpr std::size_t retry_kinds = 5;
inline constexpr std::array<const char*, retry_kinds> retry_names{"no answer", "cut short or too long", "bad checksum",
                                                                  "of another size", "of another message"};

// Upper edges of the histogram's classes in milliseconds; the last class has none.
inline constexpr std::array<int, 10> round_trip_edges{5, 10, 15, 20, 25, 30, 40, 60, 100, 250};
inline constexpr std::size_t round_trip_classes = round_trip_edges.size() + 1;
std::string round_trip_class(std::size_t index); // "10 to 15 ms"

struct LinkFigures {
    std::uint64_t answered = 0; // messages
    std::uint64_t given_up = 0;
    std::array<std::uint64_t, retry_kinds> retries{};
    std::array<std::uint64_t, round_trip_classes> round_trips{}; // of tries that were answered
    double fastest_ms = 0;
    double slowest_ms = 0;
    double sum_ms = 0;
    double wire_ms = 0; // what the same bytes take on the wire, summed like sum_ms

    std::uint64_t all_retries() const;
    double mean_ms() const { return answered > 0 ? sum_ms / static_cast<double>(answered) : 0; }
    // Milliseconds of a message beyond its bytes' own time.
    double mean_delay_ms() const { return answered > 0 ? (sum_ms - wire_ms) / static_cast<double>(answered) : 0; }
};

struct TracedFrame {
    float sent_at = 0; // seconds since midnight
    float seconds = 0;
    int tries = 0;
    Request request{};
    std::vector<std::uint8_t> reply;
    Verdict verdict = Verdict::silent;
    FrameFault fault = FrameFault::none;
};
std::string as_text(const TracedFrame& frame); // "12:30:05.125  #1  02 08 ... > 02 41 ...  answered  19.4 ms"

class LinkDoctor {
public:
    static constexpr std::size_t frames_kept = 2000;

    explicit LinkDoctor(EcuComm& comm) : comm_(comm) {}

    void look_on();
    void look_away() { observation_.reset(); } // what was seen stays
    bool looking_on() const { return observation_ != nullptr; }
    void clear();

    void set_tracing(bool tracing) { tracing_ = tracing; }
    bool tracing() const { return tracing_; }
    const std::deque<TracedFrame>& trace() const { return trace_; }
    std::uint64_t frames_traced() const { return frames_traced_; } // the forgotten ones included
    const LinkFigures& figures() const { return figures_; }

private:
    void note(const Observed& observed);

    EcuComm& comm_;
    Observation observation_;
    LinkFigures figures_;
    bool tracing_ = false;
    std::deque<TracedFrame> trace_;
    std::uint64_t frames_traced_ = 0;
};

// What is known of a link, for advice and report.
struct LinkState {
    std::string name;   // "COM1 (/dev/ttyUSB0)"
    std::string server; // of a remote link, else empty
    PortFacts port;     // of a local one
    LinkFigures figures;
};
// What to do, the weightiest first; empty when there is nothing.
std::vector<std::string> advice(const LinkState& link);
// All of it, for a person.
std::string report(const LinkState& link);

} // namespace ecu::link
