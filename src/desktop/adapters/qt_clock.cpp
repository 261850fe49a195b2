#include "desktop/adapters/qt_clock.h"

#include <QDateTime>

namespace ecu::desktop {

float QtClock::seconds_since_midnight() const {
    return static_cast<float>(QTime::currentTime().msecsSinceStartOfDay()) / 1000.0F;
}

std::string QtClock::date_text() const { return QDate::currentDate().toString("MM-dd-yyyy").toStdString(); }

std::string QtClock::time_text() const { return QTime::currentTime().toString("HH:mm:ss").toStdString(); }

} // namespace ecu::desktop
