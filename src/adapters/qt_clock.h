// The machine's clock as the console reads it: local time of day.
#pragma once

#include "platform/clock.h"

#include <cstdint>

namespace ecu::adapters {

class QtClock final : public platform::Clock {
public:
    float seconds_since_midnight() const override;
    double fine_seconds() const override;
    std::string date_text() const override;
    std::string time_text() const override;

private:
    mutable std::int64_t minute_of_offset_ = -1; // since the epoch
    mutable std::int64_t utc_offset_ms_ = 0;
};

} // namespace ecu::adapters
