#include "flash/terminal.h"

namespace ecu::flash {

namespace {

constexpr int columns = 40;

// A code point below 0x800 in UTF-8, or one of the pictures of control characters from 0x2400 on.
std::string shown(std::uint8_t byte) {
    if (byte < 0x20 || byte == 0x7F) {
        const int picture = byte == 0x7F ? 0x21 : byte;
        return {'\xE2', '\x90', static_cast<char>(0x80 + picture)};
    }
    if (byte < 0x80) {
        return {static_cast<char>(byte)};
    }
    return {static_cast<char>(0xC0 | (byte >> 6)), static_cast<char>(0x80 | (byte & 0x3F))};
}

} // namespace

void Terminal::receive(std::uint8_t byte) {
    switch (byte) {
    case '\n':
        return;
    case '\r':
        text_ += '\n';
        return;
    case 'B':
        text_ += 'B';
        monitor_ready = true;
        return;
    case 'E':
        text_ += 'E';
        flash_error = true;
        return;
    default:
        text_ += shown(byte);
        if (++terminal_column_ == columns) {
            text_ += '\n';
            terminal_column_ = 0;
        }
    }
}

void Terminal::print(std::string_view line) { text_.append(line).append("\n"); }

} // namespace ecu::flash
