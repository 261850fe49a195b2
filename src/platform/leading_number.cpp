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
    // A text with no digit, or a number beyond all range, leaves the 0.
    double value = 0;
    std::from_chars(text.data() + (is_sign(text, 0) ? 1 : 0), text.data() + end_of_number(text), value);
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
