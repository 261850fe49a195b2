// Repeating timers. A tick comes from the event loop, so it may come inside a wait.
#pragma once

#include <functional>
#include <memory>

namespace ecu::platform {

class Timer {
public:
    virtual ~Timer() = default;
    virtual int interval_ms() const = 0;
    virtual void set_interval_ms(int milliseconds) = 0; // restarts the period of a running timer
    virtual bool running() const = 0;
    virtual void set_running(bool running) = 0;
    std::function<void()> on_tick;
};

class Timers {
public:
    virtual ~Timers() = default;
    virtual std::unique_ptr<Timer> make_timer(int interval_ms) = 0; // not yet running
    // Runs the action once from the event loop.
    virtual void post(std::function<void()> action) = 0;
};

} // namespace ecu::platform
