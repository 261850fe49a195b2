#include "adapters/qt_waiting.h"

#include <QCoreApplication>
#include <QEvent>
#include <QThread>
#include <QTimer>

#include <algorithm>
#include <cmath>
#include <utility>

namespace ecu::adapters {

namespace {
// Events may be processed again and again without a wait; the eye must not notice.
constexpr std::chrono::milliseconds longest_unpainted{30};
} // namespace

QtWaiting::QtWaiting() { QCoreApplication::instance()->installEventFilter(this); }

void QtWaiting::process_events() {
    const int outer = std::exchange(holding_at_, QThread::currentThread()->loopLevel());
    QCoreApplication::processEvents(QEventLoop::AllEvents);
    holding_at_ = outer;
}

void QtWaiting::wait_for_events(float seconds) {
    const int outer = std::exchange(holding_at_, -1);
    paint_what_waits();
    // A wait may run inside a handler of another wait, so each has a timer of its own.
    QTimer bound;
    bound.setTimerType(Qt::PreciseTimer);
    bound.setSingleShot(true);
    bound.start(std::max(0, static_cast<int>(std::ceil(seconds * 1000.0F))));
    QCoreApplication::processEvents(QEventLoop::AllEvents | QEventLoop::WaitForMoreEvents);
    holding_at_ = outer;
}

// A message box opened by one of the events runs a loop of its own, deeper, and is painted as ever.
bool QtWaiting::eventFilter(QObject* receiver, QEvent* event) {
    if (event->type() != QEvent::UpdateRequest || holding_at_ != QThread::currentThread()->loopLevel()) {
        return false;
    }
    if (unpainted_.empty()) {
        waiting_since_ = Clock::now();
        QTimer::singleShot(longest_unpainted, this, &QtWaiting::paint_what_waits); // should no wait follow
    } else if (Clock::now() - waiting_since_ > longest_unpainted) {
        paint_what_waits();
        return false;
    }
    unpainted_.emplace_back(receiver);
    return true;
}

void QtWaiting::paint_what_waits() {
    for (const QPointer<QObject>& window : std::exchange(unpainted_, {})) {
        if (window != nullptr) {
            QCoreApplication::postEvent(window, new QEvent(QEvent::UpdateRequest), Qt::LowEventPriority);
        }
    }
}

} // namespace ecu::adapters
