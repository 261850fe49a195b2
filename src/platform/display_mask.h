// Numbers to text by a display mask: `#` an optional digit, `0` a required one, the point printed whenever the mask
// has one. Rounding is half away from zero on the decimal value (the shortest decimal that reads back as the same
// number, so the single-precision 6.25 is exactly 6.25). A negative number gets "-" in front, one that rounds to zero
// gets none.
// A `#` between point and a later `0` counts as `0`; integer digits are never cut; text around the pattern is copied;
// an empty mask is a plain integer. So 0.5 in "#.000" is ".500", 0 in "#####" is "", 1 in "0.##" is "1.".
#pragma once

#include <string>
#include <string_view>

namespace ecu::platform {

std::string masked(double value, std::string_view mask);
std::string masked(float value, std::string_view mask);
std::string masked(long value, std::string_view mask);
inline std::string masked(int value, std::string_view mask) { return masked(static_cast<long>(value), mask); }
// The shortest general form, at most 15 significant digits: 10, 0.5, 33.3333333333333.
std::string plain_number(double value);

} // namespace ecu::platform
