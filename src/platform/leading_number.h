// Text to number by its leading number: blanks are skipped, reading stops at the first character that cannot continue
// a decimal number ("+", "-", digits, one point, an exponent), and a text with none is 0.
#pragma once

#include <string>
#include <string_view>

namespace ecu::platform {

double leading_number(std::string_view text);
// Whether the whole text, blanks around it aside, is a number that leading_number reads; one beyond all range is none.
bool is_number(std::string_view text);
// What a user means by a text from elsewhere: without blanks around it, and with a point for a single decimal comma.
std::string entry_text(std::string_view text);

} // namespace ecu::platform
