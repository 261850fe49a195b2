#include "shell/jpeg.h"

#include <cstddef>

namespace ecu::shell {

namespace {

constexpr std::string_view start_mark = "\xFF\xD8";
constexpr std::string_view end_mark = "\xFF\xD9";
constexpr std::size_t smallest_frame_header = 11; // with one colour
constexpr unsigned scan = 0xDA;

unsigned byte_at(std::string_view bytes, std::size_t at) { return static_cast<unsigned char>(bytes[at]); }

// The codes of this range that are none stand for tables.
bool starts_frame(unsigned code) {
    return code >= 0xC0 && code <= 0xCF && code != 0xC4 && code != 0xC8 && code != 0xCC;
}

} // namespace

bool is_whole_jpeg(std::string_view bytes) {
    if (!bytes.starts_with(start_mark)) {
        return false;
    }
    bool frame_seen = false;
    // Each segment: FF, a code, the length of what follows the code, high byte first. Any number of FF may go before.
    std::size_t at = start_mark.size();
    while (at + 3 < bytes.size() && byte_at(bytes, at) == 0xFF) {
        const unsigned code = byte_at(bytes, at + 1);
        if (code == 0xFF) {
            ++at;
            continue;
        }
        const std::size_t length = byte_at(bytes, at + 2) << 8 | byte_at(bytes, at + 3);
        if (code == scan) {
            return frame_seen && bytes.find(end_mark, at + 2) != std::string_view::npos;
        }
        frame_seen = frame_seen || (starts_frame(code) && length >= smallest_frame_header);
        at += 2 + length;
    }
    return false;
}

} // namespace ecu::shell
