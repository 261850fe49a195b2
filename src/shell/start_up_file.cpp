#include "shell/start_up_file.h"

#include <algorithm>
#include <fstream>
#include <iterator>

namespace ecu::shell {

namespace {

constexpr std::string_view byte_order_mark = "\xEF\xBB\xBF";
constexpr std::string_view jpeg_mark = "\xFF\xD8\xFF";

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

} // namespace

std::optional<std::string> read_start_up_file(const std::filesystem::path& path) {
    std::error_code ignored;
    std::ifstream file(path, std::ios::binary);
    if (!file || !std::filesystem::is_regular_file(path, ignored)) {
        return std::nullopt;
    }
    return std::string(std::istreambuf_iterator<char>(file), {});
}

std::string named_in_folder(const platform::Ports& ports, std::string_view file) {
    std::error_code ignored;
    const auto folder = std::filesystem::absolute(ports.folder, ignored).lexically_normal();
    return std::string(file) + " in the folder " + folder.string();
}

std::string as_utf8(std::string_view text) {
    if (is_utf8(text)) {
        return std::string(text.starts_with(byte_order_mark) ? text.substr(byte_order_mark.size()) : text);
    }
    std::string converted;
    for (const char c : text) {
        const unsigned byte = byte_of(c);
        if (byte < 0x80) {
            converted += c;
        } else {
            converted += static_cast<char>(0xC0U | (byte >> 6));
            converted += static_cast<char>(0x80U | (byte & 0x3FU));
        }
    }
    return converted;
}

bool looks_like_jpeg(std::string_view bytes) { return bytes.starts_with(jpeg_mark); }

} // namespace ecu::shell
