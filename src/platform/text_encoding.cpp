#include "platform/text_encoding.h"

namespace ecu::platform {

namespace {

constexpr std::string_view utf8_mark = "\xEF\xBB\xBF";
constexpr std::string_view low_first_mark = "\xFF\xFE";
constexpr std::string_view high_first_mark = "\xFE\xFF";
constexpr unsigned replacement = 0xFFFD;

unsigned byte_of(char c) { return static_cast<unsigned char>(c); }

// Length of the well-formed sequence that the text begins with, or 0.
std::size_t sequence_length(std::string_view text) {
    const unsigned first = byte_of(text[0]);
    if (first < 0x80) {
        return 1;
    }
    const std::size_t length = first >= 0xC2 && first <= 0xDF   ? 2
                               : first >= 0xE0 && first <= 0xEF ? 3
                               : first >= 0xF0 && first <= 0xF4 ? 4
                                                                : 0;
    if (length == 0 || text.size() < length) {
        return 0;
    }
    unsigned code = first & (0x7FU >> length);
    for (std::size_t i = 1; i < length; ++i) {
        if ((byte_of(text[i]) & 0xC0U) != 0x80U) {
            return 0;
        }
        code = (code << 6) | (byte_of(text[i]) & 0x3FU);
    }
    const bool overlong = (length == 3 && code < 0x800) || (length == 4 && code < 0x10000);
    const bool surrogate = code >= 0xD800 && code <= 0xDFFF;
    return overlong || surrogate || code > 0x10FFFF ? 0 : length;
}

bool is_utf8(std::string_view text) {
    while (!text.empty()) {
        const std::size_t length = sequence_length(text);
        if (length == 0) {
            return false;
        }
        text.remove_prefix(length);
    }
    return true;
}

void append(std::string& text, unsigned code) {
    if (code < 0x80) {
        text += static_cast<char>(code);
        return;
    }
    const unsigned following = code < 0x800 ? 1 : code < 0x10000 ? 2 : 3;
    text += static_cast<char>((0xFFU << (7 - following) & 0xFFU) | code >> (6 * following));
    for (unsigned i = following; i-- > 0;) {
        text += static_cast<char>(0x80U | (code >> (6 * i) & 0x3FU));
    }
}

// `high_at`: which byte of a pair is the high one. A last single byte is no character.
std::string from_utf16(std::string_view bytes, std::size_t high_at) {
    const auto unit_at = [&](std::size_t i) -> unsigned {
        return i + 1 < bytes.size() ? byte_of(bytes[i + high_at]) << 8 | byte_of(bytes[i + 1 - high_at]) : 0;
    };
    std::string text;
    for (std::size_t i = 0; i + 1 < bytes.size(); i += 2) {
        const unsigned unit = unit_at(i);
        const unsigned next = unit_at(i + 2);
        if (unit < 0xD800 || unit > 0xDFFF) {
            append(text, unit);
        } else if (unit <= 0xDBFF && next >= 0xDC00 && next <= 0xDFFF) {
            append(text, 0x10000U + ((unit - 0xD800U) << 10) + (next - 0xDC00U));
            i += 2;
        } else {
            append(text, replacement);
        }
    }
    return text;
}

} // namespace

std::string as_utf8(std::string_view text) {
    if (text.starts_with(low_first_mark) || text.starts_with(high_first_mark)) {
        return from_utf16(text.substr(2), text.starts_with(low_first_mark) ? 1 : 0);
    }
    if (text.starts_with(utf8_mark)) {
        text.remove_prefix(utf8_mark.size());
    }
    if (is_utf8(text)) {
        return std::string(text);
    }
    std::string converted;
    for (const char c : text) {
        append(converted, byte_of(c));
    }
    return converted;
}

std::string printable(std::string_view text) {
    constexpr std::string_view digits = "0123456789ABCDEF";
    std::string out;
    const auto escape = [&](unsigned char byte) { out += {'\\', 'x', digits[byte >> 4U], digits[byte & 0xFU]}; };
    for (std::size_t i = 0; i < text.size(); ++i) {
        const auto byte = static_cast<unsigned char>(text[i]);
        const auto next = static_cast<unsigned char>(i + 1 < text.size() ? text[i + 1] : 0);
        if (byte < 0x20 || byte == 0x7F) {
            escape(byte);
        } else if (byte == 0xC2 && next >= 0x80 && next < 0xA0) { // the second set of control characters, in UTF-8
            escape(next);
            ++i;
        } else {
            out += text[i];
        }
    }
    return out;
}

} // namespace ecu::platform
