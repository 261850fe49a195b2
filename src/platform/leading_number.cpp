#include "platform/leading_number.h"

#include <algorithm>
#include <charconv>
#include <cstddef>
#include <limits>

namespace ecu::platform {

namespace {

std::size_t skip_digits(std::string_view text, std::size_t at) {
    while (at < text.size() && text[at] >= '0' && text[at] <= '9') {
        ++at;
    }
    return at;
}

// Of a number whose magnitude no double holds: whether it is too large rather than too small. The exponent of its
// first digit that is not 0 tells.
bool beyond_range(std::string_view number) {
    const std::size_t e = std::min(number.find_first_of("eE"), number.size());
    const std::string_view mantissa = number.substr(0, e);
    const std::size_t first = mantissa.find_first_of("123456789");
    if (first == std::string_view::npos) {
        return false;
    }
    const std::size_t point = std::min(mantissa.find('.'), mantissa.size());
    std::string_view digits = number.substr(std::min(e + 1, number.size()));
    digits.remove_prefix(digits.starts_with('+') ? 1 : 0);
    long long exponent = 0;
    if (std::from_chars(digits.data(), digits.data() + digits.size(), exponent).ec == std::errc::result_out_of_range) {
        return !digits.starts_with('-');
    }
    return static_cast<long long>(point) - static_cast<long long>(first) + exponent > 0;
}

bool is_sign(std::string_view text, std::size_t at) { return at < text.size() && (text[at] == '+' || text[at] == '-'); }

// Where the number ends, sign, point and exponent included.
std::size_t end_of_number(std::string_view text) {
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
    return end;
}

std::string_view trimmed(std::string_view text) {
    constexpr std::string_view blanks = " \t\r\n";
    text.remove_prefix(std::min(text.find_first_not_of(blanks), text.size()));
    return text.substr(0, text.find_last_not_of(blanks) + 1);
}

} // namespace

double leading_number(std::string_view text) {
    text.remove_prefix(std::min(text.find_first_not_of(" \t"), text.size()));
    const std::size_t digits = is_sign(text, 0) ? 1 : 0;
    const std::size_t end = end_of_number(text);
    // A text with no digit leaves the 0.
    double value = 0;
    const auto read = std::from_chars(text.data() + digits, text.data() + end, value);
    if (read.ec == std::errc::result_out_of_range) {
        value = beyond_range(text.substr(digits, end - digits)) ? std::numeric_limits<double>::max() : 0;
    }
    return text.starts_with('-') ? 0 - value : value;
}

bool is_number(std::string_view text) {
    text = trimmed(text);
    double value = 0;
    const auto read = std::from_chars(text.data() + (is_sign(text, 0) ? 1 : 0), text.data() + text.size(), value);
    return !text.empty() && end_of_number(text) == text.size() && read.ec == std::errc();
}

std::string entry_text(std::string_view text) {
    std::string entry(trimmed(text));
    const std::size_t comma = entry.find(',');
    if (comma != std::string::npos && entry.find(',', comma + 1) == std::string::npos &&
        entry.find('.') == std::string::npos) {
        entry[comma] = '.';
    }
    return entry;
}

} // namespace ecu::platform
