// Timers on Qt's event loop, precise to the millisecond because they pace polling and logging.
#pragma once

#include "platform/timers.h"

#include <QObject>

namespace ecu::adapters {

class QtTimers final : public platform::Timers {
public:
    std::unique_ptr<platform::Timer> make_timer(int interval_ms) override;
    void post(std::function<void()> action) override;

private:
    QObject posted_; // what waits goes with it, so that nothing outlives its console
};

} // namespace ecu::adapters
