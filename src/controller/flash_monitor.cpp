#include "controller/flash_monitor.h"

#include <algorithm>
#include <charconv>
#include <optional>

namespace ecu::controller {

namespace {

constexpr std::size_t count_end = 4; // "S", type, two digits of count

std::optional<unsigned> hex_byte(const std::string& text, std::size_t at) {
    unsigned value = 0;
    const char* end = text.data() + at + 2;
    const auto result = std::from_chars(text.data() + at, end, value, 16);
    return result.ptr == end ? std::optional(value) : std::nullopt;
}

// Bytes of address in a record of this type; types 4 and up to 6 carry no data to flash.
unsigned address_bytes(char type) {
    switch (type) {
    case '2':
        return 3;
    case '3':
        return 4;
    default:
        return 2;
    }
}

} // namespace

void FlashMonitor::start() {
    const std::optional<std::uint64_t> fail_at_line = fail_at_line_;
    *this = FlashMonitor();
    fail_at_line_ = fail_at_line;
    running_ = true;
}

std::string FlashMonitor::receive(std::uint8_t byte) {
    const char character = static_cast<char>(byte);
    if (character == 'q') {
        record_.clear();
        received_.clear();
        lines_ = 0;
        failed_ = false;
        return "\r\nBoot monitor 1.0\r\n";
    }
    received_ += character;
    if (record_.empty()) {
        if (character == 'S') {
            record_ += character;
        }
        return {}; // line ends and noise between records
    }
    if (character == '\r' || character == '\n') {
        return refuse(); // shorter than its count says
    }
    record_ += character;
    if (record_.size() == 2 && (character < '0' || character > '9')) {
        return refuse();
    }
    if (record_.size() < count_end) {
        return {};
    }
    const std::optional<unsigned> count = hex_byte(record_, 2);
    if (!count || *count < 3) {
        return refuse();
    }
    return record_.size() == count_end + 2 * std::size_t{*count} ? finish_record() : std::string();
}

std::string FlashMonitor::finish_record() {
    unsigned sum = 0;
    for (std::size_t at = 2; at < record_.size(); at += 2) {
        const std::optional<unsigned> value = hex_byte(record_, at);
        if (!value) {
            return refuse();
        }
        sum += *value;
    }
    if ((sum & 0xFFU) != 0xFFU) {
        return refuse();
    }
    if (fail_at_line_ && lines_ + 1 == *fail_at_line_) {
        fail_at_line_.reset();
        return refuse();
    }
    ++lines_;
    if (record_[1] == '0') {
        read_header();
    }
    const char type = record_[1];
    const unsigned count = *hex_byte(record_, 2);
    record_.clear();
    ++records_;
    if (type >= '1' && type <= '3') {
        data_bytes_ += count - std::min(count, address_bytes(type) + 1);
    }
    if (type < '7') {
        return ".";
    }
    if (failed_) {
        return "\r\nnot usable, flash again\r\n";
    }
    running_ = false;
    return "\r\ndone, starting\r\n";
}

// The header's data is text: behind count and address, before the checksum.
void FlashMonitor::read_header() {
    std::string text;
    for (std::size_t at = 8; at + 4 <= record_.size(); at += 2) {
        text += static_cast<char>(hex_byte(record_, at).value_or(0));
    }
    const std::size_t v = text.find('V');
    if (v == std::string::npos || text.size() < v + 8 || text[v + 2] != '.' || text[v + 5] != '.') {
        return;
    }
    const std::string digits = text.substr(v + 1, 1) + text.substr(v + 3, 2) + text.substr(v + 6, 2);
    std::uint16_t revision = 0;
    const auto result = std::from_chars(digits.data(), digits.data() + digits.size(), revision);
    if (result.ec == std::errc() && result.ptr == digits.data() + digits.size()) {
        revision_ = revision;
    }
}

std::string FlashMonitor::refuse() {
    ++lines_;
    record_.clear();
    failed_ = true;
    return "E";
}

} // namespace ecu::controller
