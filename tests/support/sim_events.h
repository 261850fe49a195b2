// Simulated time: a virtual clock that only moves when somebody waits, and the ordered queue of what is to happen.
// Ten retries, a midnight or an hour of logging take milliseconds, and every run is the same.
// A loop that can never end in real time (events at one instant without end, polling without waiting, hours of
// waiting for nothing) ends in a std::runtime_error that says so.
#pragma once

#include "platform/clock.h"
#include "platform/timers.h"
#include "platform/waiting.h"

#include <cstdint>
#include <functional>
#include <map>
#include <string>
#include <utility>

namespace ecu::test {

using Microseconds = std::int64_t;
constexpr Microseconds to_microseconds(double seconds) { return static_cast<Microseconds>(seconds * 1e6 + 0.5); }

class SimEvents : public platform::Clock, public platform::Waiting, public platform::Timers {
public:
    using Key = std::pair<Microseconds, std::uint64_t>; // due time, then order of scheduling

    Microseconds now() const { return now_; } // since the start of the test
    double seconds() const { return static_cast<double>(now_) / 1e6; }
    // The time of day at this moment; it runs on from here. 86390 is ten seconds before midnight.
    void set_time_of_day(double seconds) { midnight_offset_ = to_microseconds(seconds) - now_; }

    // Runs everything that happens in the next `seconds`.
    void run_for(double seconds);
    // Runs events until the condition holds, looked at after every event; false when `max_seconds` went by.
    bool run_until(const std::function<bool()>& condition, double max_seconds = 60);

    Key schedule(Microseconds due, std::function<void()> action);
    void cancel(const Key& key) { queue_.erase(key); }

    float seconds_since_midnight() const override;
    double fine_seconds() const override { return seconds(); }
    std::string date_text() const override { return "03-05-2021"; }
    std::string time_text() const override;

    // Time passes with nothing happening in it: what falls due waits for the next call that lets events through.
    void let_time_pass(Microseconds time) { move_clock(now_ + time); }

    void process_events() override;                    // what is due now, in order
    void wait_for_events(float wait_seconds) override; // to the next event or the time-out, and what is due then

    // Ticks come at multiples of the interval, late ones as one, and never inside a tick of the same timer.
    std::unique_ptr<platform::Timer> make_timer(int interval_ms) override;
    void post(std::function<void()> action) override { schedule(now_, std::move(action)); }

private:
    void wait_to(Microseconds deadline);
    void move_clock(Microseconds to);

    Microseconds now_ = 0;
    Microseconds midnight_offset_ = to_microseconds(10 * 3600);
    std::uint64_t sequence_ = 0;
    std::map<Key, std::function<void()>> queue_;
    Microseconds instant_ = 0; // where the calls below were counted
    long calls_at_instant_ = 0;
};

} // namespace ecu::test
