#include "adapters/qt_clock.h"

#include <QDateTime>

#include <chrono>

namespace ecu::adapters {

namespace {

constexpr std::int64_t ms_per_minute = 60'000;
constexpr std::int64_t ms_per_day = 86'400'000;

} // namespace

// Asked for several times in every transaction, while the wire waits; the system looks at its time zone file at each
// conversion to local time, which therefore is made once a minute.
float QtClock::seconds_since_midnight() const {
    const std::int64_t now = QDateTime::currentMSecsSinceEpoch();
    if (const std::int64_t minute = now / ms_per_minute; minute != minute_of_offset_) {
        utc_offset_ms_ = QDateTime::currentDateTime().offsetFromUtc() * std::int64_t{1000};
        minute_of_offset_ = minute;
    }
    return static_cast<float>((now + utc_offset_ms_) % ms_per_day) / 1000.0F;
}

double QtClock::fine_seconds() const {
    return std::chrono::duration<double>(std::chrono::steady_clock::now().time_since_epoch()).count();
}

std::string QtClock::date_text() const { return QDate::currentDate().toString("MM-dd-yyyy").toStdString(); }

std::string QtClock::time_text() const { return QTime::currentTime().toString("HH:mm:ss").toStdString(); }

} // namespace ecu::adapters
