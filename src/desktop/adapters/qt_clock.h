// The machine's clock as the console reads it: local time of day.
#pragma once

#include "platform/clock.h"

namespace ecu::desktop {

class QtClock final : public platform::Clock {
public:
    float seconds_since_midnight() const override;
    std::string date_text() const override;
    std::string time_text() const override;
};

} // namespace ecu::desktop
