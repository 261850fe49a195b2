// Time as the console knows it: seconds since midnight in single precision, so every difference that comes out
// below -0.1 s has passed midnight and gets a day added. The correction is made in this one place.
#pragma once

#include <string>

namespace ecu::platform {

inline constexpr float seconds_per_day = 86400.0F;

// Difference of two times of day, corrected for a midnight between them.
constexpr float elapsed_between(float start, float now) {
    const float elapsed = now - start;
    return elapsed < -0.1F ? elapsed + seconds_per_day : elapsed;
}

class Clock {
public:
    virtual ~Clock() = default;
    virtual float seconds_since_midnight() const = 0;
    // For measuring: runs on evenly from a moment of its own, and tells microseconds, which the time of day does not.
    virtual double fine_seconds() const = 0;
    virtual std::string date_text() const = 0; // mm-dd-yyyy
    virtual std::string time_text() const = 0; // hh:mm:ss, 24 hours
};

} // namespace ecu::platform
