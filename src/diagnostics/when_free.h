// A message that the user's click asks for while another is under way waits for that one's end: two transactions inside
// one another would take bytes from each other and send again what must be sent once. The window may have been left by
// then; that is for the action to look at.
#pragma once

#include "link/ecu_comm.h"

#include <deque>

namespace ecu::diagnostics {

class WhenFree {
public:
    WhenFree(platform::Timers& timers, const link::EcuComm& comm) : comm_(comm), look_(timers.make_timer(5)) {
        look_->on_tick = [this] { run_waiting(); };
    }
    void run(std::function<void()> action) {
        waiting_.push_back(std::move(action));
        look_->set_running(true);
        run_waiting();
    }

private:
    void run_waiting() {
        while (!comm_.busy() && !waiting_.empty()) {
            const std::function<void()> action = std::move(waiting_.front());
            waiting_.pop_front();
            action();
        }
        look_->set_running(!waiting_.empty());
    }

    const link::EcuComm& comm_;
    std::unique_ptr<platform::Timer> look_;
    std::deque<std::function<void()>> waiting_;
};

} // namespace ecu::diagnostics
