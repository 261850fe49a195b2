#include "support/sim_events.h"

#include <algorithm>
#include <array>
#include <cstdio>
#include <stdexcept>

namespace ecu::test {

namespace {

constexpr long calls_allowed_at_one_instant = 200'000;
constexpr Microseconds longest_test = to_microseconds(6 * 3600);
constexpr Microseconds day = 86'400'000'000;

class SimTimer final : public platform::Timer {
public:
    SimTimer(SimEvents& events, int interval_ms) : events_(events), interval_ms_(interval_ms) {}
    ~SimTimer() override { set_running(false); }
    SimTimer(const SimTimer&) = delete;
    SimTimer& operator=(const SimTimer&) = delete;

    int interval_ms() const override { return interval_ms_; }
    void set_interval_ms(int milliseconds) override {
        interval_ms_ = milliseconds;
        if (running_) {
            arm(events_.now() + interval());
        }
    }
    bool running() const override { return running_; }
    void set_running(bool running) override {
        if (running_ == running) {
            return;
        }
        running_ = running;
        late_ = false;
        if (running) {
            arm(events_.now() + interval());
        } else {
            events_.cancel(key_);
        }
    }

private:
    Microseconds interval() const { return std::max(1, interval_ms_) * Microseconds{1000}; }
    void arm(Microseconds due) {
        events_.cancel(key_);
        key_ = events_.schedule(due, [this, due] { fire(due); });
    }
    void fire(Microseconds due) {
        if (ticking_) {
            late_ = true;
            return;
        }
        arm(due + interval() * ((events_.now() - due) / interval() + 1));
        ticking_ = true; // for good when the tick ends the program
        if (on_tick) {
            on_tick();
        }
        ticking_ = false;
        if (late_) {
            late_ = false;
            arm(events_.now());
        }
    }

    SimEvents& events_;
    int interval_ms_;
    bool running_ = false;
    bool ticking_ = false;
    bool late_ = false; // fell due inside its own tick
    SimEvents::Key key_{-1, 0};
};

} // namespace

SimEvents::Key SimEvents::schedule(Microseconds due, std::function<void()> action) {
    const Key key{due, ++sequence_};
    queue_.emplace(key, std::move(action));
    return key;
}

void SimEvents::move_clock(Microseconds to) {
    now_ = std::max(now_, to);
    if (now_ > longest_test) {
        throw std::runtime_error("simulated time ran past its limit: something waits for ever");
    }
}

void SimEvents::process_events() {
    const Microseconds round = now_; // what falls due while an action waits belongs to the next round
    if (instant_ != now_) {
        instant_ = now_;
        calls_at_instant_ = 0;
    }
    if (++calls_at_instant_ > calls_allowed_at_one_instant) {
        throw std::runtime_error("simulated time stands still: something polls without waiting");
    }
    for (long handled = 0; !queue_.empty() && queue_.begin()->first.first <= round; ++handled) {
        if (handled > calls_allowed_at_one_instant) {
            throw std::runtime_error("events without end at one instant of simulated time");
        }
        auto event = queue_.extract(queue_.begin());
        event.mapped()();
    }
}

void SimEvents::wait_to(Microseconds deadline) {
    move_clock(queue_.empty() ? deadline : std::min(deadline, queue_.begin()->first.first));
    process_events();
}

void SimEvents::wait_for_events(float wait_seconds) {
    wait_to(now_ + std::max(Microseconds{1}, to_microseconds(wait_seconds)));
}

void SimEvents::run_for(double seconds) {
    const Microseconds end = now_ + to_microseconds(seconds);
    process_events();
    while (now_ < end) {
        wait_to(end);
    }
}

bool SimEvents::run_until(const std::function<bool()>& condition, double max_seconds) {
    const Microseconds end = now_ + to_microseconds(max_seconds);
    process_events();
    while (!condition()) {
        if (now_ >= end) {
            return false;
        }
        wait_to(end);
    }
    return true;
}

float SimEvents::seconds_since_midnight() const {
    return static_cast<float>(static_cast<double>((now_ + midnight_offset_) % day) / 1e6);
}

std::string SimEvents::time_text() const {
    const int second = static_cast<int>((now_ + midnight_offset_) % day / 1'000'000);
    std::array<char, 16> text{};
    std::snprintf(text.data(), text.size(), "%02d:%02d:%02d", second / 3600, second / 60 % 60, second % 60);
    return text.data();
}

std::unique_ptr<platform::Timer> SimEvents::make_timer(int interval_ms) {
    return std::make_unique<SimTimer>(*this, interval_ms);
}

} // namespace ecu::test
