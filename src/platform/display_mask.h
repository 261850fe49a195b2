// Numbers to text by a display mask: `#` an optional digit, `0` a required one, the point printed whenever the mask
// has one. Rounding is half away from zero on the decimal value (the shortest decimal that reads back as the same
// number, so the single-precision 6.25 is exactly 6.25). A negative number gets "-" in front, one that rounds to zero none.
#pragma once

#include <string>
#include <string_view>

namespace ecu::platform {

std::string masked(double value, std::string_view mask);
std::string masked(float value, std::string_view mask);
std::string masked(long value, std::string_view mask);
inline std::string masked(int value, std::string_view mask) { return masked(static_cast<long>(value), mask); }
// The run time's shortest general form: 10, 0.5, 1000.
std::string plain_number(double value);

} // namespace ecu::platform
