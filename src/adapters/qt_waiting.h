// Waiting on Qt's event loop. A wait sleeps in the loop until something happens: serial bytes, datagrams, timers and
// the user all wake it at once, and a single-shot timer of its own bounds it. It never spins.
//
// Events are processed before a message is written as well. Windows are not painted then but in the wait behind it,
// while the bytes are on the wire: a map that is being read takes no time from the line.
#pragma once

#include "platform/waiting.h"

#include <QObject>
#include <QPointer>

#include <chrono>
#include <vector>

namespace ecu::adapters {

class QtWaiting final : public QObject, public platform::Waiting {
public:
    QtWaiting();
    void process_events() override;
    void wait_for_events(float seconds) override;
    bool eventFilter(QObject* receiver, QEvent* event) override;

private:
    using Clock = std::chrono::steady_clock;

    void paint_what_waits();

    int holding_at_ = -1; // the depth of event loops at which painting waits; -1: it does not
    Clock::time_point waiting_since_;
    std::vector<QPointer<QObject>> unpainted_;
};

} // namespace ecu::adapters
