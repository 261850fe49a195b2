// The virtual controller at the far end of a simulated serial line: the console's bytes go in at the time of their
// writing, the replies arrive at the times that the controller gives, wire time included (Settings::pace_baud).
#pragma once

#include "controller/virtual_controller.h"
#include "support/sim_serial.h"

#include <algorithm>

namespace ecu::test {

class WiredController {
public:
    WiredController(SimEvents& events, SimSerialLine& line, const controller::Settings& settings = {})
        : controller(settings), events_(events), line_(line) {
        line_.peer = [this](std::span<const std::uint8_t> bytes) {
            controller.receive(bytes, events_.seconds());
            await_output();
        };
    }
    WiredController(const WiredController&) = delete;
    WiredController& operator=(const WiredController&) = delete;
    ~WiredController() {
        line_.peer = nullptr;
        events_.cancel(wake_);
    }

    void silence() { controller.faults().set_silent(true); }
    void speak() { controller.faults().set_silent(false); }

    controller::VirtualController controller;

private:
    void await_output() {
        events_.cancel(wake_);
        if (const auto due = controller.next_output()) {
            // One microsecond late rather than early, when there would be nothing to take.
            wake_ = events_.schedule(std::max(events_.now(), to_microseconds(*due) + 1), [this] {
                line_.receive(controller.take_output(events_.seconds()));
                await_output();
            });
        }
    }

    SimEvents& events_;
    SimSerialLine& line_;
    SimEvents::Key wake_{-1, 0};
};

} // namespace ecu::test
