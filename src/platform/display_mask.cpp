// A number is first its shortest decimal, then its digits are rounded as text: no binary fraction ever decides a tie.
// Text before the first and after the last mask character is copied. A number that is none prints as "nan" or "inf",
// which reads back as 0.
#include "platform/display_mask.h"

#include <algorithm>
#include <array>
#include <charconv>
#include <cmath>
#include <cstddef>

namespace ecu::platform {

namespace {

// The number is 0.<digits> times ten to the power of `point`, which may lie outside the digits.
struct Decimal {
    bool negative = false;
    std::string digits;
    long point = 0;
};

struct Mask {
    std::string_view before;
    std::string_view after;
    long required_integer = 0;
    bool has_point = false;
    long required_decimals = 0;
    long decimals = 0;
};

// From "-6.25e+00" with the point at will.
Decimal from_scientific(std::string_view text) {
    Decimal number;
    number.negative = text.starts_with('-');
    const std::size_t e = text.find('e');
    for (const char c : text.substr(0, e)) {
        if (c >= '0' && c <= '9') {
            number.digits.push_back(c);
        }
    }
    std::string_view exponent = text.substr(e + 1);
    exponent.remove_prefix(exponent.starts_with('+') ? 1 : 0);
    std::from_chars(exponent.data(), exponent.data() + exponent.size(), number.point);
    ++number.point;
    return number;
}

template <typename Float> Decimal shortest_decimal(Float value) {
    std::array<char, 64> text{};
    const auto end = std::to_chars(text.data(), text.data() + text.size(), value, std::chars_format::scientific).ptr;
    return from_scientific({text.data(), end});
}

Mask parse(std::string_view text) {
    const auto is_pattern = [](char c) { return c == '#' || c == '0' || c == '.'; };
    const auto first = std::ranges::find_if(text, is_pattern);
    auto last = first;
    while (last != text.end() && is_pattern(*last)) {
        ++last;
    }
    if (first == last) {
        return {.before = text, .after = {}, .required_integer = 1}; // no mask at all: a plain integer
    }
    const std::string_view pattern(first, last);
    const std::string_view integer = pattern.substr(0, pattern.find('.'));
    const std::string_view fraction = pattern.substr(std::min(integer.size() + 1, pattern.size()));
    Mask mask{.before = {text.begin(), first}, .after = {last, text.end()}};
    if (const std::size_t zero = integer.find('0'); zero != std::string_view::npos) {
        mask.required_integer = static_cast<long>(integer.size() - zero);
    }
    mask.has_point = integer.size() < pattern.size();
    mask.decimals = static_cast<long>(fraction.size());
    if (const std::size_t zero = fraction.rfind('0'); zero != std::string_view::npos) {
        mask.required_decimals = static_cast<long>(zero + 1);
    }
    return mask;
}

// Half away from zero, at `decimals` places behind the point.
void round_digits(Decimal& number, long decimals) {
    const long keep = number.point + decimals;
    if (keep >= static_cast<long>(number.digits.size())) {
        return;
    }
    if (keep < 0) {
        number = {};
        return;
    }
    const auto kept = static_cast<std::size_t>(keep);
    bool carry = number.digits[kept] >= '5';
    number.digits.resize(kept);
    for (std::size_t i = kept; carry && i-- > 0;) {
        carry = number.digits[i] == '9';
        number.digits[i] = carry ? '0' : static_cast<char>(number.digits[i] + 1);
    }
    if (carry) {
        number.digits.insert(number.digits.begin(), '1');
        ++number.point;
    }
}

char digit_at(const Decimal& number, long position) {
    return position < 0 || position >= static_cast<long>(number.digits.size())
               ? '0'
               : number.digits[static_cast<std::size_t>(position)];
}

std::string print(Decimal number, std::string_view text) {
    const Mask mask = parse(text);
    round_digits(number, mask.decimals);
    const bool zero = number.digits.find_first_not_of('0') == std::string::npos;

    std::string integer;
    for (long i = 0; i < number.point; ++i) {
        integer.push_back(digit_at(number, i));
    }
    integer.erase(0, std::min(integer.find_first_not_of('0'), integer.size()));
    const auto required = static_cast<std::size_t>(mask.required_integer);
    integer.insert(0, required - std::min(required, integer.size()), '0');

    std::string fraction;
    for (long i = 0; i < mask.decimals; ++i) {
        fraction.push_back(digit_at(number, number.point + i));
    }
    while (static_cast<long>(fraction.size()) > mask.required_decimals && fraction.back() == '0') {
        fraction.pop_back();
    }

    std::string shown = number.negative && !zero ? "-" : "";
    shown.append(mask.before).append(integer).append(mask.has_point ? "." : "").append(fraction).append(mask.after);
    return shown;
}

template <typename Float> std::string masked_float(Float value, std::string_view mask) {
    if (!std::isfinite(value)) {
        return std::isnan(value) ? "nan" : value < 0 ? "-inf" : "inf";
    }
    return print(shortest_decimal(value), mask);
}

} // namespace

std::string masked(double value, std::string_view mask) { return masked_float(value, mask); }

std::string masked(float value, std::string_view mask) { return masked_float(value, mask); }

std::string masked(long value, std::string_view mask) {
    std::string digits = std::to_string(value);
    digits.erase(0, value < 0 ? 1 : 0);
    const auto point = static_cast<long>(digits.size());
    return print({.negative = value < 0, .digits = std::move(digits), .point = point}, mask);
}

std::string plain_number(double value) {
    constexpr int significant = 15; // hides the last bits of a computed value
    std::array<char, 64> text{};
    const auto end =
        std::to_chars(text.data(), text.data() + text.size(), value, std::chars_format::general, significant);
    return value == 0 ? "0" : std::string(text.data(), end.ptr);
}

} // namespace ecu::platform
