#include "adapters/qt_timers.h"

#include <QMetaObject>
#include <QTimer>

#include <utility>

namespace ecu::adapters {

namespace {

class QtTimer final : public platform::Timer {
public:
    explicit QtTimer(int interval_ms) {
        timer_.setTimerType(Qt::PreciseTimer);
        timer_.setInterval(interval_ms);
        QObject::connect(&timer_, &QTimer::timeout, &timer_, [this] {
            if (on_tick) {
                on_tick();
            }
        });
    }
    int interval_ms() const override { return timer_.interval(); }
    void set_interval_ms(int milliseconds) override { timer_.setInterval(milliseconds); }
    bool running() const override { return timer_.isActive(); }
    void set_running(bool running) override {
        if (!running) {
            timer_.stop();
        } else if (!timer_.isActive()) {
            timer_.start();
        }
    }

private:
    QTimer timer_;
};

} // namespace

std::unique_ptr<platform::Timer> QtTimers::make_timer(int interval_ms) {
    return std::make_unique<QtTimer>(interval_ms);
}

void QtTimers::post(std::function<void()> action) {
    QMetaObject::invokeMethod(&posted_, std::move(action), Qt::QueuedConnection);
}

} // namespace ecu::adapters
