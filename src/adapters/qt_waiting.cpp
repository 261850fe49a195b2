#include "adapters/qt_waiting.h"

#include <QCoreApplication>
#include <QTimer>

#include <algorithm>
#include <cmath>

namespace ecu::adapters {

void QtWaiting::process_events() { QCoreApplication::processEvents(QEventLoop::AllEvents); }

void QtWaiting::wait_for_events(float seconds) {
    // A wait may run inside a handler of another wait, so each has a timer of its own.
    QTimer bound;
    bound.setTimerType(Qt::PreciseTimer);
    bound.setSingleShot(true);
    bound.start(std::max(0, static_cast<int>(std::ceil(seconds * 1000.0F))));
    QCoreApplication::processEvents(QEventLoop::AllEvents | QEventLoop::WaitForMoreEvents);
}

} // namespace ecu::adapters
