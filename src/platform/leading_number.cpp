#include "platform/leading_number.h"

#include <algorithm>
#include <charconv>
#include <cstddef>

namespace ecu::platform {

namespace {

std::size_t skip_digits(std::string_view text, std::size_t at) {
    while (at < text.size() && text[at] >= '0' && text[at] <= '9') {
        ++at;
    }
    return at;
}

bool is_sign(std::string_view text, std::size_t at) { return at < text.size() && (text[at] == '+' || text[at] == '-'); }

} // namespace

double leading_number(std::string_view text) {
    text.remove_prefix(std::min(text.find_first_not_of(" \t"), text.size()));
    const std::size_t digits = is_sign(text, 0) ? 1 : 0;
    std::size_t end = skip_digits(text, digits);
    if (end < text.size() && text[end] == '.') {
        end = skip_digits(text, end + 1);
    }
    if (end < text.size() && (text[end] == 'e' || text[end] == 'E')) {
        const std::size_t exponent = end + (is_sign(text, end + 1) ? 2 : 1);
        if (const std::size_t exponent_end = skip_digits(text, exponent); exponent_end > exponent) {
            end = exponent_end;
        }
    }
    // A text with no digit, or a number beyond all range, leaves the 0.
    double value = 0;
    std::from_chars(text.data() + digits, text.data() + end, value);
    return text.starts_with('-') ? 0 - value : value;
}

} // namespace ecu::platform
