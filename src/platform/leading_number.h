// Text to number by its leading number: blanks are skipped, reading stops at the first character that cannot continue
// a decimal number ("+", "-", digits, one point, an exponent), and a text with none is 0.
#pragma once

#include <string_view>

namespace ecu::platform {

double leading_number(std::string_view text);

} // namespace ecu::platform
