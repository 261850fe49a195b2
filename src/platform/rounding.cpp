#include "platform/rounding.h"

#include <algorithm>
#include <cmath>
#include <limits>

namespace ecu::platform {

std::int32_t round_to_even(double value) {
    if (std::isnan(value)) {
        return 0;
    }
    constexpr double lowest = std::numeric_limits<std::int32_t>::min();
    constexpr double highest = std::numeric_limits<std::int32_t>::max();
    return static_cast<std::int32_t>(std::nearbyint(std::clamp(value, lowest, highest)));
}

} // namespace ecu::platform
